#include "cube.hpp"

#include <algorithm>
#include <cstring>
#include <numbers>

#include "comp.hpp"
#include "fcheck.hpp"
#include "small_files.hpp"

namespace {

// A cube file as other programs read it.
struct Cube {
  int atom_count = 0;
  CubeDefinition grid{};
  std::vector<double> values;
};

Cube parsed(const std::string& text) {
  Cube cube;
  std::istringstream in(text);
  std::string line;
  std::getline(in, line), std::getline(in, line);
  in >> cube.atom_count >> cube.grid.points[0][0] >> cube.grid.points[0][1] >> cube.grid.points[0][2];
  for (unsigned axis = 0; axis < 3; ++axis) {
    in >> cube.grid.npoints[axis];
    std::ranges::for_each(cube.grid.vectors[axis], [&](double& step) { in >> step; });
  }
  for (int i = 0; i <= std::abs(cube.atom_count) + (cube.atom_count < 0); ++i) {
    std::getline(in, line);
  }
  cube.values.assign(std::istream_iterator<double>(in), {});
  return cube;
}

std::vector<double> data_of(const Molecule& molecule, const CubeDefinition& grid, std::int16_t code,
                            std::int16_t orbital) {
  std::istringstream in(
      written([&](std::FILE* stream) { comp_data(&molecule, &grid, code, orbital, stream, nullptr); }));
  return {std::istream_iterator<double>(in), {}};
}

}  // namespace

// tests/data/README.md tells how the other program's files were made.
TEST(Cube, AgreesWithTheCubeOfAnotherProgram) {
  const auto molecule = read_text(fcheck_read, read_file(ORVA_TEST_DATA "/oh.fchk"));
  using Row = std::tuple<const char*, std::int16_t, std::int16_t>;
  for (const auto& [name, code, orbital] : {Row{"oh_density.cube", 10, 0}, Row{"oh_beta_5.cube", 201, 5}}) {
    const Cube other = parsed(read_file(std::string(ORVA_TEST_DATA "/") + name));
    const std::vector<double> values = data_of(*molecule, other.grid, code, orbital);
    ASSERT_EQ(values.size(), 9U * 10 * 9);
    ASSERT_EQ(values.size(), other.values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
      ASSERT_NEAR(values[i], other.values[i], 1.01e-5 * std::fabs(other.values[i]) + 1e-9) << name;
    }
  }
}

// In the automatic box, with half of its steps: at the full ones the sum over points errs by up to 2.5 %
// (NO2), as nuclei with their cusps happen to lie on or between grid points.
TEST(Cube, DensityOfRealMoleculesIntegratesToTheElectrons) {
  for (const char* name : {"water", "water_cation", "no2", "aniline"}) {
    const auto molecule = read_text(fcheck_read, read_file(std::string(ORVA_EXAMPLES "/") + name + ".fchk"));
    CubeDefinition grid;
    cube_comp_params(molecule.get(), &grid);
    for (unsigned axis = 0; axis < 3; ++axis) {
      grid.npoints[axis] *= 2;
      grid.vectors[axis][axis] *= 0.5;
    }
    const double volume = grid.vectors[0][0] * grid.vectors[1][1] * grid.vectors[2][2];
    double electrons = 0.0;
    for (const double density : data_of(*molecule, grid, 10, 0)) {
      electrons += density * volume;
    }
    EXPECT_NEAR(electrons, molecule->electron_count, 0.001 * molecule->electron_count) << name;
  }
}

TEST(Cube, OneGaussianHasItsClosedForm) {
  const SmallFchk fields = {.method = "UHF",
                            .alpha_electrons = 1,
                            .beta_electrons = 0,
                            .shells = {{0, 2, {0.8}, {1.0}, {}}},
                            .coefficient = [](unsigned, unsigned) { return 1.0; },
                            .energy = [](unsigned) { return -0.4375; }};
  const auto molecule = read_text(fcheck_read, fchk_text(fields));
  const CubeDefinition grid = {{3, 4, 5}, {{-1, -1, 1}}, {{0.7, 0, 0}, {0, 0.6, 0}, {0, 0, 0.5}}};
  const std::vector<double> density = data_of(*molecule, grid, 10, 0);
  for (const double potential : data_of(*molecule, grid, 63, 0)) {
    EXPECT_EQ(potential, 0.4375);
  }
  for (unsigned n = 0; n < 3 * 4 * 5; ++n) {
    const unsigned i = n / 20, j = n / 5 % 4, k = n % 5;
    const double r = std::hypot(0.7 * i - 1.0, 0.6 * j - 1.5, 0.5 * k - 2.0);
    const double expected = std::pow(1.6 / std::numbers::pi, 1.5) * std::exp(-1.6 * r * r);
    EXPECT_NEAR(density[n], expected, 1e-5 * expected);
  }
}

TEST(Grid, AutomaticBoxFollowsTheAtoms) {
  const auto molecule = read_text(fcheck_read, fchk_text({.atoms = {{6, {0, 0, 0}}, {6, {0, 0, 4}}}}));
  CubeDefinition cube;
  conf_cube_def = 0;
  cube_define(molecule.get(), &cube);
  EXPECT_EQ(std::vector(cube.npoints, cube.npoints + 3), (std::vector{67U, 67U, 80U}));
  EXPECT_DOUBLE_EQ(cube.points[0][2], -4.2);
  EXPECT_DOUBLE_EQ(cube.points[3][2], 8.2);
  EXPECT_DOUBLE_EQ(cube.vectors[0][0], 8.4 / 67);
  EXPECT_DOUBLE_EQ(cube.vectors[2][2], 12.4 / 80);
  EXPECT_EQ(cube.vectors[2][0], 0.0);
}

TEST(Grid, PointsGiveTheStepsAlongTheirPath) {
  CubeDefinition cube = {{80, 40, 80}, {{-1, -1, -1}, {1, -1, -1}, {1, 1, -1}, {1, 2, 1}}, {}};
  conf_cube_def = 2;
  cube_define(nullptr, &cube);
  conf_cube_def = 0;
  constexpr double expected[3][3] = {{0.025, 0, 0}, {0, 0.05, 0}, {0, 0.0125, 0.025}};
  EXPECT_EQ(std::memcmp(cube.vectors, expected, sizeof expected), 0);
}

TEST(Grid, UnknownRadiusIsToldOnlyWhenWarningsAreWanted) {
  constexpr const char* warning = "warning: unknown radius of atom S, using default value 4.3 A\n";
  for (const auto& [is_wanted, is_quiet] : {std::pair{0, 0}, {0, 1}, {1, 0}, {1, 1}}) {
    arg_warning = static_cast<std::int16_t>(is_wanted), arg_quiet = static_cast<std::int16_t>(is_quiet);
    EXPECT_EQ(printed([] { EXPECT_EQ(cube_atom_radius(16), 4.3); }), is_wanted > is_quiet ? warning : "");
    EXPECT_EQ(printed([] { EXPECT_EQ(cube_atom_radius(17), 4.3); }), "");
  }
  arg_warning = arg_quiet = 0;
}

TEST(Cube, OrbitalsThatAreNotThereAreRejected) {
  const auto molecule = read_text(fcheck_read, fchk_text());
  for (const std::int16_t number : std::to_array<std::int16_t>({0, 6})) {
    conf_cube_onesp = conf_cube_moden = number;
    for (const std::int16_t code : std::to_array<std::int16_t>({31, 42})) {
      expect_error([&] { cube_check(molecule.get(), code); },
                   "invalid value in config file - number of orbital from 1 to 5 expected");
    }
  }
  conf_cube_onesp = 5;
  cube_check(molecule.get(), 31);
  conf_cube_onety = 1;
  expect_error([&] { cube_check(molecule.get(), 31); },
               "invalid value in config file - no beta orbitals in restricted wavefunction");
  conf_cube_onety = conf_cube_onesp = conf_cube_moden = 0;
}
