#include "app/input/convention.hpp"

#include "app/cube/comp.hpp"
#include "app/cube/cube.hpp"
#include "app/field/point/eval.hpp"
#include "app/field/rows/rows.hpp"
#include "app/input/fcheck.hpp"
#include "app/input/options.hpp"
#include "app/input/overlap.hpp"
#include "app/input/wfn.hpp"
#include "app/listing/orbit.hpp"
#include "app/model/occupation.hpp"
#include "small_files.hpp"

namespace {

struct SmallPrimitive {
  unsigned atom, type;
  double exponent;
};

struct SmallOrbital {
  double occupation, energy;
  Numbers coefficients;
};

// A WFN file as other programs write it: bare primitives, columns of a fixed width.
struct SmallWfn {
  std::vector<SmallAtom> atoms = {{3, {0.0, 0.0, 0.0}}, {1, {0.0, -0.5, 3.0}}};
  std::vector<SmallPrimitive> primitives = {
      {1, 1, 1.5}, {1, 2, 0.75}, {1, 14, 2.0}, {2, 1, 1.5}, {2, 7, 0.9}};
  std::vector<SmallOrbital> orbitals = {{2.0, -2.5, {0.5, -0.25, 0.125, 0.75, 1.0}},
                                        {2.0, -0.5, {-0.5, 0.5, 0.375, 0.25, -1.0}}};
};

std::string text_of(const SmallWfn& wfn) {
  Numbers centres, types, exponents;
  for (const auto& [atom, type, exponent] : wfn.primitives) {
    centres.push_back(atom), types.push_back(type), exponents.push_back(exponent);
  }
  std::string text = "a title\nGAUSSIAN" + formatted("%15zu MOL ORBITALS", wfn.orbitals.size()) +
                     formatted("%7zu PRIMITIVES", types.size()) +
                     formatted("%9zu NUCLEI\n", wfn.atoms.size());
  unsigned number = 0;
  for (const auto& [atomic_number, coord] : wfn.atoms) {
    ++number;
    text += std::string(atomic_number == 3 ? "  Li" : "  H ") + formatted("%4u", number) +
            formatted("    (CENTRE%3u) ", number) + lines_of({coord, coord + 3}, "%12.8f", 3);
  }
  text += lines_of(centres, "%3.0f", 20, "CENTRE ASSIGNMENTS  ") +
          lines_of(types, "%3.0f", 20, "TYPE ASSIGNMENTS    ") +
          lines_of(exponents, "%14.7E", 5, "EXPONENTS ");
  number = 0;
  for (const auto& [occupation, energy, coefficients] : wfn.orbitals) {
    text += formatted("MO%5u     MO 0.0        OCC NO = ", ++number) + formatted("%12.7f", occupation) +
            formatted("  ORB. ENERGY =%12.6f\n", energy) + lines_of(coefficients, "%16.8E", 5);
  }
  return text + "END DATA\n THE  HF ENERGY =      -7.9 THE VIRIAL(-V/T)=   2.0\n";
}

Numbers norms_of(const Molecule& molecule) {
  return overlap_norms(&molecule, {molecule.alpha_orbitals, molecule.alpha_orbital_count}).value();
}

double orbital_at(const Molecule& molecule, unsigned number, const double* point) {
  Numbers values(molecule.basis_count);
  eval_bfce_vec(&molecule, point, values.data());
  return eval_mo(&molecule.alpha_orbitals[number], values.data(), molecule.basis_count);
}

// A cube that holds all of a small molecule: the trapezoidal rule over it is exact to 1e-6.
template <class Field>
double integral(const Molecule& molecule, Field field) {
  constexpr double step = 0.4;
  double sum = 0.0;
  for_each_point({{41, 41, 41}, {{-8, -8, -8}}, {{step, 0, 0}, {0, step, 0}, {0, 0, step}}},
                 [&](const double* point, unsigned) { sum += field(molecule, point); });
  return sum * step * step * step;
}

double double_factorial(int n) { return n <= 1 ? 1.0 : n * double_factorial(n - 2); }

// What makes the square of x^i y^j z^k exp(-αr²) integrate to 1.
double norm_of(const std::string& monomial, double exponent) {
  double norm = std::pow(2.0 * exponent / M_PI, 0.75);
  for (const char axis : {'x', 'y', 'z'}) {
    const auto power = static_cast<int>(std::ranges::count(monomial, axis));
    norm *= std::sqrt(std::pow(4.0 * exponent, power) / double_factorial(2 * power - 1));
  }
  return norm;
}

double normalised(const std::string& monomial, double exponent, const double* point) {
  double value = norm_of(monomial, exponent);
  for (const char axis : monomial) {
    value *= point[axis - 'x'];
  }
  return value * std::exp(-exponent * std::inner_product(point, point + 3, point, 0.0));
}

}  // namespace

// In the order of the type numbers, as the programs of atoms in molecules have it.
TEST(Convention, WfnPrimitivesAreBareMonomialsInTheOrderOfTheirTypeNumbers) {
  const Convention as_written(1);
  std::istringstream monomials(
      "x y z xx yy zz xy xz yz xxx yyy zzz xxy xxz yyz xyy xzz yzz xyz xxxx yyyy zzzz xxxy xxxz xyyy yyyz "
      "xzzz yzzz "
      "xxyy xxzz yyzz xxyz xyyz xyzz");
  constexpr double exponent = 0.6, point[] = {0.7, -1.1, 0.4};
  std::string monomial;
  for (unsigned type = 1; type <= 35; ++type) {
    const SmallWfn one = {
        {{1, {0, 0, 0}}}, {{1, type, exponent}}, {{2.0, -1.0, {norm_of(monomial, exponent)}}}};
    const auto molecule = read_text(wfn_read, text_of(one));
    EXPECT_NEAR(norms_of(*molecule)[0], 1.0, 1e-6) << monomial;
    EXPECT_NEAR(orbital_at(*molecule, 0, point), normalised(monomial, exponent, point), 1e-8) << monomial;
    monomials >> monomial;
  }
}

TEST(Convention, DialectsOfWfnFilesGiveTheSameMolecule) {
  const Convention as_written(1);
  SmallWfn wfn;
  wfn.orbitals[0].coefficients[1] = -1.2345678e-151;
  const std::string text = text_of(wfn), expected = all_numbers(*read_text(wfn_read, text));
  for (const std::vector<std::string>& row : rows_of("wfn_dialects.txt")) {
    EXPECT_EQ(all_numbers(*read_text(wfn_read, broken(text, row[0], row[1]))), expected) << row[1];
  }
  const auto without_title = read_text(wfn_read, text.substr(text.find('\n') + 1));
  EXPECT_EQ("a title" + all_numbers(*without_title), expected);

  // Beyond 99 atoms columns are full.
  SmallWfn many;
  many.atoms.assign(120, {1, {0, 0, 0}});
  for (unsigned atom = 95; atom <= 120; ++atom) {
    many.atoms[atom - 1].coord[0] = -100.0 - atom, many.atoms[atom - 1].coord[1] = -1000.0 - atom;
    many.primitives.push_back({atom, 1, 0.5}), many.orbitals[0].coefficients.push_back(1.0);
    many.orbitals[1].coefficients.push_back(1.0);
  }
  const auto molecule = read_text(wfn_read, text_of(many));
  EXPECT_EQ(molecule->basis[30].atom_index, 119U);
  EXPECT_EQ(molecule->atoms[119].coord[1], -1120.0);
}

TEST(Convention, OccupationsWeighOrbitalsInTheSumsOnly) {
  const Convention as_written(1);
  SmallWfn wfn;
  wfn.orbitals.push_back({0.0, -9.0, {1, 1, 1, 1, 1}});
  for (const double n : {2.0, 1.0, 0.625, -0.005}) {
    wfn.orbitals[1].occupation = n;
    const auto molecule = read_text(wfn_read, text_of(wfn));
    constexpr double point[] = {0.3, 0.2, 1.0};
    Numbers values(molecule->basis_count);
    eval_bfce_vec(molecule.get(), point, values.data());
    double density = 0.0, potential = 0.0;
    eval_orva(molecule.get(), values.data(), &density, &potential);
    const double a = std::pow(orbital_at(*molecule, 0, point), 2),
                 b = std::pow(orbital_at(*molecule, 1, point), 2);
    EXPECT_NEAR(density, 2.0 * a + n * b, 1e-14) << n;
    EXPECT_NEAR(potential, (2.0 * 2.5 * a + n * 0.5 * b) / (2.0 * a + n * b), 1e-14) << n;
    EXPECT_EQ(occupation_of(molecule.get()).is_restricted, n == 2.0);
    const CubeDefinition rows = {{3, 4, 40}, {{-3, -2, -4}}, {{1.1, 0, 0}, {0, 0.9, 0}, {0, 0, 0.25}}};
    const auto sweep =
        RowSweep::make(molecule.get(), &rows, choose_instruction_set().rows, FieldKind::density_and_potential,
                       occupation_of(molecule.get()).orbitals);
    EXPECT_EQ(sweep == nullptr, n < 0.0) << "nothing is known of differences";
    const CubeDefinition far = {{2, 1, 40}, {{0, 0, 5}}, {{9, 0, 0}, {0, 9, 0}, {0, 0, 1.5}}};
    with_every_kernel([&](const char*) {
      for (const std::int16_t code :
           {field_density_and_potential, field_alpha_orbital, field_orbital_density}) {
        for (const CubeDefinition& cube : {rows, far}) {
          EXPECT_EQ(text_of_sweep(*molecule, cube, code, 3), text_of_points(*molecule, cube, code, 3)) << n;
        }
      }
    });
  }
}

TEST(Convention, AWfnFileHasTheFieldsOfTheCheckpointFileThatItWasMadeFrom) {
  const Convention as_written(1);
  const auto wfn = read_text(wfn_read, read_file(ORVA_EXAMPLES "/water_cation.wfn"));
  const auto checkpoint = read_text(fcheck_read, read_file(ORVA_EXAMPLES "/water_cation.fchk"));
  const auto fields_at = [](const Molecule& molecule, const double* point) {
    Numbers values(molecule.basis_count), fields(2);
    eval_bfce_vec(&molecule, point, values.data());
    eval_orva(&molecule, values.data(), &fields[0], &fields[1]);
    return fields;
  };
  const CubeDefinition cube = {{5, 5, 5}, {{-3, -3, -3}}, {{1.4, 0, 0}, {0, 1.4, 0}, {0, 0, 1.4}}};
  for_each_point(cube, [&](const double* point, unsigned) {
    const Numbers fields = fields_at(*wfn, point), expected = fields_at(*checkpoint, point);
    EXPECT_NEAR(fields[0], expected[0], 1e-6 * expected[0]);
    EXPECT_NEAR(fields[1], expected[1], 1e-6);
  });
}

// Without a single doubt: the exact sweep would take most of the time.
TEST(Convention, APotentialWithoutEnergiesIsZeroAndDoneByRows) {
  const Convention as_written(1);
  SmallWfn wfn;
  wfn.orbitals[0].energy = wfn.orbitals[1].energy = 0.0;
  const auto molecule = read_text(wfn_read, text_of(wfn));
  const CubeDefinition cube = {{2, 2, 30}, {{-1, -2, -2}}, {{1, 0, 0}, {0, 1, 0}, {0, 0, 0.1}}};
  const auto rows = RowSweep::make(molecule.get(), &cube, choose_instruction_set().rows,
                                   FieldKind::density_and_potential, occupation_of(molecule.get()).orbitals);
  rows->run(0, 0);
  for (unsigned k = 0; k < 30; ++k) {
    EXPECT_EQ(std::pair(rows->field(1)[k], rows->tolerances(1)[k]), std::pair(0.0, 0.0));
  }
  const CubeDefinition far = {{1, 1, 60}, {{0, 0, 0}}, {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
  EXPECT_EQ(text_of_sweep(*molecule, far, 50, 0), text_of_points(*molecule, far, 50, 0));
}

TEST(Convention, CheckpointElectronsAreInOneSetOfOrbitalsOrInTwo) {
  SmallFchk fields = {.method = "CASSCF", .electrons = 4};
  const std::string whole = fchk_text(fields), alone = whole.substr(0, whole.find("Beta Orbital"));
  const auto occupations = [](const std::string& text) {
    const Convention as_written(1);
    const auto molecule = read_text(fcheck_read, text);
    const Occupation occupation = occupation_of(molecule.get());
    std::string result = occupation.is_restricted ? "pairs" : "";
    for (const auto& [orbital, weight] : occupation.orbitals) {
      const bool is_alpha = orbital - molecule->alpha_orbitals < 5 && orbital >= molecule->alpha_orbitals;
      result += formatted(" %g", weight) + (is_alpha ? "a" : "b");
    }
    return result + (molecule->is_restricted ? " one set" : " two sets");
  };
  EXPECT_EQ(occupations(alone), "pairs 1a 1a one set");
  EXPECT_EQ(occupations(broken(alone, "alpha electrons", "alpha electrons 3\n")), " 2a 2a 1a one set");
  EXPECT_EQ(occupations(whole), " 1a 1a 1b 1b two sets");
  EXPECT_EQ(occupations(broken(whole, "CASSCF", "RO    ")), " 1a 1a 1b 1b two sets");
  const std::string no_spins = broken(broken(alone, "Number of alpha", "Alpha"), "Number of beta", "Beta");
  EXPECT_EQ(occupations(broken(no_spins, "Multip", "multip")), "pairs 1a 1a one set");
  // A closed shell that lists its orbitals twice is read as before.
  std::string twice = broken(fchk_text(), "RHF", "RKS");
  twice += broken(broken(twice.substr(twice.find("Alpha Orb")), "Alpha", "Beta"), "Alpha", "Beta");
  EXPECT_EQ(occupations(twice), "pairs 1a 1a one set");
  EXPECT_EQ(occupations(broken(twice, "alpha electrons", "alpha electrons 3\n")), " 1a 1a 1a 1b 1b two sets");
}

TEST(Convention, WhatACheckpointFileLacksFollowsFromItsArrays) {
  const Convention as_written(1);
  SmallFchk fields;
  const std::string text = fchk_text(fields), expected = all_numbers(*read_text(fcheck_read, text));
  for (const char* label : {"Number of atoms", "Number of contracted shells", "Number of primitive shells"}) {
    EXPECT_EQ(all_numbers(*read_text(fcheck_read, broken(text, label, "X"))), expected) << label;
  }
  const std::size_t place = text.find("Current"), end = text.find("Number of contracted");
  const std::string geometry = text.substr(place, end - place), other = broken(geometry, "5.0", "7.0");
  EXPECT_EQ(all_numbers(*read_text(fcheck_read, broken(text, geometry, other + geometry) + other)), expected);
  const std::string odd =
      text.substr(0, place) + text.substr(end) + geometry;  // one behind the orbitals only
  EXPECT_EQ(all_numbers(*read_text(fcheck_read, odd)), expected);

  fields.removed = 2;
  const auto fewer = read_text(fcheck_read, fchk_text(fields));
  EXPECT_EQ(std::tie(fewer->basis_count, fewer->alpha_orbital_count), std::tuple(5U, 3U));
  EXPECT_EQ(fewer->alpha_orbitals[2].coefficients[4], fields.coefficient(2, 4));
  EXPECT_EQ(cube_file_names(fewer.get(), field_all_orbitals).size(), 3U);
  const auto listing =
      written([&](std::FILE* stream) { orbit_print_mo(fewer.get(), stream, orbit_alpha, 5); });
  EXPECT_EQ(std::ranges::count(listing, '\n'), 1 + 3) << listing;
}

TEST(Convention, NormsAreThoseOfIntegrationOverAGrid) {
  SmallFchk fields;
  fields.shells.clear();
  for (const int type : {0, 1, 2, 3, 4, -2, -3, -4}) {
    fields.shells.push_back({type, 1, {0.9, 0.5}, {0.5, 0.75}, {}});
    fields.shells.push_back({type, 2, {0.6}, {1.0}, {}});
  }
  fields.coefficient = [](unsigned i, unsigned j) { return std::sin(1.0 + i + 0.7 * j * (i + 1)); };
  const auto molecule = read_text(fcheck_read, fchk_text(fields));
  const double norm = norms_of(*molecule)[3];
  const auto square = [](const Molecule& of, const double* at) { return std::pow(orbital_at(of, 3, at), 2); };
  EXPECT_NEAR(integral(*molecule, square), norm, 1e-5 * norm);
}

// Every function of a shell as an orbital of its own.
TEST(Convention, CheckpointFunctionsOfGHaveNormOneInEitherOrder) {
  const Convention as_written(1);
  const char *reversed = "zzzz yzzz yyzz yyyz yyyy xzzz xyzz xyyz xyyy xxzz xxyz xxyy xxxz xxxy xxxx",
             *own = "xxxx yyyy zzzz xxxy xxxz xyyy yyyz xzzz yzzz xxyy xxzz yyzz xxyz xyyz xyzz";
  constexpr double point[] = {0.7, -1.1, 0.4};
  SmallFchk fields = {.shells = {{-4, 1, {0.9}, {1.0}, {}}}};
  fields.coefficient = [](unsigned i, unsigned j) { return i == j ? 1.0 : 0.0; };
  const auto pure = read_text(fcheck_read, fchk_text(fields));
  for (unsigned i = 0; i < 9; ++i) {
    const auto square = [i](const Molecule& of, const double* at) {
      return std::pow(orbital_at(of, i, at), 2);
    };
    EXPECT_NEAR(integral(*pure, square), 1.0, 1e-6) << i;
  }
  // xxxx and yyyy overlap by 3/35: the sum of both has norm 1 in the right order only.
  for (const auto& [order, x, y] : {std::tuple(reversed, 14U, 4U), {own, 0U, 1U}}) {
    fields.shells[0].type = 4;
    fields.coefficient = [x = x, y = y](unsigned i, unsigned j) {
      return i > 0 ? (i == j ? 1.0 : 0.0) : j == x || j == y ? 1.0 / std::sqrt(2.0 + 6.0 / 35.0) : 0.0;
    };
    const auto cartesian = read_text(fcheck_read, fchk_text(fields));
    EXPECT_NEAR(norms_of(*cartesian)[0], 1.0, 1e-9) << order;
    std::istringstream monomials(order);
    std::string monomial;
    for (unsigned i = 0; monomials >> monomial; ++i) {
      if (i > 0) {
        const double expected = normalised(monomial, 0.9, point);
        EXPECT_NEAR(orbital_at(*cartesian, i, point), expected, 1e-12) << monomial;
      }
    }
  }
}

// The lines that reading tells, without "warning: ".
std::string told_of(ReadInput read, const std::string& text) {
  std::string lines = told([&] { read_text(read, text); });
  for (std::size_t at; (at = lines.find("warning: ")) != std::string::npos;) {
    lines.erase(at, 9);
  }
  return lines;
}

TEST(Convention, WhatLooksWrongInAWfnFileIsTold) {
  const double norm = norm_of("", 1.0);
  const std::string text = text_of({{{1, {0, 0, 0}}},
                                    {{1, 1, 1.0}, {1, 1, 1.0}},
                                    {{2, -1.5, {norm / 4, 3 * norm / 4}}, {2, -0.5, {norm, 0}}}});
  for (const std::vector<std::string>& row : rows_of("told_wfn.txt")) {
    const Convention meant(row[0] == "1");
    EXPECT_EQ(told_of(wfn_read, broken(text, row[1], row[2])), row[3]) << row[2];
  }
  // Nearer to 1, but not ten times.
  const double large = std::sqrt(1.2) * norm;
  EXPECT_EQ(told_of(wfn_read, text_of({{{1, {0, 0, 0}}}, {{1, 1, 1.0}}, {{2, -1.5, {large}}}})), "");
  const Convention as_written(1);
  const std::string positive = broken(text, "  -0.500000", "   0.000000"),
                    zero = broken(positive, "-1.5", " 0.0");
  EXPECT_EQ(told_of(wfn_read, zero),
            "all occupied orbitals have the energy 0: the ionization potential means nothing\n");
  EXPECT_EQ(
      told_of(wfn_read, broken(positive, "-1.5", " 1.5")),
      "no occupied orbital has a negative energy: are these natural orbitals, in an order of their own?\n");
  conf_cube_orva = 0;
  EXPECT_EQ(told_of(wfn_read, zero), "");
  conf_cube_orva = 1;
}

TEST(Convention, WhatLooksWrongInACheckpointFileIsTold) {
  SmallFchk fields = {.method = "UHF", .electrons = 2, .alpha_electrons = 1, .beta_electrons = 1};
  fields.shells = {{0, 1, {1.0}, {1.0}, {}}};
  fields.coefficient = [](unsigned, unsigned) { return 1.0; };
  const std::string text = fchk_text(fields), beta = text.substr(text.find("Beta MO"));
  const std::string geometry =
      text.substr(text.find("Current"), text.find("Number of contr") - text.find("Current"));
  const std::string restricted = broken(broken(text, "UHF", "RHF"), "beta electrons", "beta electrons 0\n");
  const std::tuple<std::string, std::string, std::string> rows[] = {
      {text, "", ""},
      {text + geometry, "", ""},
      {text + broken(geometry, "5.0", "7.0"),
       "the geometry is one behind the orbitals in the fchk file; INPUT_CONVENTION 1 takes that before "
       "them\n",
       ""},
      {restricted, "1 alpha and 0 beta electrons are taken for pairs; INPUT_CONVENTION 1 tells them apart\n",
       ""},
      {broken(text, beta, broken(beta, "-1.0", " 0.0")),
       "beta orbitals in fchk file are zeros, beta electrons are left out\n",
       "beta orbital 1 has the norm 0.0000 in place of 1\n"},
      {broken(text, " 1.0000000000000000E+00\nBeta Orb", " 1.0005001000000000E+00\nBeta Orb"), "",
       "orbital 1 has the norm 1.0010 in place of 1\n"},
  };
  for (const auto& [file, with_0, with_1] : rows) {
    EXPECT_EQ(told_of(fcheck_read, file), with_0);
    const Convention as_written(1);
    EXPECT_EQ(told_of(fcheck_read, file), with_1);
  }
  // Of g functions, in orbitals that nobody occupies.
  fields.shells.push_back({-4, 1, {0.9}, {1.0}, {}});
  fields.coefficient = [](unsigned i, unsigned j) { return i == j ? 1.0 : 0.0; };
  EXPECT_EQ(told_of(fcheck_read, fchk_text(fields)),
            "orbital 2 has the norm 0.9428, with INPUT_CONVENTION 1 it has 1.0000\n");
  fields.shells[1].type = 4;
  EXPECT_EQ(told_of(fcheck_read, fchk_text(fields)), "");
  fields.shells[1] = {4, 1, Numbers(1000, 0.9), Numbers(1000, 1.0), {}};
  EXPECT_EQ(told_of(fcheck_read, fchk_text(fields)),
            "too many primitives to look at the norms of orbitals; perhaps INPUT_CONVENTION 1 is meant\n");
}

TEST(Convention, AFileOfTheOtherFormatIsToldBeforeTheError) {
  const std::string looks = "warning: the input file looks like a ";
  inp_format = input_wfn;
  expect_rejected(wfn_read, fchk_text(), {{"small", "small", "cannot read number of orbitals"}},
                  looks + "formatted checkpoint file: -t fchk\n");
  inp_format = input_fchk;
  expect_rejected(fcheck_read, text_of({}), {{"a", "a", "missing section in fchk file - Number of atoms"}},
                  looks + "WFN file: -t wfn\n");
  inp_format = 0;
}

TEST(Convention, BadWfnFilesEndTheRun) {
  const Convention as_written(1);
  expect_rejected(wfn_read, text_of({}), breakages_of("bad_wfn_dialect.txt"));
}

TEST(Convention, NoCutOfAFileGivesAnotherMolecule) {
  const Convention as_written(1);
  const std::string wfn = text_of({});
  expect_cuts_rejected(wfn_read, wfn, wfn.find("\nEND DATA"));
  const std::string fchk = fchk_text({.method = "UHF"});
  expect_cuts_rejected(fcheck_read, fchk, fchk.size(), fchk.find("Beta Orbital"));
}

TEST(Convention, BadCheckpointFilesEndTheRun) {
  const Convention as_written(1);
  expect_rejected(fcheck_read, fchk_text({.method = "UHF", .removed = 1}),
                  breakages_of("bad_fchk_lengths.txt"));
  // The multiplicity is 3: not all electrons are in pairs.
  for (const std::string& restricted : {fchk_text(), broken(fchk_text(), "Number of beta", "Beta")}) {
    expect_rejected(
        fcheck_read, restricted,
        {{"Number of alpha", "Alpha", "missing section in fchk file - Number of alpha electrons"}});
  }
}
