#include "app/field/rows/rows.hpp"

#include "app/cube/comp.hpp"
#include "app/field/fields.hpp"
#include "app/field/point/eval.hpp"
#include "app/field/rows/rows_bound.hpp"
#include "app/input/fcheck.hpp"
#include "app/model/occupation.hpp"
#include "small_files.hpp"

namespace {

// The grids of tests are small.
[[maybe_unused]] const int rows_everywhere = setenv("ORVA_ROWS", "always", 1);

using Orbitals = std::vector<WeightedOrbital>;

std::unique_ptr<RowSweep> make_rows(const Molecule& molecule, const CubeDefinition& cube, FieldKind field,
                                    const Orbitals& orbitals) {
  return RowSweep::make(&molecule, &cube, choose_instruction_set().rows, field, orbitals);
}

// The values that the functions for one point give, in the order of the fields.
Numbers exact_values(const Molecule& molecule, const double* point, FieldKind field,
                     const Orbitals& orbitals) {
  const unsigned n = molecule.basis_count;
  Numbers functions(n), values(2);
  eval_bfce_vec(&molecule, point, functions.data());
  if (field == FieldKind::density_and_potential) {
    eval_orva(&molecule, functions.data(), &values[0], &values[1]);
    return values;
  }
  values.clear();
  for (const auto& [orbital, weight] : orbitals) {
    values.push_back(field == FieldKind::orbital ? eval_mo(orbital, functions.data(), n)
                                                 : eval_mo_den(orbital, functions.data(), n));
  }
  return values;
}

struct Found {
  unsigned known = 0, unknown = 0, other_text = 0;
  double error = 0.0;      // the largest, relatively
  double share = 0.0;      // of a tolerance that is an error
  double tolerance = 0.0;  // the largest
};

// No value may lie farther from the exact one than its tolerance tells.
void expect_within_tolerance(const Molecule& molecule, const CubeDefinition& cube, FieldKind field,
                             const Orbitals& orbitals, Found* found) {
  const auto rows = make_rows(molecule, cube, field, orbitals);
  ASSERT_NE(rows, nullptr);
  for_each_point(cube, [&, row = 0U](const double* point, unsigned k) mutable {
    if (k == 0) {
      rows->run(row / cube.npoints[1], row % cube.npoints[1]);
      ++row;
    }
    const Numbers exact = exact_values(molecule, point, field, orbitals);
    for (std::size_t f = 0; f < exact.size(); ++f) {
      const double value = rows->field(f)[k], tolerance = rows->tolerances(f)[k];
      const double error = std::fabs(value - exact[f]) / std::fabs(value);
      if (tolerance < 1e-7) {
        ASSERT_LE(std::fabs(value - exact[f]), tolerance * std::fabs(value))
            << "field " << f << " at " << point[0] << ' ' << point[1] << ' ' << point[2];
        found->share = std::max(found->share, error / tolerance);
      }
      found->error = std::max(found->error, error);
      found->tolerance = std::max(found->tolerance, tolerance);
      ++(tolerance < 1e-7 ? found->known : found->unknown);
      found->other_text += formatted("%13.5e", value) != formatted("%13.5e", exact[f]) ? 1 : 0;
    }
  });
}

// Shells with exponents of ten decades, contractions that cancel, and orbitals with nodes everywhere.
SmallFchk strained(std::mt19937_64& random) {
  const auto number = [&] { return std::uniform_real_distribution(-1.0, 1.0)(random); };
  const auto exponent = [&] { return std::pow(10.0, 1.5 + 4.5 * number()); };
  SmallFchk fields = {.electrons = 8};
  fields.atoms.push_back({6, {number(), number(), 2.0 * number()}});
  const int types[] = {0, 1, 2, 3, 4, -2, -3, -4};
  for (int i = 0; i < 10; ++i) {
    const double a = exponent(), c = number();
    const unsigned atom = 1 + static_cast<unsigned>(random() % 3);
    const int type = types[random() % 8];
    fields.shells.push_back({type, atom, {a, exponent(), exponent()}, {c, number(), number()}, {}});
    fields.shells.push_back({type, atom, {a, a * (1.0 + 1e-7)}, {c, -c}, {}});
    fields.shells.push_back({type, atom, {std::pow(10.0, number())}, {number()}, {}});
    fields.shells.push_back({0, atom, {2.0, 0.5}, {1.0, 1.0 + 1e-11 * i}, {}});  // no multiples, but nearly
    fields.shells.push_back({0, 2, {0.3}, {std::pow(1e3, i % 3)}, {}});          // multiples
  }
  fields.coefficient = [seed = random()](unsigned i, unsigned j) {
    std::mt19937_64 generator(seed + 1000UL * i + j);
    return std::uniform_real_distribution(-1.0, 1.0)(generator) * (i < 12 ? 1.0 : 1e4);
  };
  return fields;
}

// A function, and its coefficient in an orbital.
struct Part {
  int type, component;
  Numbers exponents, contraction;
  double coefficient;
};

// The same of an orbital in memory: a file that has thousands of functions would be large.
Found find_in_orbital(std::vector<Part> parts, const CubeDefinition& cube,
                      const std::vector<FieldKind>& fields) {
  Atom atom{};
  std::vector<BasisFunction> functions;
  Numbers coefficients;
  for (Part& part : parts) {
    const auto type = static_cast<short>(part.type), component = static_cast<short>(part.component);
    const auto count = static_cast<unsigned>(part.exponents.size());
    functions.push_back(
        {type, component, type, count, 0, part.exponents.data(), part.contraction.data(), &atom});
    coefficients.push_back(part.coefficient);
  }
  Molecule molecule{};
  Orbital orbital = {-1.0, coefficients.data(), 0.0};
  molecule.atoms = &atom, molecule.basis = functions.data(), molecule.alpha_orbitals = &orbital;
  molecule.basis_count = static_cast<unsigned>(functions.size());
  molecule.atom_count = 1, molecule.electron_count = 2;
  Found found;
  with_every_kernel([&](const char*) {
    for (const FieldKind field : fields) {
      expect_within_tolerance(molecule, cube, field, {&orbital}, &found);
    }
  });
  return found;
}

CubeDefinition random_grid(std::mt19937_64& random) {
  const auto number = [&] { return std::uniform_real_distribution(-1.0, 1.0)(random); };
  CubeDefinition cube = {{2, 2, 16 + static_cast<unsigned>(random() % 150)},
                         {{3.0 * number(), 3.0 * number(), 3.0 * number()}},
                         {}};
  const std::size_t first = random() % 3, turn = 1 + random() % 2;
  for (unsigned axis = 0; axis < 3; ++axis) {
    cube.vectors[axis][(first + axis * turn) % 3] = axis < 2 ? 2.0 * number() : 0.1 * number() + 0.11;
  }
  return cube;
}

}  // namespace

TEST(Rows, KeepWithinTheirTolerance) {
  std::mt19937_64 random(11);
  Found found;
  for (int trial = 0; trial < 5; ++trial) {
    const auto molecule = read_text(fcheck_read, fchk_text(strained(random)));
    const CubeDefinition cube = random_grid(random);
    Orbitals all;
    for (unsigned i = 0; i < molecule->alpha_orbital_count; ++i) {
      molecule->alpha_orbitals[i].occupation = i < 8 ? std::pow(10.0, 5.0 - 2.0 * i) : 0.0;
      all.emplace_back(&molecule->alpha_orbitals[i]);
    }
    with_every_kernel([&](const char*) {
      const auto expect = [&](FieldKind field, const Orbitals& orbitals) {
        expect_within_tolerance(*molecule, cube, field, orbitals, &found);
      };
      for (const bool has_weights : {false, true}) {
        molecule->has_occupations = has_weights;
        expect(FieldKind::density_and_potential, occupation_of(molecule.get()).orbitals);
      }
      expect(FieldKind::orbital, all);
      expect(FieldKind::orbital, {all[2]});
      expect(FieldKind::orbital_density, {all[0], all[1]});
    });
  }
  EXPECT_GT(found.known, 5 * found.unknown);
}

// Where neighbouring points differ by many orders of magnitude, all is known but the first rows, which are
// weighed as if they did not, and what is below rows_least.
TEST(Rows, KnowWhatIsFarApartAndFarOut) {
  std::mt19937_64 random(14);
  const CubeDefinition cube = {{5, 9, 26}, {{-9, 3, -13}}, {{1.1, 0, 0}, {0, 0.8, 0}, {0, 0, 1.03}}};
  for (const SmallFchk& fields : {SmallFchk{}, strained(random)}) {
    const auto molecule = read_text(fcheck_read, fchk_text(fields));
    const Orbitals two = {&molecule->alpha_orbitals[1], &molecule->alpha_orbitals[3]};
    with_every_kernel([&](const char*) {
      Found found;
      expect_within_tolerance(*molecule, cube, FieldKind::density_and_potential,
                              occupation_of(molecule.get()).orbitals, &found);
      expect_within_tolerance(*molecule, cube, FieldKind::orbital, two, &found);
      expect_within_tolerance(*molecule, cube, FieldKind::orbital_density, {molecule->alpha_orbitals},
                              &found);
      EXPECT_GT(found.known, 9 * found.unknown);
    });
  }
}

// Neighbouring rows that are weighed together differ in one coordinate; on other grids each is by itself.
TEST(Rows, LieOnAnyGridAlongTheAxes) {
  const auto molecule = read_text(fcheck_read, fchk_text());
  const std::pair<const char*, CubeDefinition> grids[] = {
      {"both across change", {{1, 9, 40}, {{-1, -1.5, -2}}, {{0, 0, 0}, {0.1, 0.13, 0}, {0, 0, 0.2}}}},
      {"no second step", {{3, 9, 40}, {{-1, 0.1, -2}}, {{0.3, 0, 0}, {0, 0, 0}, {0, 0, 0.2}}}},
      {"no first step", {{3, 9, 40}, {{0.2, -1, -2}}, {{0, 0, 0}, {0, 0.1, 0}, {0, 0, 0.2}}}},
      {"the other way round", {{3, 9, 40}, {{-1, -1, -2}}, {{0, 0.3, 0}, {0.1, 0, 0}, {0, 0, 0.2}}}},
      {"along y", {{3, 9, 40}, {{-1, -2, -1}}, {{0, 0, 0.3}, {0.1, 0, 0}, {0, 0.2, 0}}}}};
  for (const auto& [name, cube] : grids) {
    SCOPED_TRACE(name);
    with_every_kernel([&, &at = cube](const char*) {
      Found found;
      expect_within_tolerance(*molecule, at, FieldKind::density_and_potential,
                              occupation_of(molecule.get()).orbitals, &found);
      EXPECT_EQ(found.unknown, 0U);
    });
  }
}

// Of rows that are weighed together, what counts in the first is next to nothing in the last, or the other
// way round: steep functions, and those with a node in the row.
TEST(Rows, WeighWhatComesToSomethingInAnyOfTheNeighbours) {
  SmallFchk fields = {
      .atoms = {{3, {0, 0, 0}}},
      .shells = {{1, 1, {400.0}, {1.0}, {}}, {0, 1, {400.0}, {1.0}, {}}, {1, 1, {0.5}, {1.0}, {}}}};
  fields.coefficient = [](unsigned, unsigned j) { return j == 3 || j == 5 ? 1.0 : 0.0; };  // s and y
  const auto molecule = read_text(fcheck_read, fchk_text(fields));
  for (const double start : {0.0, -0.57}) {
    const CubeDefinition cube = {{1, 8, 40}, {{0.01, start, -2}}, {{1, 0, 0}, {0, 0.19, 0}, {0, 0, 0.1}}};
    with_every_kernel([&](const char*) {
      Found found;
      expect_within_tolerance(*molecule, cube, FieldKind::density_and_potential,
                              occupation_of(molecule.get()).orbitals, &found);
      expect_within_tolerance(*molecule, cube, FieldKind::orbital, {molecule->alpha_orbitals}, &found);
      EXPECT_GT(found.known, 2 * found.unknown);
    });
  }
}

// One end of a long row is in sight, but not of the next row.
TEST(Rows, KeepNothingOfAnEarlierRow) {
  const SmallFchk fields = {.atoms = {{3, {0, 0, 0}}, {1, {0, 0, 20}}},
                            .shells = {{0, 1, {0.5}, {1.0}, {}}, {0, 2, {8.0}, {1.0}, {}}}};
  const auto molecule = read_text(fcheck_read, fchk_text(fields));
  const CubeDefinition cube = {{1, 4, 350}, {{0.1, -6, -25}}, {{1, 0, 0}, {0, 6, 0}, {0, 0, 0.2}}};
  with_every_kernel([&](const char*) {
    Found found;
    expect_within_tolerance(*molecule, cube, FieldKind::density_and_potential,
                            occupation_of(molecule.get()).orbitals, &found);
    EXPECT_GT(2 * found.known, found.unknown);
  });
}

// A tile with next to nothing at one end, and at the other large functions that cancel.
TEST(Rows, BoundEachPointByItself) {
  SmallFchk fields = {.electrons = 2, .alpha_electrons = 1, .beta_electrons = 1};
  fields.atoms = {{1, {0, 0, 0}}, {1, {0, 0, 8.3}}};
  fields.shells = {{0, 1, {0.001}, {1.0}, {}}};
  for (const double exponent : {0.3, 0.300003, 0.300006}) {
    fields.shells.push_back({0, 2, {exponent}, {1.0}, {}});
  }
  fields.coefficient = [](unsigned, unsigned j) { return std::array{10.0, 1e9, -2e9, 1e9}[j]; };
  const auto molecule = read_text(fcheck_read, fchk_text(fields));
  const CubeDefinition cube = {{1, 6, 32}, {{1, 1, 0}}, {{1, 0, 0}, {0, 0.7, 0}, {0, 0, 1}}};
  with_every_kernel([&](const char*) {
    Found found;
    expect_within_tolerance(*molecule, cube, FieldKind::density_and_potential,
                            occupation_of(molecule.get()).orbitals, &found);
    EXPECT_GT(found.known, 200U);
  });
}

// Coefficients whose squares underflow, with weights and normalization constants that make up for it.
TEST(Rows, CountCoefficientsThatAreNextToNothing) {
  SmallFchk fields = {.atoms = {{1, {0, 0, 0}}}, .shells = {{0, 1, {2.0}, {1.0}, {}}}};
  for (unsigned i = 1; i <= 300; ++i) {
    const double exponent = 2.0 + 0.0001 * i;
    fields.shells.push_back({0, 1, {exponent}, {0.9e30 / std::pow(2.0 * exponent / M_PI, 0.75)}, {}});
  }
  fields.coefficient = [](unsigned i, unsigned j) {
    return i == 0 ? (j == 0 ? 1.0 : 0.0) : (j == 0 ? 6e-130 : 1.5e-162);
  };
  const auto molecule = read_text(fcheck_read, fchk_text(fields));
  const CubeDefinition cube = {{1, 6, 32}, {{0.1, -0.7, -8}}, {{1, 0, 0}, {0, 0.7, 0}, {0, 0, 0.5}}};
  molecule->has_occupations = true;
  for (Orbital& orbital : std::span(molecule->alpha_orbitals, molecule->alpha_orbital_count)) {
    orbital.occupation = 0.0;
  }
  molecule->alpha_orbitals[0].occupation = 1.0, molecule->alpha_orbitals[0].energy = 0.0;
  molecule->alpha_orbitals[1].occupation = 1e30, molecule->alpha_orbitals[1].energy = -1e30;
  with_every_kernel([&](const char*) {
    Found found;
    expect_within_tolerance(*molecule, cube, FieldKind::density_and_potential,
                            occupation_of(molecule.get()).orbitals, &found);
  });
}

// Many functions, each too small to be kept, which together are more than all rounding, in an orbital that
// counts for the potential only. Behind a row that is far away, rows are weighed by points, the last
// functions first.
TEST(Rows, CountWhatTheyLeaveOutOfThePotential) {
  for (const bool is_last : {false, true}) {
    SmallFchk fields;
    const std::size_t place = is_last ? fields.shells.size() : 0;
    for (unsigned i = 0; i < 300; ++i) {
      fields.shells.insert(fields.shells.end() - static_cast<std::ptrdiff_t>(place),
                           {0, 1, {1.0 + 0.001 * i}, {1.0}, {}});
    }
    fields.coefficient = [&](unsigned i, unsigned j) {
      return (is_last ? j < 300 : j >= 5) ? 1e-14 : i == 0 ? 1.0 : 0.0;
    };
    fields.energy = [](unsigned i) { return i == 0 ? -1e-3 : -1e20; };
    const auto molecule = read_text(fcheck_read, fchk_text(fields));
    for (const unsigned row_count : {1U, 2U}) {
      const CubeDefinition cube = {
          {1, row_count, 40}, {{0.1, 30.2 - 30.0 * row_count, -2}}, {{1, 0, 0}, {0, 30, 0}, {0, 0, 0.1}}};
      with_every_kernel([&](const char*) {
        Found found;
        expect_within_tolerance(*molecule, cube, FieldKind::density_and_potential,
                                occupation_of(molecule.get()).orbitals, &found);
      });
    }
  }
}

// Sums in which all roundings of one kind go the same way. What is added to a large number is just below or
// above half a unit of its last place, by how far the number is from a power of two: each point has its own.
TEST(Rows, CountTheRoundingsOfSums) {
  constexpr std::size_t many = 2000;
  constexpr double below_half = 0.98 * rows_unit, above_half = 1.02 * rows_unit;
  const Part large = {0, 0, {1.0}, {1.0}, 1.0};
  const auto followed_by = [&](auto small, const Part& first) {
    std::vector<Part> parts = {first};
    for (std::size_t i = 0; i < many; ++i) {
      parts.push_back(small(0.001 * static_cast<double>(i)));
    }
    return parts;
  };
  // Their second primitive, which comes to nothing, makes each function a radial of its own.
  const auto own_radial = [](int type, double coefficient) {
    return [=](double distinct) { return Part{type, 0, {1.0, 2.0 + distinct}, {1.0, 1e-30}, coefficient}; };
  };
  const auto multiple = [](double) { return Part{0, 0, {1.0}, {1.0}, below_half}; };
  Part long_contraction = {0, 0, Numbers(many, 1.0), Numbers(many, below_half), 1.0};
  long_contraction.contraction[0] = 1.0;
  const std::tuple<const char*, std::vector<Part>, double, double> rows[] = {
      {"primitives", {long_contraction}, 0.1, 0.4},
      {"functions, multiples", followed_by(multiple, large), 0.1, 0.8},
      {"row functions", followed_by(own_radial(-4, 1e-10), large), 0.1, 0.2},
      {"left out", followed_by(own_radial(0, above_half), large), 0.1, 0.8},
      {"out of reach", followed_by(own_radial(0, 1.0), {0, 0, {0.01}, {1.0}, 1e-12}), 8.0, 0.001},
      {"near multiples", {{0, 0, {2, 1}, {1, 1}, 1}, {0, 0, {2, 1}, {1, 1 + 1e-11}, 1}}, 0.1, 0.0}};
  for (const auto& [name, parts, x, share] : rows) {
    SCOPED_TRACE(name);
    const CubeDefinition cube = {{1, 1, 200}, {{x, 0.2, 0.3}}, {{1, 0, 0}, {0, 1, 0}, {0, 0, 0.01}}};
    const Found found = find_in_orbital(
        parts, cube, {FieldKind::orbital, FieldKind::orbital_density, FieldKind::density_and_potential});
    EXPECT_GT(found.share, share) << "no strain";
    EXPECT_LT(found.tolerance, x < 1.0 ? 2e-11 : 1e-7);
  }
}

// The larger an argument, the larger is the error of its exponential. Of many points, that one is taken where
// the sweeps' arguments differ most; for it to be above all else in the bound, coefficients are huge.
TEST(Rows, BoundWhatLargeArgumentsErr) {
  std::mt19937_64 random(13);
  const auto just_above = [&](double number) {
    return number * std::uniform_real_distribution(1.0, 1.001)(random);
  };
  const std::tuple<const char*, double, Part, double> rows[] = {
      {"arguments", 35.0, {0, 0, {}, {1.0}, 1e10}, 112.5 * rows_unit},
      {"tail", 170.0, {4, 12, {}, {4e29}, 1e30}, 430.0 * rows_unit},
      {"by points", 350.0, {4, 12, {}, {4e28}, 1e30}, 800.0 * rows_unit}};
  for (const auto& [name, argument, part, least] : rows) {
    SCOPED_TRACE(name);
    // The same row twice: then it is weighed by points.
    CubeDefinition cube = {{1, 2, 16}, {}, {{1, 0, 0}, {0, 0, 0}, {0, 0, 0.001}}};
    Part worst = part;
    double difference = 0.0;
    for (int trial = 0; trial < 3000000; ++trial) {
      const double x = just_above(8.0), y = just_above(8.0), z = just_above(std::sqrt(128.0));
      const double exponent = just_above(argument / 256.0);
      const long double by_rows =
          static_cast<long double>(exponent * (x * x)) + exponent * (y * y) + exponent * (z * z);
      const auto here = static_cast<double>(std::fabs(exponent * (x * x + y * y + z * z) - by_rows));
      if (here > difference) {
        difference = here;
        worst.exponents = {exponent};
        std::ranges::copy(std::array{x, y, z}, cube.points[0]);
      }
    }
    EXPECT_GT(find_in_orbital({worst}, cube, {FieldKind::orbital}).error, least) << "no strain";
  }
}

TEST(Rows, ToleranceOfASumCoversTheRoundingsOfBoth) {
  constexpr unsigned many = 2000;
  const double half = std::sqrt(rows_unit);  // whose square is half a unit in the last place of 1
  OccupiedSums<double> below, above;
  below.add(1.0, 1.0, 1.0), above.add(1.0, 1.0, 1.0);
  for (unsigned i = 0; i < many; ++i) {
    below.add(half * (1.0 - 1e-9), 1.0, 1.0), above.add(half * (1.0 + 1e-9), 1.0, 1.0);
  }
  const double bound = std::sqrt(many) * 2e-9 * half;
  EXPECT_LE(above.density - below.density, rows_sum_tolerance(bound, below.density, many + 1));
  EXPECT_GT(above.density - below.density, 0.9 * rows_sum_tolerance(bound, below.density, many + 1));
}

// What counts for an orbital in one end of a row is not what counts in the other.
TEST(Rows, BoundOrbitalsInEachTile) {
  SmallFchk fields = {.shells = {{0, 1, {3.1, 1.3}, {0.7, 0.4}, {}}, {0, 2, {2.7, 0.9}, {0.6, 0.5}, {}}}};
  fields.atoms = {{3, {0, 0, 0}}, {1, {0, 0, 12}}};
  const auto molecule = read_text(fcheck_read, fchk_text(fields));
  const CubeDefinition cube = {{2, 2, 120}, {{0.1, 0.2, -0.3}}, {{0.3, 0, 0}, {0, 0.3, 0}, {0, 0, 0.1}}};
  with_every_kernel([&](const char*) {
    Found found;
    expect_within_tolerance(*molecule, cube, FieldKind::orbital,
                            {molecule->alpha_orbitals, molecule->alpha_orbitals + 1}, &found);
    EXPECT_EQ(found.unknown, 0U);
  });
}

// A point of each grid, in its second row, is made to have a density that is a tie of two texts.
TEST(Rows, LeaveTiesToTheExactSweep) {
  std::mt19937_64 random(12);
  Found found;
  constexpr FieldKind field = FieldKind::density_and_potential;
  for (int trial = 0; trial < 25; ++trial) {
    SmallFchk fields = strained(random);
    CubeDefinition cube = random_grid(random);
    std::ranges::copy(std::array{1U, 3U, 16U}, cube.npoints);
    std::ranges::transform(cube.vectors[1], cube.vectors[1], [](double step) { return 0.1 * step; });
    double point[3];
    for (unsigned c = 0; c < 3; ++c) {
      point[c] = cube_coordinate(&cube, 0, 1, 0, c);
    }
    double factor = 1.0;
    fields.coefficient = [&, made_up = fields.coefficient](unsigned i, unsigned j) {
      return factor * made_up(i, j);
    };
    const double value = exact_values(*read_text(fcheck_read, fchk_text(fields)), point, field, {})[0];
    const double unit = std::pow(10.0, std::floor(std::log10(value)) - 5.0);
    factor = std::sqrt((std::floor(value / unit) + 0.5) * unit / value);
    const auto molecule = read_text(fcheck_read, fchk_text(fields));
    with_every_kernel([&](const char*) {
      EXPECT_EQ(text_of_sweep(*molecule, cube, field_density_and_potential, 0),
                text_of_points(*molecule, cube, field_density_and_potential, 0));
      expect_within_tolerance(*molecule, cube, field, occupation_of(molecule.get()).orbitals, &found);
    });
  }
  EXPECT_GT(found.other_text, 5U) << "no tie was hard enough";
}

TEST(Rows, LeaveWhatIsOutOfTheOrdinaryToTheExactSweep) {
  const CubeDefinition good = {{2, 2, 16}, {{0, 0, 0}}, {{1, 0, 0}, {0, 1, 0}, {0, 0, 0.5}}};
  const auto is_taken = [](const SmallFchk& fields, const CubeDefinition& cube) {
    const auto molecule = read_text(fcheck_read, fchk_text(fields));
    return make_rows(*molecule, cube, FieldKind::density_and_potential,
                     occupation_of(molecule.get()).orbitals) != nullptr;
  };
  EXPECT_TRUE(is_taken({}, good));
  for (const double exponent : {0.0, -1.0, 1e-9, 1e11, HUGE_VAL, std::nan("")}) {
    EXPECT_FALSE(is_taken({.shells = {{1, 1, {1.0, exponent}, {1.0, 1.0}, {}}}}, good))
        << "exponent " << exponent;
  }
  for (const double number : {1e31, -1e300, HUGE_VAL, std::nan("")}) {
    EXPECT_FALSE(is_taken({.shells = {{1, 1, {1.0}, {number}, {}}}}, good)) << "number " << number;
    EXPECT_FALSE(
        is_taken({.coefficient = [&](unsigned, unsigned j) { return j == 2 ? number : 0.5; }}, good));
    EXPECT_FALSE(is_taken({.energy = [&](unsigned) { return number; }}, good)) << "number " << number;
  }
  EXPECT_FALSE(is_taken({.electrons = 1}, good)) << "nothing is occupied";
  const std::pair<const char*, CubeDefinition> grids[] = {
      {"short", {{2, 2, 15}, {}, {{1, 0, 0}, {0, 1, 0}, {0, 0, 0.5}}}},
      {"askew", {{2, 2, 16}, {}, {{1, 0, 0}, {0, 1, 0}, {0, 0.1, 0.5}}}},
      {"two steps along z", {{2, 2, 16}, {}, {{0, 0, 2}, {0, 1, 0}, {0, 0, 0.5}}}},
      {"two steps along x", {{2, 2, 16}, {}, {{2, 0, 0}, {1, 0, 0}, {0, 0, 0.5}}}},
      {"no step", {{2, 2, 16}, {}, {{1, 0, 0}, {0, 1, 0}, {0, 0, 0}}}},
      {"far away", {{2, 2, 16}, {{0, 1e6, 0}}, {{1, 0, 0}, {0, 1, 0}, {0, 0, 0.5}}}},
      {"nowhere", {{2, 2, 16}, {{0, 0, std::nan("")}}, {{1, 0, 0}, {0, 1, 0}, {0, 0, 0.5}}}},
      {"too long", {{1, 1, 3000000}, {}, {{1, 0, 0}, {0, 1, 0}, {0, 0, 1e-5}}}}};
  for (const auto& [name, cube] : grids) {
    EXPECT_FALSE(is_taken({}, cube)) << name;
  }
}

TEST(Fields, AreByRowsWhereTheySaveWhatTheyTakeToPrepare) {
  const auto molecule = read_text(fcheck_read, fchk_text());
  unsetenv("ORVA_ROWS");
  // Two orbitals count for 32, and 3125 points for each of them are a lane's worth of work.
  with_every_kernel([&](const char*) {
    const unsigned lanes = choose_instruction_set().rows.lanes;
    for (const unsigned too_few : {0U, 1U}) {
      const CubeDefinition cube = {
          {125, lanes - too_few, 25}, {{-1, 0, -1}}, {{0.1, 0, 0}, {0, 0.1, 0}, {0, 0, 0.1}}};
      Fields fields(molecule.get(), &cube, FieldKind::density_and_potential);
      ASSERT_TRUE(fields.next());
      EXPECT_EQ(fields.is_exact(), too_few == 1U);
      EXPECT_EQ(fields.row_count() > 1, too_few == 0U) << "neighbours are evaluated together";
    }
  });
  setenv("ORVA_ROWS", "always", 1);
}

TEST(Fields, AreExactInARowWhereTheyAreSettledAndInAnyList) {
  const auto molecule = read_text(fcheck_read, fchk_text(every_shell("UHF")));
  const CubeDefinition cube = {{2, 3, 20}, {{-1, -1, -3}}, {{0.5, 0, 0}, {0, 0.4, 0}, {0, 0, 0.3}}};
  constexpr std::size_t count = 20;
  std::vector<Point> points;
  Numbers expected(2 * count), functions(molecule->basis_count);
  for (unsigned k = 0; k < count; ++k) {
    const auto at = [&](unsigned c) { return cube_coordinate(&cube, 1, 2, k, c); };
    points.push_back({at(0), at(1), at(2)});
    fields_at_point(molecule.get(), points[k].data(), FieldKind::density_and_potential, nullptr,
                    functions.data(), &expected[k], &expected[count + k]);
  }
  with_every_kernel([&](const char*) {
    Fields fields(molecule.get(), &cube, FieldKind::density_and_potential);
    fields.row(1, 2);
    ASSERT_FALSE(fields.is_exact());
    fields.settle(std::vector<unsigned char>(count, 1));
    Numbers row(fields.values(0).begin(), fields.values(0).end());
    append(row, {fields.values(1).begin(), fields.values(1).end()});
    EXPECT_EQ(row, expected);
    Numbers list(2 * count);
    fields.at(points, list);
    EXPECT_EQ(list, expected);
  });
}
