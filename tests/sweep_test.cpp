#include "sweep.hpp"

#include <algorithm>
#include <random>

#include "comp.hpp"
#include "cube.hpp"
#include "eval.hpp"
#include "fcheck.hpp"
#include "small_files.hpp"
#include "str_real.hpp"
#include "sweep_kernel.hpp"
#include "vec_base.hpp"
#include "wfn.hpp"

namespace {

// The source of the widest kernel, compiled for any processor.
struct Tag;
using EightLanes = SweepPass<Pack<Tag, 8>, 2, 6>;
const SweepKernel eight_lanes = EightLanes::kernel("eight lanes", [] { return true; });

std::vector<const SweepKernel*> supported_kernels() {
  std::vector<const SweepKernel*> kernels(sweep_kernels().begin(), sweep_kernels().end());
  std::erase_if(kernels, [](const SweepKernel* kernel) { return !kernel->is_supported(); });
  return kernels;
}

// Shells of every kind, with heads that fade at different distances, an order that does not, and a function
// without primitives.
SmallFchk every_shell(const std::string& method) {
  SmallFchk fields = {.method = method, .electrons = 15, .alpha_electrons = 8, .beta_electrons = 5};
  for (const int type : {0, 1, 2, 3, 4, -2, -3, -4}) {
    if (type >= 0 || method[0] == 'U') {
      fields.shells.push_back({type, 1, {800.0, 90.0, 7.0, 0.9}, {0.1, -0.2, 0.5, 0.25}, {}});
      fields.shells.push_back({type, 2, {0.4, 30.0, 3.0}, {0.5, 0.125, 1e-9}, {}});
    }
  }
  fields.shells.push_back({0, 2, {}, {}, {}});
  fields.coefficient = [](unsigned i, unsigned j) { return std::sin(1.0 + i + 0.7 * j * (i + 1)); };
  return fields;
}

const CubeDefinition grids[] = {
    {{5, 3, 19}, {{-3, -2, -4}}, {{1.1, 0.2, -0.1}, {0.3, 1.5, 0.2}, {0.05, -0.1, 0.4}}},
    {{2, 3, 3}, {{-1, -1, 0}}, {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}},
    {{1, 1, 1}, {{0.0, 0.5, 3.0}}, {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}},
    {{3, 1, 40}, {{0, 0, 0}}, {{0, 0, 9}, {0, 0, 0}, {0, 0, 1.5}}},             // to where all is 0
    {{2, 1, 12}, {{0, 0, 0}}, {{1e155, 0, 0}, {0, 0, 0}, {0, 1e154, 1e-300}}},  // beyond all reason
    {{0, 4, 4}, {}, {}},
    {{4, 0, 4}, {}, {}},
    {{4, 4, 0}, {}, {}},
};

void expect_same_text(const Molecule& molecule) {
  for (const CubeDefinition& cube : grids) {
    for (const std::int16_t code : std::to_array<std::int16_t>({10, 42, 50, 63, 101, 201})) {
      if (code == 201 && molecule.beta_orbitals == nullptr) {
        continue;
      }
      constexpr std::int16_t orbital = 7;
      EXPECT_EQ(text_of_sweep(molecule, cube, code, orbital), text_of_points(molecule, cube, code, orbital));
    }
  }
}

}  // namespace

TEST(Sweep, WritesTheTextOfThePointByPointFunctionsWithEveryKernel) {
  for (const SweepKernel* kernel : supported_kernels()) {
    SCOPED_TRACE(kernel->name);
    setenv("ORVA_KERNEL", kernel->name, 1);
    expect_same_text(*read_text(fcheck_read, fchk_text(every_shell("UHF"))));
    const auto cartesian = read_text(fcheck_read, fchk_text(every_shell("RHF")));
    expect_same_text(*cartesian);
    expect_same_text(*read_text(wfn_read, wfn_text(*cartesian)));
    SmallFchk empty = every_shell("RHF");
    empty.electrons = 1;
    expect_same_text(*read_text(fcheck_read, fchk_text(empty)));
    empty.method = "UHF";
    empty.alpha_electrons = empty.beta_electrons = 0;
    empty.coefficient = [](unsigned, unsigned) { return std::nan(""); };
    expect_same_text(*read_text(fcheck_read, fchk_text(empty)));
  }
  setenv("ORVA_KERNEL", "abacus", 1);
  std::string names;
  for (const SweepKernel* kernel : supported_kernels()) {
    names += std::string(" ") + kernel->name;
  }
  expect_error([] { sweep_choose_kernel(); }, "kernel \"abacus\" is not available, only" + names);
  unsetenv("ORVA_KERNEL");
}

// Every basis function of a real molecule as an orbital of its own, so that a bit that a skipped primitive
// would have changed is seen. Points crowd around the distances where contractions begin to start later.
TEST(Sweep, GivesEveryBitOfEveryBasisFunction) {
  std::mt19937_64 random(4);
  std::uniform_real_distribution<double> unit(-1.0, 1.0);
  for (const char* name : {"aniline", "no2"}) {
    const auto molecule = read_text(fcheck_read, read_file(std::string(ORVA_EXAMPLES "/") + name + ".fchk"));
    const unsigned n = molecule->basis_count;
    std::vector<double> rows(std::size_t{n} * n);
    std::vector<Orbital> orbitals(n);
    std::vector<const Orbital*> list;
    for (unsigned b = 0; b < n; ++b) {
      rows[b * std::size_t{n} + b] = 1.0;
      orbitals[b] = {0.0, &rows[b * std::size_t{n}]};
      list.push_back(&orbitals[b]);
    }
    std::vector<const SweepKernel*> kernels = supported_kernels();
    kernels.push_back(&eight_lanes);
    for (const SweepKernel* kernel : kernels) {
      Sweep sweep(molecule.get(), *kernel, SweepField::orbital, list, 1e3);
      const unsigned room = sweep.block_points();
      std::vector<double> points(3 * room), expected(n);
      for (unsigned round = 0; round < 8000 / room; ++round) {
        const unsigned count = round % 2 == 0 ? room : room - 3;
        const Atom& atom = molecule->atoms[round % molecule->atom_count];
        const BasisFunction& function = molecule->basis[(round * 7) % n];
        for (unsigned i = 0; i < count; ++i) {
          // r² = about 42 / (difference of two exponents), or anything
          const double last = function.exponents[function.primitive_count - 1];
          const double later = std::sqrt(45.0 / (function.exponents[0] - 0.9 * last));
          const double r = i % 4 == 0 ? 30.0 * unit(random) : later * (1 + 0.1 * unit(random));
          const double to[3] = {unit(random), unit(random), unit(random)};
          for (unsigned c = 0; c < 3; ++c) {
            points[c * room + i] = atom.coord[c] + r * to[c] / std::hypot(to[0], to[1], to[2]);
          }
        }
        sweep.run(count, points.data());
        for (unsigned i = 0; i < count; ++i) {
          const double point[3] = {points[i], points[room + i], points[2 * room + i]};
          eval_bfce_vec(molecule.get(), point, expected.data());
          for (unsigned b = 0; b < n; ++b) {
            ASSERT_EQ(bits_of(sweep.field(b)[i]), bits_of(expected[b])) << kernel->name << name << b;
          }
        }
      }
    }
  }
}

TEST(Eval, WfnFileOfAMoleculeGivesTheFieldsOfItsCheckpointFile) {
  const auto molecule = read_text(fcheck_read, fchk_text(every_shell("RHF")));
  const auto from_wfn = read_text(wfn_read, wfn_text(*molecule));
  const auto fields = [](const Molecule* one, double x) {
    const double point[3] = {x, 0.4, 0.7};
    std::vector<double> values(one->basis_count);
    std::array<double, 2> result{};
    eval_bfce_vec(one, point, values.data());
    eval_orva(one, values.data(), &result[0], &result[1]);
    return result;
  };
  for (const double x : {-2.0, -0.3, 0.1, 1.5}) {
    const auto expected = fields(molecule.get(), x), found = fields(from_wfn.get(), x);
    EXPECT_NEAR(found[0], expected[0], 1e-12 * expected[0]);
    EXPECT_NEAR(found[1], expected[1], 1e-12 * expected[1]);
  }
}

TEST(Sweep, UndefinedPointsHaveNoDensity) {
  const auto molecule = read_text(fcheck_read, fchk_text(every_shell("RHF")));
  const CubeDefinition cube = {{1, 1, 2}, {{std::nan(""), 0, 0}}, {{1, 0, 0}, {0, 1, 0}, {0, 0, 30}}};
  EXPECT_EQ(written([&](std::FILE* stream) { comp_data(molecule.get(), &cube, 10, 0, stream, nullptr); }),
            "          nan          nan\n");
}

TEST(Sweep, BlocksOfOrbitalsHaveTheValuesOfSingleOnes) {
  const auto molecule = read_text(fcheck_read, fchk_text(every_shell("UHF")));
  const CubeDefinition& cube = grids[0];
  OrbitalValues values = comp_orbital_alloc(&cube, 9, 70);
  comp_orbital_values(molecule.get(), &cube, molecule->beta_orbitals + 1, 9, &values);
  for (std::int16_t orbital = 2; orbital <= 10; ++orbital) {
    EXPECT_EQ(written([&](std::FILE* stream) {
                comp_write_values(&cube, values.of(static_cast<std::size_t>(orbital - 2)), stream);
              }),
              text_of_points(*molecule, cube, 201, orbital)[0]);
  }
  const std::tuple<std::array<unsigned, 3>, unsigned, unsigned> rows[] = {
      {{80, 80, 80}, 0, 16},    {{400, 400, 400}, 0, 0},        {{200, 200, 200}, 0, 0}, {{0, 9, 9}, 9, 900},
      {{1, 1, 1}, 1U << 20, 7}, {{1, 1, 1}, (1U << 22) - 1, 2}, {{1, 1, 1}, 1U << 22, 0}};
  for (const auto& [npoints, basis_count, orbital_count] : rows) {
    const CubeDefinition shape = {{npoints[0], npoints[1], npoints[2]}, {}, {}};
    EXPECT_EQ(comp_orbital_alloc(&shape, 900, basis_count).orbital_count, orbital_count) << basis_count;
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
  for (int i = 0; i < 8000000; ++i) {
    check(from_bits(random(), 0.0));  // every magnitude, NaN and infinities among them
  }
  for (int i = 0; i < 700000; ++i) {  // decimal ties: six digits and a half
    const double digits = 100000.5 + static_cast<double>(random() % 900000);
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
