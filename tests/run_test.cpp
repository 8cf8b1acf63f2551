// The built program, run as its users run it.

#include <sys/wait.h>

#include <algorithm>
#include <set>

#include "basis.hpp"
#include "memory.hpp"
#include "orbit.hpp"
#include "small_files.hpp"

namespace {

/// Status and output (standard output and standard error) of the program, run in `directory`; `arguments` are
/// words of the shell.
std::pair<int, std::string> run(const Scratch& directory, const std::string& arguments) {
  const std::string program = "cd " + directory.path().string() + " && " ORVA_PROGRAM " ";
  const int status = std::system((program + arguments + " >.output 2>&1").c_str());
  const std::string output = read_file(directory / ".output");
  std::filesystem::remove(directory / ".output");
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output};
}

std::set<std::string> files(const Scratch& directory) {
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(directory.path())) {
    names.insert(entry.path().filename());
  }
  return names;
}

// Lithium with an sp shell and hydrogen with an s shell, unrestricted. Coefficient m of alpha orbital r is
// r + m/10, of beta orbital r its negative; the energies are -r/4.
std::string lithium_hydride() {
  return fchk_text({.title = "lithium hydride",
                    .method = "UHF",
                    .electrons = 3,
                    .alpha_electrons = 2,
                    .beta_electrons = 1,
                    .atoms = {{3, {0, 0, 0}}, {1, {0, 0, 3}}},
                    .shells = {{-1, 1, {1.5, 0.25}, {0.5, -0.75}, {0.125, 2}}, {0, 2, {0.5}, {1}, {}}},
                    .coefficient = [](unsigned r, unsigned m) { return r + 1 + (m + 1) / 10.0; },
                    .energy = [](unsigned r) { return (r + 1) / -4.0; }});
}

const std::string grid = "DEFINE_CUBE 1\n0.5 0 -1\n0.25 0 0\n0 0.5 0\n0 0 1\n2 1 7\n";

const std::string cube_atoms =
    "    3    3.000000    0.000000    0.000000    0.000000\n"
    "    1    1.000000    0.000000    0.000000    3.000000\n";

const std::string banner =
    std::string(80, '-') + "\n" + std::string(36, ' ') + "ORVA 1.4\n" + std::string(80, '-') + "\n";
const std::string closing = "\n" + std::string(37, '-') + " End " + std::string(38, '-') + "\n";

const std::string run_lih = "-i lih.fchk -t fchk ";

class Run : public testing::Test {
 protected:
  Scratch here;

  void SetUp() override { write_file(here / "lih.fchk", lithium_hydride()); }

  // Standard output of a run that must succeed.
  std::string report(const std::string& config, const std::string& arguments = run_lih) {
    write_file(here / "config", config);
    const auto [status, output] = run(here, arguments);
    EXPECT_EQ(status, 0) << output;
    return output;
  }
};

TEST_F(Run, WholeReportLineByLine) {
  const std::string config =
      "PRINT_ZMAT 1\nPRINT_DIST_MAT 1\nPRINT_BASE 1\nPRINT_MO 1\nPRINTED_WIDTH 3\nCUBE_ONE_MODEN 2\n";
  EXPECT_EQ(report(config + grid), read_file(ORVA_TEST_DATA "/report.txt"));
  EXPECT_EQ(files(here), (std::set<std::string>{"config", "lih.fchk", "out.mod.2a", "out.orva", "out.tot"}));
}

// The words of a cube file behind its header.
std::vector<double> values(const std::string& cube) {
  std::istringstream words(cube.substr(cube.find(cube_atoms) + cube_atoms.size()));
  return {std::istream_iterator<double>(words), {}};
}

TEST_F(Run, OrbitalCubeFileIsThatOfTheClosedForms) {
  report("CUBE_ONE_MO 1\nCUBE_ONE_SPEC 1\nCUBE_ORVA 0\nCUBE_TOT_DENSITY 0\nCUBE_FILE_ORBITAL mo.cube\n" +
         grid);
  EXPECT_EQ(read_file(here / "mo.cube"), read_file(ORVA_TEST_DATA "/lih_alpha_1.cube"));
}

TEST_F(Run, DensityAndIonizationPotentialCorrespondPointByPoint) {
  report("CUBE_ALL_MO 1\n" + grid);
  const auto density = values(read_file(here / "out.tot")), potential = values(read_file(here / "out.orva"));
  const auto first = values(read_file(here / "out.orb.1a")), second = values(read_file(here / "out.orb.2a"));
  ASSERT_EQ(density.size() + potential.size(), 14U + 14);
  for (unsigned i = 0; i < 14; ++i) {  // 1 and the number of the orbital stand before its values
    const double one = 2 * std::pow(first.at(i + 2), 2);  // alpha and beta orbital 1 differ in sign only
    const double two = std::pow(second.at(i + 2), 2);
    EXPECT_NEAR(density[i], one + two, 4e-5 * density[i]);
    EXPECT_NEAR(potential[i], (0.25 * one + 0.5 * two) / (one + two), 4e-5);
  }
}

TEST_F(Run, SettingsChooseTheFilesOfEachGroup) {
  const std::string no_orva = "CUBE_ORVA 0\n", no_density = "CUBE_TOT_DENSITY 0\n";
  const std::pair<std::string, std::set<std::string>> rows[] = {
      {"", {"out.orva", "out.tot"}},
      {"PRINT_CUBE 0\nCUBE_ALL_MO 1", {}},
      {no_density + "CUBE_FILE_ORVA a", {"a"}},
      {no_orva + "CUBE_FILE_DENSITY d", {"d"}},
      {no_orva + no_density, {}},
      {no_orva + no_density + "CUBE_ONE_MO 1\nCUBE_ONE_SPEC 5\nCUBE_ONE_TYPE 1\nCUBE_ONE_MODEN 3",
       {"out.orb"}},
      {no_orva + "CUBE_ONE_MODEN 3\nCUBE_FILE_MODEN m", {"m.3a", "out.tot"}},
      {no_density + "CUBE_ALL_MO 1\nCUBE_ONE_MO 1\nCUBE_ONE_MODEN 3\nCUBE_FILE_ORBITAL o",
       {"o.1a", "o.1b", "o.2a", "o.2b", "o.3a", "o.3b", "o.4a", "o.4b", "o.5a", "o.5b", "out.orva"}},
  };
  for (const auto& [config, expected] : rows) {
    const Scratch directory;
    write_file(directory / "l", lithium_hydride());
    write_file(directory / "c", grid + "\n" + config);
    EXPECT_EQ(run(directory, "-q -c c -i l -t fchk"), std::pair(0, std::string()));
    auto names = files(directory);
    EXPECT_EQ(names.erase("c") + names.erase("l"), 2U);
    EXPECT_EQ(names, expected) << config;
  }
}

TEST_F(Run, OutputFileIsLeftAloneUntilTheInputIsRead) {
  write_file(here / "report", "of an earlier run\n");
  write_file(here / "bad.fchk", "title\nSP RHF basis\nNumber of atoms I many\n");
  write_file(here / "config", "PRINT_CUBE 0");
  EXPECT_EQ(run(here, "-o report -t fchk -i bad.fchk"),
            std::pair(1, std::string("error: cannot convert last word into integer\n")));
  EXPECT_EQ(read_file(here / "report"), "of an earlier run\n");

  const std::string listings = "PRINT_COORD 0\nPRINT_SHELL 0\nPRINT_CUBE_PAR 0\n";
  EXPECT_EQ(report("PRINT_CUBE 0\n" + listings, run_lih + "-o report"), "");
  EXPECT_EQ(read_file(here / "report"), banner + closing);
  EXPECT_EQ(report(grid + listings, run_lih + "-o report"), "");
  EXPECT_EQ(read_file(here / "report"), banner + "\n  Writing file out.tot...  OK\n" + closing);
  EXPECT_EQ(report("PRINT_CUBE 0", run_lih + "-q -o report"), "");
  EXPECT_EQ(read_file(here / "report"), "");
  EXPECT_EQ(report(listings + "PRINT_CUBE 0", run_lih + "-c none"), banner + closing);  // "config" is read
}

const std::string usage =
    "usage: orva [-qwpP] [-c <config_file>] [-o <output_file>] -i <input_file> -t <input_format>\n";

TEST_F(Run, HelpIsUsageAndOptions) {
  EXPECT_EQ(run(here, "-q -i x -h -i"), std::pair(0, usage + read_file(ORVA_TEST_DATA "/help.txt")));
}

TEST_F(Run, WrongCommandLinesAndInputsEndWithOneMessage) {
  const std::string no_config = "warning: config file not found, using default setting\n";
  const std::pair<std::string, std::string> rows[] = {
      {"", usage + "error: argument <input_file> is not set\n"},
      {"-i lih.fchk", usage + "error: argument <input_format> is not set\n"},
      {"-qc config", usage},
      {run_lih + "-x", usage + "error: unknown option \"-x\"\n"},
      {"-i lih.fchk -t FCHK", "error: unknown format of input file\n"},
      {run_lih + "-o " + std::string(256, 'o'), "error: argument is longer than 255 characters\n"},
      {"-t wfn -i none", "error: cannot open file \"none\"\n"},
      {"-t wfn -i none -qw -c none", no_config + "error: cannot open file \"none\"\n"},
      {run_lih + "-q -o no/report", "error: cannot open file \"no/report\"\n"},
  };
  for (const auto& [arguments, expected] : rows) {
    EXPECT_EQ(run(here, arguments), std::pair(1, expected));
  }
  EXPECT_EQ(files(here), std::set<std::string>{"lih.fchk"});
}

TEST_F(Run, SamplesAreWrittenByTheFirstSwitchAndCanBeReadBack) {
  for (const auto& [arguments, file] :
       {std::pair{"-c other -p -P -x", "/sample.config"}, {"-q -P -p", "/sample_explained.config"}}) {
    write_file(here / "config", "to be replaced");
    EXPECT_EQ(run(here, arguments),
              std::pair(0, std::string("sample config file \"config\" has been written\n")));
    const std::string sample = read_file(here / "config");
    EXPECT_EQ(sample, read_file(std::string(ORVA_TEST_DATA) + file));
    EXPECT_EQ(report(sample + "PRINT_CUBE 0\n").substr(0, banner.size()), banner);
  }
}

TEST_F(Run, RestrictedWavefunctionHasOneOrbitalListing) {
  const std::string output = report("PRINT_MO 1\nPRINT_COORD 0\nPRINT_SHELL 0\nPRINT_CUBE 0",
                                    "-t fchk -i " ORVA_EXAMPLES "/water.fchk");
  const std::string heading = banner + "\n\n  Molecular orbitals:\n\n              1              2";
  EXPECT_EQ(output.substr(0, heading.size()), heading);
  EXPECT_EQ(output.find("lpha"), std::string::npos);
  // 19 functions: three blocks of five columns and one of four, each with a line of numbers and 19 rows.
  EXPECT_EQ(std::ranges::count(output, '\n'), 3 + 4 + 4 * 20 + 4 + 4 + 2);
}

TEST(Listing, ShellsWithoutSymbolAndAtomsWithoutElementAreCalledX) {
  Atom atom = {112, {0, 0, 0}, "?"};
  BasisFunction functions[15 + 7];
  std::fill_n(functions, 15, BasisFunction{4, 0, 4, 0, 4294967294U, nullptr, nullptr, &atom});
  std::fill_n(functions + 15, 7, BasisFunction{-3, 0, -3, 0, 0, nullptr, nullptr, &atom});
  Molecule molecule = {};
  molecule.basis = functions;
  molecule.basis_count = 15 + 7;
  EXPECT_EQ(written([&](std::FILE* stream) { basis_print_shell(&molecule, stream); }),
            "  Shell   1, Atom X4294967295, Type   X, Num primitive   0\n"
            "  Shell   2, Atom    X1, Type  F7, Num primitive   0\n");
  expect_error([&] { orbit_print_mo(&molecule, stdout, 3, 5); }, "invalid code in function orbit_print_mo");
}

}  // namespace
