// The surface, against closed forms; and orva-surface, run as its users run it.

#include <map>
#include <numbers>

#include "app/input/fcheck.hpp"
#include "small_files.hpp"
#include "surface/surface.hpp"
#include "surface/vectors.hpp"

namespace {

constexpr double pi = std::numbers::pi;

/// A shell of one primitive on each of some atoms, and orbitals of which the first has coefficient 1 in the
/// first function, and so on; all are occupied by pairs.
SmallFchk one_shell_each(const std::vector<SmallAtom>& atoms, int type, double exponent, unsigned orbitals) {
  SmallFchk fields = {.electrons = 2 * orbitals, .alpha_electrons = orbitals, .beta_electrons = orbitals};
  fields.atoms = atoms;
  fields.shells.clear();
  for (unsigned atom = 1; atom <= atoms.size(); ++atom) {
    fields.shells.push_back({type, atom, {exponent}, {1.0}, {}});
  }
  fields.coefficient = [](unsigned i, unsigned j) { return i == j ? 1.0 : 0.0; };
  fields.energy = [](unsigned i) { return -0.5 - 0.125 * i; };
  return fields;
}

/// Atoms in a ring around the z axis.
std::vector<SmallAtom> ring(unsigned count, double radius) {
  std::vector<SmallAtom> atoms;
  for (unsigned n = 0; n < count; ++n) {
    const double angle = 2.0 * pi * n / count;
    atoms.push_back({1, {radius * std::cos(angle), radius * std::sin(angle), 0.0}});
  }
  return atoms;
}

auto molecule_of(const SmallFchk& fields) {
  const Convention meant(1);
  return read_text(fcheck_read, fchk_text(fields));
}

Surface surface_of_file(const SmallFchk& fields, const SurfaceSettings& settings = {}, bool by_radii = true) {
  const auto molecule = molecule_of(fields);
  const Owners owners(molecule.get(), by_radii ? owners_radii(molecule.get()) : std::vector<double>{});
  return surface_of(molecule.get(), settings, owners);
}

/// Two electrons in an s Gaussian: where they have the density `level`.
double radius_of_s(double exponent, double level) {
  return std::sqrt(std::log(2.0 * std::pow(2.0 * exponent / pi, 1.5) / level) / (2.0 * exponent));
}

#define EXPECT_PART(value, expected, part) EXPECT_NEAR(value, expected, (part)*std::fabs(expected))

TEST(Surface, OneSGaussianIsABallOnWhichThePotentialIsTheEnergy) {
  for (const double level : {0.001, 0.1}) {
    const Surface surface =
        surface_of_file(one_shell_each({{1, {0.1, 0.2, 0.3}}}, 0, 0.4, 1), {.level = level});
    const double r = radius_of_s(0.4, level);
    EXPECT_PART(surface.shares.whole.area, 4.0 * pi * r * r, 2e-4);
    EXPECT_PART(surface.shares.volume, 4.0 / 3.0 * pi * r * r * r, 2e-4);
    EXPECT_NEAR(surface.shares.range.lowest, 0.5, 1e-12);
    EXPECT_NEAR(surface.shares.range.highest, 0.5, 1e-12);
    EXPECT_NEAR(surface.shares.whole.mean, 0.5, 1e-12);
    EXPECT_LT(surface.shares.whole.deviation, 1e-12);
    ASSERT_EQ(surface.shares.pieces.size(), 1U);
    EXPECT_EQ(surface.shares.pieces[0].euler, 2);
    EXPECT_TRUE(surface.extrema.list.empty());
    EXPECT_GT(surface.extrema.flat_count, 0U);
  }
}

TEST(Surface, PLobesAreThoseOfASolidOfRevolution) {
  // The first of the shell: along x. R² is the square of the distance from the axis at which the density is
  // 0.001.
  const double exponent = 0.3, level = 0.001;
  const double factor = 2.0 * std::pow(2.0 * exponent / pi, 1.5) * 4.0 * exponent;
  const auto square = [&](double x) { return std::log(factor * x * x / level) / (2.0 * exponent) - x * x; };
  double area = 0.0, volume = 0.0;
  const double step = 1e-5;
  for (int slice = 0; slice < 1'000'000; ++slice) {
    const double x = (slice + 0.5) * step;
    if (const double r = square(x); r > 0.0) {
      const double half_slope = 0.5 / (exponent * x) - x;  // of R², so R R'
      area += 2.0 * pi * step * std::sqrt(r + half_slope * half_slope);
      volume += pi * step * r;
    }
  }
  const Surface surface = surface_of_file(one_shell_each({{6, {0, 0, 0}}}, 1, exponent, 1));
  ASSERT_EQ(surface.shares.pieces.size(), 2U);
  for (const Piece& piece : surface.shares.pieces) {
    EXPECT_PART(piece.area, area, 1e-3);
    EXPECT_PART(piece.volume, volume, 1e-3);
    EXPECT_EQ(piece.euler, 2);
  }
}

TEST(Surface, FarAtomsAreBallsOfTheirOwn) {
  const Surface surface =
      surface_of_file(one_shell_each({{1, {0, 0, 0}}, {1, {0, 0, 40}}, {2, {0, 0, 80}}}, 0, 0.4, 3));
  const double r = radius_of_s(0.4, 0.001);
  ASSERT_EQ(surface.shares.pieces.size(), 3U);
  for (unsigned atom = 0; atom < 3; ++atom) {
    EXPECT_PART(surface.shares.atoms[atom].statistics.area, 4.0 * pi * r * r, 2e-4) << atom;
    EXPECT_NEAR(surface.shares.atoms[atom].statistics.mean, 0.5 + 0.125 * atom, 1e-9) << atom;
  }
  EXPECT_NEAR(surface.shares.whole.mean, 0.625, 1e-4);
  EXPECT_NEAR(surface.shares.whole.deviation, 0.125 * std::sqrt(2.0 / 3.0), 1e-4);
}

TEST(Surface, ARingHasTheCharacteristicOfOneAndAShellACavity) {
  const Surface torus = surface_of_file(one_shell_each(ring(10, 6.0), 0, 0.5, 10));
  ASSERT_EQ(torus.shares.pieces.size(), 1U);
  EXPECT_EQ(torus.shares.pieces[0].euler, 0);

  std::vector<SmallAtom> shell;  // the corners of an icosahedron, and of its dual
  const double golden = 0.5 * (1.0 + std::sqrt(5.0));
  for (const double a : {-1.0, 1.0}) {
    for (const double b : {-1.0, 1.0}) {
      for (unsigned c = 0; c < 3; ++c) {
        for (const auto& [p, q, r] : {std::array{0.0, a, b * golden}, {0.0, a * golden, b / golden}}) {
          const double scale = 5.5 / std::sqrt(p * p + q * q + r * r);
          SmallAtom atom = {1, {}};
          atom.coord[c] = scale * p, atom.coord[(c + 1) % 3] = scale * q, atom.coord[(c + 2) % 3] = scale * r;
          shell.push_back(atom);
        }
      }
      for (const double c : {-1.0, 1.0}) {
        const double scale = 5.5 / std::sqrt(3.0);
        shell.push_back({1, {scale * a, scale * b, scale * c}});
      }
    }
  }
  const Surface hollow = surface_of_file(one_shell_each(shell, 0, 0.5, 32));
  ASSERT_EQ(hollow.shares.pieces.size(), 2U);
  EXPECT_GT(hollow.shares.pieces[0].volume, 0.0);
  EXPECT_LT(hollow.shares.pieces[1].volume, 0.0);
  EXPECT_EQ(hollow.shares.volume, hollow.shares.pieces[0].volume + hollow.shares.pieces[1].volume);
}

// A bent chain of atoms without any symmetry, with orbitals that spread over all of them.
SmallFchk chain(const std::function<std::array<double, 3>(double, double, double)>& turn) {
  std::vector<SmallAtom> atoms = {{8, {0.1, -0.2, 0.3}},
                                  {1, {2.9, 0.4, -0.2}},
                                  {6, {4.2, 3.1, 0.6}},
                                  {7, {3.0, 5.5, 2.1}},
                                  {1, {0.2, 6.4, 2.9}}};
  for (SmallAtom& atom : atoms) {
    std::ranges::copy(turn(atom.coord[0], atom.coord[1], atom.coord[2]), atom.coord);
  }
  SmallFchk fields = one_shell_each(atoms, 0, 0.25, 4);
  fields.coefficient = [](unsigned i, unsigned j) { return 0.6 * std::sin(1.0 + i + 0.7 * j * (i + 1)); };
  return fields;
}

std::array<double, 3> as_it_is(double x, double y, double z) { return {x, y, z}; }

TEST(Surface, EdgesHaveTwoFacetsAndVerticesTheDensity) {
  const auto molecule = molecule_of(chain(as_it_is));
  for (const double step : {0.3, 0.5}) {
    const Lattice lattice = lattice_make(molecule.get(), step, 6.0);
    Fields values(molecule.get(), &lattice.cube, FieldKind::density_and_potential);
    Progress progress;
    March found = march(molecule.get(), lattice, &values, 0.001, &progress);
    ASSERT_EQ(found.end, March::End::done);
    const Mesh mesh = mesh_make(lattice, std::move(found), &values, 0.001, &progress);
    std::map<std::pair<unsigned, unsigned>, unsigned> edges;
    for (std::size_t facet = 0; facet < mesh.facets.size(); ++facet) {
      for (const auto& [a, b, c] : mesh.quarters(facet)) {
        ++edges[{a, b}], ++edges[{b, c}], ++edges[{c, a}];
      }
    }
    const auto is_paired = [&](const auto& edge) {
      const auto other = edges.find({edge.first.second, edge.first.first});
      return edge.second == 1 && other != edges.end() && other->second == 1;
    };
    EXPECT_TRUE(std::ranges::all_of(edges, is_paired));
    std::vector<double> there(2 * mesh.points.size());
    values.at(mesh.points, there);
    for (std::size_t n = 0; n < mesh.points.size(); ++n) {
      const bool is_vertex = n < mesh.vertex_count;
      ASSERT_PRED3([](double a, double b, double part) { return std::fabs(a / b - 1.0) < part; }, there[n],
                   0.001, is_vertex ? 1e-5 : 3e-2);
    }
  }
}

TEST(Surface, StepsTurnsAndMirrorsDoNotMatter) {
  const Surface expected = surface_of_file(chain(as_it_is), {.step = 0.2});
  ASSERT_GE(expected.extrema.list.size(), 5U);
  const std::pair<SmallFchk, double> others[] = {
      {chain(as_it_is), 0.8},
      {chain([](double x, double y, double z) {
         return std::array{x, y, -z};
       }),
       0.5},
      {chain([](double x, double y, double z) {
         return std::array{x + 7.1, y - 3.3, z + 0.21};
       }),
       0.5},
      {chain([](double x, double y, double z) {
         return std::array{0.6 * x - 0.8 * z, y, 0.8 * x + 0.6 * z};
       }),
       0.5},
  };
  for (const auto& [file, step] : others) {
    const Surface surface = surface_of_file(file, {.step = step});
    EXPECT_PART(surface.shares.whole.area, expected.shares.whole.area, 2e-4);
    EXPECT_PART(surface.shares.volume, expected.shares.volume, 2e-4);
    EXPECT_PART(surface.shares.whole.deviation, expected.shares.whole.deviation, 1e-3);
    double sum = 0.0;
    for (unsigned atom = 0; atom < 5; ++atom) {
      const Share &share = surface.shares.atoms[atom], &same = expected.shares.atoms[atom];
      EXPECT_PART(share.statistics.area, same.statistics.area, 1e-3) << atom;
      EXPECT_PART(share.statistics.mean, same.statistics.mean, 1e-3) << atom;
      sum += share.statistics.area;
    }
    EXPECT_PART(sum, surface.shares.whole.area, 1e-12);
    ASSERT_EQ(surface.extrema.list.size(), expected.extrema.list.size());
    for (std::size_t n = 0; n < expected.extrema.list.size(); ++n) {
      const Extremum &extremum = surface.extrema.list[n], &same = expected.extrema.list[n];
      EXPECT_EQ(extremum.is_maximum, same.is_maximum);
      EXPECT_EQ(extremum.atom, same.atom);
      EXPECT_NEAR(extremum.value, same.value, 1e-6);
      EXPECT_NEAR(extremum.curvatures[0], same.curvatures[0], 1e-4);
      EXPECT_NEAR(extremum.curvatures[1], same.curvatures[1], 1e-4);
    }
  }
}

TEST(Surface, SharesFollowTheRadiiOrTheNearestNucleus) {
  // Hydrogen and carbon in one ball of density around the first: shares are caps whose heights follow from
  // the rule.
  SmallFchk fields = one_shell_each({{1, {0, 0, 0}}, {6, {0, 0, 2}}}, 0, 0.4, 1);
  const double r = radius_of_s(0.4, 0.001);
  const auto cap = [&](double cosine) { return 2.0 * pi * r * r * (1.0 - cosine); };
  const Surface nearest = surface_of_file(fields, {}, false);
  EXPECT_PART(nearest.shares.atoms[1].statistics.area, cap(1.0 / r), 1e-3);
  // |r - C| / 1.70 = |r - H| / 1.20 where |r - H| is the radius of the ball: |r - C|² = r² - 4 r c + 4.
  const double far = r * 1.70 / 1.20;
  EXPECT_PART(surface_of_file(fields).shares.atoms[1].statistics.area,
              cap((r * r + 4.0 - far * far) / (4.0 * r)), 1e-3);
  // An atom in the middle has none.
  fields = one_shell_each({{1, {0, 0, 0}}, {1, {0, 0, 0.01}}, {1, {0, 0, -0.01}}}, 0, 0.4, 1);
  EXPECT_TRUE(surface_of_file(fields, {}, false).shares.atoms[0].is_empty ||
              surface_of_file(fields, {}, false).shares.atoms[0].statistics.area < 0.3);
}

class SurfaceRun : public testing::Test {
 protected:
  Scratch here;
  const std::string water = ORVA_EXAMPLES "/water.fchk";

  std::pair<int, std::string> run(const std::string& arguments) {
    return run_command(here, ORVA_SURFACE " " + arguments);
  }
};

TEST_F(SurfaceRun, BytesAreTheSameWithEveryKernel) {
  std::set<std::string> outputs;
  with_every_kernel([&](const std::string&) {
    const auto [status, output] = run("--json --mesh mesh.ply " ORVA_EXAMPLES "/no2.fchk");
    EXPECT_EQ(status, 0);
    outputs.insert(output + read_file(here / "mesh.ply"));
  });
  EXPECT_EQ(outputs.size(), 1U);
}

// The nitrogen's lone pair, ortho and para carbons, each on both faces; by rays from the nuclei and other
// formulas.
TEST_F(SurfaceRun, AnilineHasItsKnownMinima) {
  const auto [status, output] =
      run("--csv --extrema --unit hartree " ORVA_EXAMPLES "/aniline.fchk | cut -d, -f2,3,7 | head -8");
  std::istringstream lines(output);
  std::string heading, line;
  std::getline(lines, heading);
  EXPECT_EQ(heading, "kind,value_hartree,atom");
  const std::pair<double, int> expected[] = {{0.29039, 1}, {0.31032, 3}, {0.3103, 7}, {0.31060, 5},
                                             {0.3107, 5},  {0.3107, 3},  {0.3107, 7}};
  for (const auto& [value, atom] : expected) {
    double found = 0.0;
    int number = 0;
    std::getline(lines, line);
    ASSERT_EQ(std::sscanf(line.c_str(), "minimum,%lf,%d", &found, &number), 2) << line;
    EXPECT_NEAR(found, value, 6e-5);
    EXPECT_EQ(number, atom) << line;
  }
  const std::string all = "--csv --extrema " ORVA_EXAMPLES "/aniline.fchk | cut -d, -f2,7 | grep -c ";
  EXPECT_EQ(run(all + "'minimum,[46]$'").second, "0\n") << "over meta carbons";
}

TEST_F(SurfaceRun, WhatCannotBeIsOneLineAndTheOthersGoOn) {
  write_file(here / "empty", "");
  write_file(here / "broken", read_file(water).substr(0, 8000));
  const std::string told =
      "orva-surface: empty: unexpected end of fchk file while reading comment line\n"
      "orva-surface: missing: cannot open file \"missing\"\n";
  const auto [status, output] = run("--csv empty missing " + water + " 2>errors | cut -d, -f2,3; cat errors");
  EXPECT_EQ(output, "number,symbol\n1,O\n2,H\n3,H\n" + told);
  EXPECT_EQ(run("empty " + water).first, 1);
  write_file(here / "nan", broken(read_file(water), "-2.05629890e+01", "            NaN"));
  EXPECT_EQ(run("nan").second,
            "orva-surface: nan: the potential on the surface is no number, or too large\n");
  EXPECT_EQ(run("--mesh /dev/stdout " + water).second,
            "orva-surface: " + water + ": the mesh cannot go where the numbers go\n");
  EXPECT_EQ(run(water).first, 0);
  EXPECT_EQ(run("--level 400 --json " + water).second,
            "orva-surface: " + water + ": the density nowhere reaches 400 bohr^-3\n{\"input\": \"" + water +
                "\", \"error\": \"the density nowhere reaches 400 bohr^-3\", \"warnings\": []}\n");
  EXPECT_EQ(run("broken").second.substr(0, 22), "orva-surface: broken: ");
  EXPECT_EQ(run("--mesh " + water + " " + water).second, "orva-surface: " + water + ": input file \"" +
                                                             water + "\" and mesh \"" + water +
                                                             "\" are the same file\n");
}

TEST_F(SurfaceRun, AChildThatIsKilledAndAPipeThatClosesAreTold) {
  // Each child takes longer than a second; the parent goes on after the first.
  const std::string told =
      run_command(here, "ulimit -t 1; " ORVA_SURFACE " --step 0.03 " + water + " " + water + " 2>&1").second;
  const std::string ended = "orva-surface: " + water + ": its process was ended: ";
  EXPECT_EQ(told.find(ended), 0U) << told;
  EXPECT_NE(told.find(ended, 1), told.npos) << told;
  const auto [status, output] = run_command(
      here, "(" ORVA_SURFACE " " + water + " " + water + "; echo $? >&2) 2>errors | true; cat errors");
  EXPECT_EQ(output, "warning: file closing failured\n1\n");
  EXPECT_EQ(run_command(here, ORVA_SURFACE " " + water + " >/dev/full").first, 1);
}

TEST_F(SurfaceRun, FormatsAreKnownByContentsAndOptionsAreChecked) {
  std::filesystem::copy(ORVA_EXAMPLES "/water_cation.wfn", here / "plain");
  const auto [status, output] = run("--csv plain | wc -l");
  EXPECT_EQ(output, "4\n");
  for (const char* arguments : {"", "--unit bohr x", "--level 0 x", "--step 1e9 x", "--nothing x",
                                "--mesh m x y", "--extrema x", "--json=1 x", "--level"}) {
    const auto [refused, told] = run(arguments);
    EXPECT_EQ(refused, 1) << arguments;
    EXPECT_EQ(std::ranges::count(told, '\n'), 1) << told;
  }
  EXPECT_EQ(run("--version").second, "orva-surface 1.4\n");
}

}  // namespace
