#include "app/field/exact/sweep.hpp"

#include "app/cube/comp.hpp"
#include "app/field/fields.hpp"
#include "app/field/point/eval.hpp"
#include "app/field/point/pack.hpp"
#include "app/input/fcheck.hpp"
#include "app/input/wfn.hpp"
#include "app/model/cube_definition.hpp"
#include "lib/str_real.hpp"
#include "small_files.hpp"

namespace {

const CubeDefinition grids[] = {
    {{5, 3, 19}, {{-3, -2, -4}}, {{1.1, 0.2, -0.1}, {0.3, 1.5, 0.2}, {0.05, -0.1, 0.4}}},
    {{2, 3, 3}, {{-1, -1, 0}}, {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}},
    {{1, 1, 1}, {{0.0, 0.5, 3.0}}, {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}},
    {{3, 1, 40}, {{0, 0, 0}}, {{0, 0, 9}, {0, 0, 0}, {0, 0, 1.5}}},             // to where all is 0
    {{2, 1, 12}, {{0, 0, 0}}, {{1e155, 0, 0}, {0, 0, 0}, {0, 1e154, 1e-300}}},  // beyond all reason
    {{2, 2, 2}, {{0, 0, 0}}, {{0, 0, 1e16}, {0, 0, -1e16}, {0, 0, 1}}},         // of which the order counts
    {{1, 1, 2}, {{std::nan(""), 0, 0}}, {{1, 0, 0}, {0, 1, 0}, {0, 0, 30}}},
    {{3, 4, 21}, {{-3, -2, -4}}, {{1.1, 0, 0}, {0, 0.9, 0}, {0, 0, 0.4}}},  // along z, x and y
    {{4, 3, 131}, {{-2, -2, -1}}, {{0, -0.6, 0}, {0, 0, 1.2}, {0.04, 0, 0}}},
    {{2, 5, 16}, {{-1, 3, -3}}, {{0, 0, 2.5}, {0.8, 0, 0}, {0, -0.5, 0}}},
    {{2, 2, 40}, {{0, 0, -50}}, {{0, 0, 0}, {0, 3, 0}, {0, 0, 2.5}}},  // from where all is 0 and back
    {{0, 4, 4}, {}, {}},
    {{4, 0, 4}, {}, {}},
    {{4, 4, 0}, {}, {}},
};

void expect_same_text(const Molecule& molecule) {
  for (const CubeDefinition& cube : grids) {
    for (const auto& [code, title, is_orbital] : cube_fields) {
      if (code == field_beta_orbital && molecule.beta_orbitals == nullptr) {
        continue;
      }
      constexpr std::int16_t orbital = 7;
      EXPECT_EQ(text_of_sweep(molecule, cube, code, orbital), text_of_points(molecule, cube, code, orbital))
          << title;
    }
  }
}

// The bits of a number; one pattern for all that are none.
std::uint64_t pattern(double value) { return std::isnan(value) ? 1 : bits_of(value); }

// Every basis function as an orbital of its own, by every kernel: not a bit may differ from the evaluation
// point by point, so that one that a skipped primitive would have changed is seen.
void expect_every_bit(const Molecule& molecule, const std::vector<CubeDefinition>& cubes) {
  const unsigned n = molecule.basis_count;
  std::vector<double> ones(std::size_t{n} * n), functions(n);
  std::vector<Orbital> orbitals(n);
  std::vector<WeightedOrbital> list;
  for (std::size_t b = 0; b < n; ++b) {
    ones[b * n + b] = 1.0;
    orbitals[b] = {0.0, &ones[b * n], 0.0};
    list.emplace_back(&orbitals[b]);
  }
  for (const CubeDefinition& cube : cubes) {
    with_every_kernel([&](const char*) {
      Sweep sweep(&molecule, choose_instruction_set().exact, FieldKind::orbital, list, cube_extent(&cube));
      const unsigned room = sweep.block_points();
      Numbers points(std::size_t{3} * room);
      unsigned count = 0, left = cube.npoints[0] * cube.npoints[1] * cube.npoints[2];
      for_each_point(cube, [&](const double* next, unsigned) {
        for (unsigned c = 0; c < 3; ++c) {
          points[c * room + count] = next[c];
        }
        --left;
        if (++count < room && left > 0) {
          return;
        }
        sweep.run(count, points.data());
        for (unsigned p = 0; p < count; ++p) {
          const double point[] = {points[p], points[room + p], points[2 * room + p]};
          eval_bfce_vec(&molecule, point, functions.data());
          for (unsigned b = 0; b < n; ++b) {
            ASSERT_EQ(pattern(sweep.field(b)[p]), pattern(eval_mo(&orbitals[b], functions.data(), n)))
                << "function " << b << " at " << point[0] << ' ' << point[1] << ' ' << point[2];
          }
        }
        count = 0;
      });
    });
  }
}

// Points from an atom away, `step` apart.
CubeDefinition line_from(const Atom& atom, unsigned count, double first, double step) {
  const auto& [x, y, z] = atom.coord;
  return {{1, 1, count},
          {{x + 0.36 * first, y + 0.48 * first, z + 0.8 * first}},
          {{}, {}, {0.36 * step, 0.48 * step, 0.8 * step}}};
}

}  // namespace

TEST(Sweep, WritesTheTextOfThePointByPointFunctionsWithEveryKernel) {
  std::string names;
  with_every_kernel([&](const char* name) {
    names += std::string(" ") + name;
    expect_same_text(*read_text(fcheck_read, fchk_text(every_shell("UHF"))));
    const auto cartesian = read_text(fcheck_read, fchk_text(every_shell("RHF")));
    expect_same_text(*cartesian);
    expect_same_text(*read_text(wfn_read, wfn_text(*cartesian)));
    SmallFchk empty = every_shell("RHF");
    empty.electrons = 1;
    expect_same_text(*read_text(fcheck_read, fchk_text(empty)));
    empty.method = "UHF";
    empty.alpha_electrons = empty.beta_electrons = 0;
    empty.coefficient = [](unsigned, unsigned j) { return j == 3 ? HUGE_VAL : 0.5; };
    expect_same_text(*read_text(fcheck_read, fchk_text(empty)));
  });
#ifndef ORVA_EMULATED
  const std::string processor = read_file("/proc/cpuinfo");
  const auto has = [&](const char* flag) { return processor.find(flag) != std::string::npos; };
  EXPECT_EQ(names.find("avx2") != std::string::npos, has(" avx2 ") && has(" fma "));
  EXPECT_EQ(names.find("avx512") != std::string::npos, has(" avx512f "));
#endif
  setenv("ORVA_KERNEL", "abacus", 1);
  expect_error(fields_check, "kernel \"abacus\" is not available, only" + names);
  unsetenv("ORVA_KERNEL");
  setenv("ORVA_ROWS", "no", 1);
  expect_error(fields_check, "ORVA_ROWS is \"no\", neither \"always\" nor \"never\"");
  setenv("ORVA_ROWS", "always", 1);
}

TEST(Sweep, GivesEveryBitOfEveryBasisFunction) {
  for (const char* name : {"aniline", "no2"}) {
    const auto molecule = read_text(fcheck_read, read_file(std::string(ORVA_EXAMPLES "/") + name + ".fchk"));
    std::vector<CubeDefinition> lines;
    for (const Atom& atom : std::span(molecule->atoms, molecule->atom_count)) {
      lines.push_back(line_from(atom, 300, 0.0, 0.031)), lines.push_back(line_from(atom, 100, 9.0, 0.3));
    }
    expect_every_bit(*molecule, lines);
  }
}

// Contractions of which terms must not be left out, or only just: two exponents, two coefficients.
TEST(Sweep, GivesEveryBitOfOddContractions) {
  const double nan = std::nan(""), inf = HUGE_VAL;
  const double rows[][4] = {{1, 1, 1e6, 0},     {2, 1, 1, 1},     {1, 1, 1, 0.5},
                            {1.05, 1, 1, 1e-3}, {1, 2, 1, 1},     {-0.001, 1, 1, 1},
                            {-2, -1, 1, 1},     {nan, nan, 1, 1}, {0.5, 0.2, 0x1p30, 0x1p30},
                            {0, 1, 1, 1},       {2, 0, 1, 1},     {1e-31, 1, 1, 1},
                            {1e31, 1, 1, 1},    {nan, 1, 1, 1},   {inf, 1, 1, 1},
                            {2, 1, inf, 1},     {2, 1, 1, nan},   {4, 1, 1e300, 1e-10},
                            {2, 1, 1, 0},       {2, -1, 1, 1},    {2, 1, 0, 0}};
  for (const auto& [a, b, c, d] : rows) {
    SmallFchk fields;
    fields.shells = {{1, 1, {a, b}, {c, d}, {}}, {-4, 2, {b, a, 0.5}, {d, c, 1.0}, {}}};
    const auto molecule = read_text(fcheck_read, fchk_text(fields));
    const Atom &first = molecule->atoms[0], &second = molecule->atoms[1];
    expect_every_bit(*molecule, {line_from(first, 90, 0.0, 0.1), line_from(second, 80, 0.0, 0.45),
                                 line_from(first, 300, 27.28, 1e-4)});  // about r² = 745.1
  }
}

// Numbers so large that products of them are infinite.
TEST(Sweep, GivesEveryBitAtHugeCoordinates) {
  const auto molecule = read_text(fcheck_read, fchk_text(every_shell("UHF")));
  for (unsigned place = 0; place < 15; ++place) {
    CubeDefinition cube = {{2, 2, 2}, {{0, 0, 0}}, {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    double* const numbers[] = {cube.points[0], cube.vectors[0], cube.vectors[1], cube.vectors[2],
                               molecule->atoms[0].coord};
    const double before = std::exchange(numbers[place / 3][place % 3], 1e160);
    expect_every_bit(*molecule, {cube});
    numbers[place / 3][place % 3] = before;
  }
}

// Functions of one shell are evaluated together where they follow each other and share what they have.
TEST(Sweep, GivesEveryBitInWhateverOrderTheFunctionsStand) {
  SmallFchk fields;
  fields.shells = {{1, 1, {1.0}, {1.0}, {}},           {1, 2, {1.0}, {1.0}, {}},
                   {1, 1, {1.5}, {1.0}, {}},           {1, 1, {1.0}, {0.5}, {}},
                   {1, 1, {1.0, 2.0}, {1.0, 0.5}, {}}, {2, 1, {1.0}, {1.0}, {}},
                   {-2, 1, {1.0}, {1.0}, {}},          {0, 2, {1.0}, {1.0}, {}}};
  const auto molecule = read_text(fcheck_read, fchk_text(fields));
  const std::span functions(molecule->basis, molecule->basis_count);
  const auto expect = [&] { expect_every_bit(*molecule, {grids[0]}); };
  const std::vector<BasisFunction> in_order(functions.begin(), functions.end());
  for (unsigned i = 0; i < 6; ++i) {  // x, x, y, y, z, z of two atoms
    functions[i] = in_order[i % 2 * 3 + i / 2];
  }
  expect();
  std::ranges::copy(in_order, functions.begin());
  for (unsigned turn = 0; turn < 4; ++turn) {  // of the y functions among the p shells
    expect();
    for (unsigned shell = 0; shell < 4; ++shell) {
      std::swap(functions[3 * shell + 1], functions[3 * shell + 4]);
    }
  }
  std::ranges::stable_sort(functions, {}, &BasisFunction::component);
  expect();
  std::ranges::reverse(functions);
  expect();
  std::mt19937 random(1);
  for (unsigned turn = 0; turn < 50; ++turn) {
    std::ranges::shuffle(functions, random);
    expect();
  }
  molecule->basis_count -= 2;  // the last shell is not whole
  expect();
  molecule->basis_count += 2;
}

TEST(Sweep, MemoryLimitsTheOrbitalsOfABlock) {
  const std::tuple<std::array<unsigned, 3>, unsigned, unsigned> rows[] = {
      {{80, 80, 80}, 0, 18},     {{400, 400, 400}, 0, 0}, {{200, 200, 200}, 0, 0}, {{0, 9, 9}, 9, 230},
      {{1, 1, 1}, 1U << 17, 23}, {{1, 1, 1}, 1677720, 2}, {{1, 1, 1}, 1677721, 0}};
  for (const auto& [npoints, basis_count, orbital_count] : rows) {
    const CubeDefinition shape = {{npoints[0], npoints[1], npoints[2]}, {}, {}};
    EXPECT_EQ(comp_orbital_alloc(&shape, 230, basis_count).orbital_count, orbital_count)
        << basis_count << " functions";
  }
}

TEST(ScientificText, IsSureWhereTheWholeToleranceHasOneText) {
  std::mt19937_64 random(6);
  char text[str_scientific_width + 1] = {};
  unsigned sure_count = 0;
  for (int i = 0; i < 300000; ++i) {
    // One in eight next to where the exponent of the text goes up.
    const double digits = random() % 8 == 0 ? 1e6 - 0.5 * static_cast<double>(random() % 3)
                                            : 100000.5 + static_cast<double>(random() % 900000);
    const double tolerance = std::pow(10.0, -7.001 - static_cast<double>(random() % 8));
    const double offset = 8.0 * tolerance * (static_cast<double>(random() % 2001) / 1000.0 - 1.0);
    const double value = (random() % 2 == 0 ? 1.0 : -1.0) * digits * (1.0 + offset) *
                         std::pow(10.0, static_cast<int>(random() % 220) - 110);
    const auto around = [&](double share) {
      return formatted("%13.5e", value * (1.0 - share * tolerance)) ==
             formatted("%13.5e", value * (1.0 + share * tolerance));
    };
    if (str_scientific_sure(value, tolerance, text)) {
      ++sure_count;
      ASSERT_TRUE(around(1.0)) << formatted("%a", value) << formatted(" %a", tolerance);
      ASSERT_EQ(text, formatted("%13.5e", value));
    } else {
      ASSERT_FALSE(around(4.5)) << formatted("%a", value) << formatted(" %a", tolerance);
    }
  }
  EXPECT_GT(sure_count, 100000U);
  const double inf = HUGE_VAL, nan = std::nan("");
  const std::pair<double, double> rows[] = {{1.5e-251, 0.0}, {0.0, 0.0}, {inf, 0.0}, {nan, 0.0},
                                            {1.5, 1.1e-7},   {1.5, inf}, {1.5, nan}};
  for (const auto& [value, tolerance] : rows) {
    EXPECT_FALSE(str_scientific_sure(value, tolerance, text)) << value << " within " << tolerance;
  }
}

TEST(ScientificText, IsThatOfPrintf) {
  std::mt19937_64 random(5);
  char text[str_scientific_width + 1] = {}, expected[32];
  const auto check = [&](double value) {
    str_scientific(value, text);
    std::snprintf(expected, sizeof expected, "%13.5e", value);
    ASSERT_STREQ(text, expected) << formatted("%a", value);
  };
  const auto check_with_neighbours = [&](double value) {
    check(value), check(std::nextafter(value, 0.0)), check(std::nextafter(value, HUGE_VAL));
  };
  for (int i = 0; i < 1000000; ++i) {
    check(from_bits(random(), 0.0));  // every magnitude, NaN and infinities among them
  }
  for (int i = 0; i < 100000; ++i) {  // decimal ties: six digits and a half
    // One in eight next to where the exponent of the text goes up.
    const double digits = random() % 8 == 0 ? 1e6 - 0.5 * static_cast<double>(random() % 3)
                                            : 100000.5 + static_cast<double>(random() % 900000);
    check_with_neighbours(digits * std::pow(10.0, static_cast<int>(random() % 40) - 20));
  }
  for (int exponent = -323; exponent <= 308; ++exponent) {
    const double power = std::strtod(("1e" + std::to_string(exponent)).c_str(), nullptr);
    for (const double factor : {1.0, 9.999994999, 9.999995, 9.9999951}) {
      check_with_neighbours(factor * power);
    }
  }
  for (const double value : {0.0, -0.0, HUGE_VAL, -HUGE_VAL, std::nan(""), -std::nan("")}) {
    check(value);
  }
}
