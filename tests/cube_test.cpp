#include "app/cube/cube.hpp"

#include "app/input/fcheck.hpp"
#include "small_files.hpp"

TEST(Grid, AutomaticBoxFollowsTheAtoms) {
  const auto molecule = read_text(fcheck_read, fchk_text({.atoms = {{1, {1, 0, 4}}, {6, {0, -2, 1}}}}));
  CubeDefinition cube;
  conf_cube_def = 0;
  cube_define(molecule.get(), &cube);
  const double low[3] = {-4.2, -6.2, -3.2}, high[3] = {4.2, 2.9, 6.9};
  const unsigned counts[3] = {67, 72, 80};
  for (unsigned axis = 0; axis < 3; ++axis) {
    EXPECT_EQ(cube.npoints[axis], counts[axis]);
    for (unsigned p = 0; p < 4; ++p) {
      EXPECT_DOUBLE_EQ(cube.points[p][axis], p > axis ? high[axis] : low[axis])
          << "point " << p << ", axis " << axis;
    }
    for (unsigned c = 0; c < 3; ++c) {
      EXPECT_DOUBLE_EQ(cube.vectors[axis][c], c == axis ? (high[c] - low[c]) / counts[c] : 0.0)
          << "step " << axis << ", coordinate " << c;
    }
  }
}

TEST(Grid, PointsGiveTheStepsAlongTheirPath) {
  CubeDefinition cube = {{80, 40, 80}, {{-1, -1, -1}, {1, -1, -1}, {1, 1, -1}, {1, 2, 1}}, {}};
  conf_cube_def = 2;
  cube_define(nullptr, &cube);
  conf_cube_def = 0;
  EXPECT_EQ(flat(cube.vectors), (Numbers{0.025, 0, 0, 0, 0.05, 0, 0, 0.0125, 0.025}));
}

TEST(Grid, UnknownRadiusIsToldOnlyWhenWarningsAreWanted) {
  constexpr const char* warning = "warning: unknown radius of atom S, using default value 4.3 A\n";
  const auto radius_of = [](unsigned number) {
    double radius = 0.0;
    std::string text = printed([&] { radius = cube_atom_radius(number); });
    return std::pair(radius, text);
  };
  const std::pair<unsigned, double> radii[] = {{1, 2.9}, {6, 4.2},  {7, 3.0},  {8, 3.8},
                                               {9, 3.0}, {17, 4.3}, {44, 4.3}, {78, 4.3}};
  for (const auto& [is_wanted, is_quiet] : {std::pair{0, 0}, {0, 1}, {1, 0}, {1, 1}}) {
    arg_warning = static_cast<std::int16_t>(is_wanted), arg_quiet = static_cast<std::int16_t>(is_quiet);
    EXPECT_EQ(radius_of(16), std::pair(4.3, std::string(is_wanted > is_quiet ? warning : "")));
    for (const auto& [number, radius] : radii) {
      EXPECT_EQ(radius_of(number), std::pair(radius, std::string())) << "element " << number;
    }
  }
  arg_warning = arg_quiet = 0;
}

TEST(Cube, OrbitalsThatAreNotThereAreRejected) {
  const auto molecule = read_text(fcheck_read, fchk_text());
  const std::string invalid = "invalid value in config file - ";
  for (const std::int16_t number : std::to_array<std::int16_t>({0, 6})) {
    conf_cube_onesp = conf_cube_moden = number;
    for (const FieldCode code : {field_one_orbital, field_orbital_density}) {
      expect_error([&] { cube_check(molecule.get(), code); },
                   invalid + "number of orbital from 1 to 5 expected");
    }
  }
  conf_cube_onesp = 5, conf_cube_moden = 1;
  cube_check(molecule.get(), field_one_orbital);
  conf_cube_onety = 1;
  cube_check(molecule.get(), field_orbital_density);  // always alpha
  expect_error([&] { cube_check(molecule.get(), field_one_orbital); },
               invalid + "no beta orbitals in restricted wavefunction");
  const auto unrestricted = read_text(fcheck_read, fchk_text({.method = "UHF"}));
  unrestricted->beta_orbital_count = 4;
  expect_error([&] { cube_check(unrestricted.get(), field_one_orbital); },
               invalid + "number of orbital from 1 to 4 expected");
  conf_cube_onety = conf_cube_onesp = conf_cube_moden = 0;
  Molecule large{};
  large.alpha_orbital_count = 32768;
  expect_error([&] { cube_check(&large, field_all_orbitals); },
               invalid + "at most 32767 orbitals can be written one file each");
  large.alpha_orbital_count = 32767;
  cube_check(&large, field_all_orbitals);
}
