#include "app/input/wfn.hpp"

#include "app/input/fcheck.hpp"
#include "small_files.hpp"

namespace {

auto read_wfn(const std::string& text) { return read_text(wfn_read, text); }

}  // namespace

TEST(Wfn, OddColumnsAndNotationsGiveTheNumbersOfPlainOnes) {
  const auto molecule = read_wfn(read_file(ORVA_TEST_DATA "/odd.wfn"));
  EXPECT_EQ(wfn_text(*molecule), read_file(ORVA_TEST_DATA "/odd_plain.wfn"));
  EXPECT_EQ(inp_rest_scf, 1);
  EXPECT_EQ(molecule->atoms[0].atomic_number, 17U);
  EXPECT_EQ(molecule->atoms[1].atomic_number, 0U);
  for (const BasisFunction& function : std::span(molecule->basis, molecule->basis_count)) {
    EXPECT_EQ(function.shell_type, function.type);
    EXPECT_EQ(function.atom, &molecule->atoms[function.atom_index]);
  }
  EXPECT_EQ(molecule->alpha_orbitals[5].coefficients[5], 0.0);
  EXPECT_EQ(molecule->beta_orbitals, nullptr);
}

TEST(Wfn, BlocksOfSeveralLinesAreReadAsWritten) {
  SmallFchk fields;
  for (const int type : {4, 0, 2, 3, 1}) {
    fields.shells.push_back({type, 2, {4.0, 2.0, 1.0}, {0.5, 0.5, 0.25}, {}});
  }
  const std::string text = wfn_text(*read_text(fcheck_read, fchk_text(fields)));
  EXPECT_EQ(wfn_text(*read_wfn(text)), text);
  std::string dos = text;
  for (std::size_t end = text.size(); (end = dos.rfind('\n', end - 1)) > fields.title.size();) {
    dos.insert(end, 1, '\r');
  }
  EXPECT_EQ(wfn_text(*read_wfn(dos)), text);
}

// Each number begins in its column, or the one before has a digit.
TEST(Wfn, NumbersBeginInTheirColumns) {
  const std::string text = wfn_text(*read_text(fcheck_read, fchk_text()));
  const std::pair<std::string, std::string> changes[] = {
      {"GAUSSIAN         2", "GAUSSIAN    92    "},
      {"ORBITALS         14", "ORBITALS     914   "},
      {"PRIMITIVES       2", "PRIMITIVES 92      "},
      {"  Li                      0", "  Li                   9  0"},
      {" -2.0000000000000000E+00", "9-2.0000000000000000E+00"}};
  for (const auto& [from, to] : changes) {
    EXPECT_EQ(wfn_text(*read_wfn(broken(text, from, to))), text) << to;
  }
}

TEST(Wfn, LargeCountsAreDoubtedByWhatTheFileHolds) {
  const std::tuple<unsigned, unsigned, std::uint64_t, std::string, std::string> rows[] = {
      {1, 2, 300000, "nuclei", "cannot read atom symbol"},
      {1100, 1100, 0, "orbitals or primitives", "cannot read unsigned int data block"}};
  for (const auto& [orbitals, primitives, nuclei, counted, next_fault] : rows) {
    const std::string text = "t\nGAUSSIAN" + formatted("%11u MOL ORBITALS", orbitals) +
                             formatted("%11u PRIMITIVES", primitives) + formatted("%9lu NUCLEI\n", nuclei);
    const std::uint64_t numbers = nuclei > 0 ? 4 * nuclei : primitives * std::uint64_t{orbitals + 3};
    expect_doubted(wfn_read, text, numbers, "invalid count in WFN file - number of " + counted, next_fault);
  }
}

TEST(Wfn, NoCutOfAFileGivesAnotherMolecule) {
  const SmallFchk files[] = {
      {.electrons = 0}, {.electrons = 2}, {}, {.electrons = 0, .shells = {{0, 1, {1.5}, {1.0}, {}}}}};
  for (const SmallFchk& fields : files) {
    const std::string text = wfn_text(*read_text(fcheck_read, fchk_text(fields)));
    expect_cuts_rejected(wfn_read, text, text.find("END DATA"));
  }
}

TEST(Wfn, BadFilesEndTheRun) {
  const std::string text = wfn_text(*read_text(fcheck_read, fchk_text()));
  std::vector<Breakage> breakages = breakages_of("bad_wfn.txt");
  breakages.push_back(
      {"  7.5000000000000000E-01", std::string(1024, '1'), "cannot read number in real data block"});
  expect_rejected(wfn_read, text, breakages);
  // What other programs write is told.
  const std::pair<std::string, Breakage> dialects[] = {
      {"the WFN file has more orbitals than primitives",
       {"   2 MOL", "  15 MOL", "number of orbitals exceeds number of primitives in WFN file"}},
      {"the WFN file has its counts behind the second line",
       {"\nGAUSSIAN", "\n\nGAUSSIAN", "cannot read number of orbitals"}},
      {"columns of the WFN file may touch, as it has more than 99 nuclei",
       {"    2 NUCLEI", "  100 NUCLEI", "cannot read atomic coordinates"}},
      {"the WFN file ends with its last number",
       {"\nEND", {}, "cannot read molecular orbital coefficients"}}};
  for (const auto& [what, breakage] : dialects) {
    expect_rejected(wfn_read, text, {breakage}, "warning: " + what + "; INPUT_CONVENTION 1 reads that\n");
  }
}
