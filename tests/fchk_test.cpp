#include "app/input/fcheck.hpp"

#include "app/input/fcheck_line.hpp"
#include "app/input/reorder.hpp"
#include "app/model/shell.hpp"
#include "small_files.hpp"

namespace {

auto read_fchk(const std::string& text) { return read_text(fcheck_read, text); }

SmallFchk unrestricted() { return {.method = "UHF"}; }

}  // namespace

TEST(Fchk, FillsTheMolecule) {
  SmallFchk fields = unrestricted();
  fields.title = " \t two words \t";
  fields.alpha_electrons = 3;
  const auto molecule = read_fchk(fchk_text(fields));
  const Molecule& m = *molecule;
  EXPECT_STREQ(m.title, "two words");
  EXPECT_EQ(std::tuple(inp_rest_scf, m.is_restricted), std::tuple(0, false));
  EXPECT_EQ(std::tie(m.charge, m.multiplicity, m.shell_count, m.primitive_count), std::tuple(1, 3U, 2U, 5U));
  EXPECT_EQ(std::tie(m.electron_count, m.alpha_electron_count, m.beta_electron_count),
            std::tuple(4U, 3U, 2U));
  ASSERT_EQ(std::tie(m.atom_count, m.basis_count), std::tuple(2U, 5U));
  EXPECT_STREQ(m.atoms[0].symbol, "Li");
  EXPECT_EQ(m.atoms[1].atomic_number, 1U);
  EXPECT_EQ(m.atoms[1].coord[1], 0.5);
}

TEST(Fchk, ShellsGiveTheirFunctionsInOrderAndAnSpShellOneSAndThreeP) {
  SmallFchk fields;
  for (const int type : {4, -4, 3, -3, 2, -2, 1}) {
    fields.shells.push_back({type, type > 0 ? 1U : 2U, {type + 10.0}, {type + 20.0}, {}});
  }
  const auto molecule = read_fchk(fchk_text(fields));
  EXPECT_EQ(molecule->basis_count, 4U + 1 + 15 + 9 + 10 + 7 + 6 + 5 + 3);
  const BasisFunction* function = molecule->basis;
  for (const SmallShell& shell : fields.shells) {
    for (unsigned i = 0; i < shell_function_count(shell.type); ++i, ++function) {
      const bool is_sp = shell.type == sp_shell, is_p_of_sp = is_sp && i > 0;
      const auto& coefficients = is_p_of_sp ? shell.sp_coefficients : shell.coefficients;
      EXPECT_EQ(std::tie(function->type, function->component, function->shell_type),
                std::tuple(is_sp ? is_p_of_sp : shell.type, static_cast<int>(i) - is_p_of_sp, shell.type));
      EXPECT_EQ(std::tuple(function->atom_index, function->atom),
                std::tuple(shell.atom - 1, &molecule->atoms[shell.atom - 1]));
      ASSERT_EQ(function->primitive_count, coefficients.size());
      EXPECT_TRUE(std::equal(coefficients.begin(), coefficients.end(), function->coefficients));
      EXPECT_TRUE(std::equal(shell.exponents.begin(), shell.exponents.end(), function->exponents));
    }
  }
}

TEST(Fchk, SecondWordIsTheMethodAndLastWordTheNumber) {
  for (const char* line : {"SP RB3LYP STO-3G\n", " \tFOpt\t ROHF\n", "SP UB3LYP\n", "SP rhf", "SP \n"}) {
    fcheck_input_method(line);
    EXPECT_EQ(inp_rest_scf, std::strpbrk(line, "R") != nullptr) << line;
  }
  expect_error([] { fcheck_input_method("SP\n"); }, "cannot find method which was used to compute MOs");
  for (const auto& [line, number] :
       {std::pair{"x\t2147483647", INT_MAX}, {"+3 \t", 3}, {"x 7.5abc\r\n", 7}}) {
    EXPECT_EQ(fcheck_last_int(line), number) << line;
  }
  for (const char* line : {"x 3 \n", "", "x -\n", "x 2147483648\n", "x -99999999999999999999\n"}) {
    expect_error([&] { fcheck_last_int(line); }, "cannot convert last word into integer");
  }
}

TEST(Fchk, WhatDoesNotMatterChangesNothing) {
  const std::string text = fchk_text();
  const std::string expected = wfn_text(*read_fchk(text));
  constexpr std::pair<const char*, const char*> changes[] = {
      {"Number of atoms  ", "Number of atoms and more 7  "},
      {"Atomic numbers", " Atomic numbers\nAtomic number\nAtomic numbers"},
      {"N=           6\n  0.0", "N=   1\n\n\t 0.0"},
      {"  5.0000000000000000E-01\n  3.", "\r\n0.5\v3."},
      {"Number of alpha", "Alpha"},
      {"Number of beta", "Beta"},
      {"Charge", "Number of atoms 2\nCarge"},
      {"Charge", "Beta Orbital Energies\n  none\nBeta MO coefficients\n 1.0 2.0\nCharge"},
      {"Number of contracted", "Shell types too early\n 1 2\nNumber of contracted"},
  };
  for (const auto& [from, to] : changes) {
    EXPECT_EQ(wfn_text(*read_fchk(broken(text, from, to))), expected) << to;
  }
  // Arrays a second time, a long line, a line that is empty for C, and a last line without its newline.
  const std::string again = text.substr(text.find("Shell types"));
  const std::string rubbish = std::string(5000, 'x') + std::string(3, '\0');
  EXPECT_EQ(wfn_text(*read_fchk(text + rubbish + "\n" + again + rubbish)), expected);
}

TEST(Fchk, WithoutAnyBetaSectionBetaOrbitalsAreZerosAndAWarningTells) {
  SmallFchk fields = unrestricted();
  fields.beta_electrons = 1;
  const std::string whole = fchk_text(fields), text = whole.substr(0, whole.find("Beta Orbital"));
  const char* warning =
      "warning: no beta orbitals in fchk file, beta electrons are left out; INPUT_CONVENTION 1 has them\n";
  arg_quiet = 1;  // told all the same
  EXPECT_EQ(told([&] {
              const auto molecule = read_fchk(text);
              for (const Orbital& orbital : std::span(molecule->beta_orbitals, 5)) {
                EXPECT_EQ(orbital.energy, 0.0);
                EXPECT_EQ(Numbers(orbital.coefficients, orbital.coefficients + 5), Numbers(5));
              }
            }),
            warning);
  arg_quiet = 0;
  const std::string no_beta_electron = broken(text, "beta electrons  ", "beta electrons 0\n");
  EXPECT_EQ(told([&] { read_fchk(whole), read_fchk(fchk_text()), read_fchk(no_beta_electron); }), "");
  expect_rejected(fcheck_read, text,
                  {{"Charge", "Beta MO coefficients\n 1\nBeta Orbital Energies\n 1\nCharge",
                    "missing section in fchk file - Beta MO coefficients"}});
}

// What a cut leaves is rejected with one line, or it is as good as the whole file.
TEST(Fchk, NoCutOfAFileGivesAnotherMolecule) {
  const std::string text = fchk_text(unrestricted());
  expect_cuts_rejected(fcheck_read, text, text.size(), text.find("Beta Orbital"));
  expect_cuts_rejected(fcheck_read, fchk_text(), fchk_text().size());
}

// A file holds the orbitals of one spin at least, which is all that a count of functions may announce.
TEST(Fchk, LargeCountsAreDoubtedByWhatTheFileHolds) {
  const std::tuple<std::string, std::uint64_t, std::uint64_t> rows[] = {
      {"atoms", 300000, 4 * 300000},
      {"basis functions", 1100, 1100 * 1101},
      {"contracted shells", 400000, 3 * 400000},
      {"primitive shells", 600000, 2 * 600000}};
  for (const auto& [counted, count, numbers] : rows) {
    const std::string label = "Number of " + counted, text = "t\nSP RHF\n" + label + " ";
    const std::string next_fault = counted == "atoms" ? "Number of electrons" : "Number of atoms";
    expect_doubted(fcheck_read, text + std::to_string(count) + "\n", numbers,
                   "invalid count in fchk file - " + label, "missing section in fchk file - " + next_fault);
  }
}

TEST(Fchk, AMoleculeOfNothingIsOne) {
  std::string text = "nothing\nSP RHF none\n";
  for (const char* count :
       {"atoms", "electrons", "basis functions", "contracted shells", "primitive shells"}) {
    text += std::string("Number of ") + count + " 0\n";
  }
  EXPECT_EQ(read_fchk(text)->basis_count, 0U);
}

TEST(Reorder, AbsentArraysEndTheRun) {
  int types[] = {sp_shell};
  unsigned ones[] = {1};
  double reals[] = {1.0};
  Molecule molecule{};
  Atom atom{};
  molecule.atom_count = molecule.primitive_count = molecule.shell_count = 1;
  molecule.basis_count = 4, molecule.atoms = &atom;
  std::array<ShellTable, 6> tables;
  tables.fill({types, ones, ones, reals, reals, reals});
  tables[0].types = nullptr, tables[1].atom_map = tables[2].primitive_counts = nullptr;
  tables[3].sp_coefficients = tables[4].coefficients = tables[5].exponents = nullptr;
  for (ShellTable& shells : tables) {
    expect_error([&] { reorder_basis(&molecule, &shells); }, "wrong base reorder - missing array");
  }
}

TEST(Fchk, EverySectionIsNeededAndHasToHoldNumbers) {
  const std::string text = fchk_text(unrestricted());
  for (const char* counted : {"atoms", "alpha electrons", "beta electrons", "basis functions",
                              "contracted shells", "primitive shells"}) {
    const std::string label = std::string("Number of ") + counted;
    const bool follows = label.ends_with("atoms") || label.ends_with("shells");
    expect_rejected(fcheck_read, text, {{"\n" + label, "\nX", "missing section in fchk file - " + label}},
                    follows ? "warning: the fchk file lacks a count that follows from its arrays; "
                              "INPUT_CONVENTION 1 reads it\n"
                            : "");
  }
  // The label of an array, and what its numbers are.
  const std::pair<std::string, std::string> rows[] = {
      {"Atomic numbers", "atomic numbers"},
      {"Current cartesian coordinates", "cartesian coordinates"},
      {"Alpha MO coefficients", "alpha MO coefficients"},
      {"Beta MO coefficients", "beta MO coefficients"},
      {"Alpha Orbital Energies", "alpha MO energies"},
      {"Beta Orbital Energies", "beta MO energies"},
      {"Number of primitives per shell", "number of primitives per shell"},
      {"Shell to atom map", "shell to atom indices"},
      {"Shell types", "shell types"},
      {"Primitive exponents", "primitive exponents"},
      {"Contraction coefficients", "contraction coefficients"},
      {"P(S=P) Contraction coefficients", "SP contraction coefficients"}};
  for (const auto& [label, numbers] : rows) {
    const std::size_t place = text.find("\n" + label) + 1, line_end = text.find('\n', place);
    const std::string line = text.substr(place, line_end - place);
    expect_rejected(fcheck_read, text,
                    {{line + "\n", "Nothing\n", "missing section in fchk file - " + label},
                     {line, line + "\nx", "cannot read " + numbers}});
  }
}

TEST(Fchk, BadFilesEndTheRun) {
  const std::string exceeds = "number of electrons exceeds number of orbitals in fchk file";
  expect_rejected(fcheck_read, fchk_text(unrestricted()), breakages_of("bad_fchk.txt"));
  expect_rejected(fcheck_read, fchk_text(),
                  {{"Number of elec", "Elec", "missing section in fchk file - Number of electrons"},
                   {"Number of electrons  ", "Number of electrons 12\n", exceeds},
                   {"Number of atoms", {}, "missing section in fchk file - Number of atoms"}});
  // Without a line end behind it, a count may have been cut off.
  expect_rejected(fcheck_read, fchk_text() + "Number of electrons 1",
                  {{"Number of elec", "Elec", "invalid count in fchk file - Number of electrons"}});
  expect_rejected(
      fcheck_read, fchk_text({.removed = 1}), {{"Charge", "Charge", "cannot read alpha MO energies"}},
      "warning: the fchk file has fewer orbitals than basis functions; INPUT_CONVENTION 1 reads it\n");
  SmallFchk full;
  full.electrons = 11;  // in five pairs, one for every orbital
  EXPECT_EQ(read_fchk(fchk_text(full))->electron_count, 11U);
}
