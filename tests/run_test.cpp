// The built program, run as its users run it.

#include "app/cube/cube.hpp"
#include "app/listing/basis.hpp"
#include "app/listing/orbit.hpp"
#include "app/model/memory.hpp"
#include "small_files.hpp"

namespace {

/// The same of the program; `arguments` are words of the shell.
std::pair<int, std::string> run(const Scratch& directory, const std::string& arguments) {
  return run_command(directory, ORVA_PROGRAM " " + arguments);
}

std::set<std::string> files(const Scratch& directory) {
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(directory.path())) {
    names.insert(entry.path().filename());
  }
  return names;
}

// Lithium with an sp shell and hydrogen with an s shell, unrestricted. Coefficient m of alpha orbital r is
// r + m/10, of beta orbital r its negative; the energies are -1/4, 1/2, ...
std::string lithium_hydride() {
  return fchk_text({.title = "lithium hydride",
                    .method = "UHF",
                    .electrons = 3,
                    .alpha_electrons = 2,
                    .beta_electrons = 1,
                    .atoms = {{3, {0, 0, 0}}, {1, {0, 0, 3}}},
                    .shells = {{-1, 1, {1.5, 0.25}, {0.5, -0.75}, {0.125, 2}}, {0, 2, {0.5}, {1}, {}}},
                    .coefficient = [](unsigned r, unsigned m) { return r + 1 + (m + 1) / 10.0; },
                    .energy = [](unsigned r) { return r == 1 ? 0.5 : (r + 1) / -4.0; }});
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

TEST_F(Run, OrbitalCubeFilesAreThoseOfTheClosedForms) {
  const std::string only_orbitals = "CUBE_ORVA 0\nCUBE_TOT_DENSITY 0\n" + grid;
  const std::tuple<std::string, std::string, std::string> rows[] = {
      {"CUBE_ONE_MO 1\nCUBE_ONE_SPEC 1\nCUBE_FILE_ORBITAL mo.cube\n", "mo.cube", "/lih_alpha_1.cube"},
      {"CUBE_ONE_MO 1\nCUBE_ONE_SPEC 2\nCUBE_ONE_TYPE 1\n", "out.orb", "/lih_beta_2.cube"},
      {"CUBE_ALL_MO 1\n", "out.orb.1a", "/lih_alpha_1.cube"},
      {"CUBE_ALL_MO 1\n", "out.orb.2b", "/lih_beta_2.cube"}};
  for (const auto& [config, file, expected] : rows) {
    report(config + only_orbitals);
    EXPECT_EQ(read_file(here / file), read_file(ORVA_TEST_DATA + expected)) << config;
  }
}

// With fused multiply-add the C library's power, and so its constant of this function, errs in the last bit.
TEST_F(Run, DigitsAreTheSameWhateverTheCLibraryUses) {
  write_file(here / "s.fchk",
             fchk_text({.electrons = 2,
                        .shells = {{0, 1, {50.6847519}, {1.0}, {}}},
                        .coefficient = [](unsigned, unsigned) { return 0.09118971839698398; }}));
  write_file(here / "config",
             "CUBE_ORVA 0\nCUBE_TOT_DENSITY 0\nCUBE_ONE_MO 1\nCUBE_ONE_SPEC 1\n"
             "DEFINE_CUBE 1\n0 0 0\n1 0 0\n0 1 0\n0 0 1\n1 1 1\n");
  std::vector<std::string> settings = {""};
#if defined(__x86_64__) && !defined(ORVA_EMULATED)
  settings.emplace_back("-AVX2,-FMA,-FMA4");
#endif
  for (const std::string& lacking : settings) {
    const std::string go =
        "GLIBC_TUNABLES=glibc.cpu.hwcaps=" + lacking + " " ORVA_PROGRAM " -q -i s.fchk -t fchk";
    EXPECT_EQ(run_command(here, go), std::pair(0, std::string()));
    const std::string cube = read_file(here / "out.orb");
    EXPECT_EQ(cube.substr(cube.size() - 14), "  1.23456e+00\n") << lacking;
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
    names.erase("c"), names.erase("l");
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

TEST_F(Run, NoTwoFilesOfARunAreTheSame) {
  const std::string same = " are the same file\n", all = "CUBE_ALL_MO 1\nCUBE_FILE_ORBITAL ";
  const std::string input = "error: input file \"lih.fchk\" and ", density = "cube file \"out.tot\" and ";
  std::filesystem::create_hard_link(here / "lih.fchk", here / "hard");
  std::filesystem::create_directory(here / "d");
  std::filesystem::create_symlink("../new", here / "d/last");
  std::filesystem::create_symlink("last", here / "d/first");
  std::filesystem::create_symlink("d/first", here / "ahead");
  std::filesystem::create_symlink("loop", here / "loop");
  std::filesystem::create_symlink("set", here / "soft.5b");
  const std::tuple<std::string, std::string, std::string> rows[] = {
      {"", "-o ./hard", input + "report \"./hard\""},
      {"", "-o set", "error: configuration file \"set\" and report \"set\""},
      {"CUBE_FILE_ORVA ./out.tot", "", "error: " + density + "cube file \"./out.tot\""},
      {"CUBE_FILE_ORVA ahead\nCUBE_FILE_DENSITY new", "", "error: cube file \"new\" and cube file \"ahead\""},
      {all + "soft", "", "error: configuration file \"set\" and cube file \"soft.5b\""},
      {all + "m", "-o m.1a", "error: report \"m.1a\" and cube file \"m.1a\""},
      {"CUBE_ONE_MODEN 3\nCUBE_FILE_MODEN m\nCUBE_FILE_DENSITY m.3a", "",
       "error: cube file \"m.3a\" and cube file \"m.3a\""},
      {"", "-o .output", "error: report \".output\" and standard output \"/dev/stdout\""},
      {"CUBE_FILE_DENSITY .output", "", "error: report \"/dev/stdout\" and cube file \".output\""},
  };
  for (const auto& [config, arguments, message] : rows) {
    write_file(here / "set", config);
    const auto before = files(here);
    EXPECT_EQ(run(here, run_lih + "-c set " + arguments), std::pair(1, message + same));
    EXPECT_EQ(files(here), before) << message;
    EXPECT_EQ(read_file(here / "set"), config);
    EXPECT_EQ(read_file(here / "lih.fchk"), lithium_hydride());
  }
  // What is not written, or is no file, may have any name.
  const std::string allowed[] = {"PRINT_CUBE 0\nCUBE_FILE_ORVA lih.fchk", "CUBE_FILE_ORBITAL lih.fchk",
                                 "CUBE_FILE_ORVA /dev/null\nCUBE_FILE_DENSITY /dev/null",
                                 "CUBE_FILE_ORVA new\nCUBE_FILE_DENSITY loop.tot"};
  for (const std::string& config : allowed) {
    write_file(here / "set", grid + config);
    EXPECT_EQ(run(here, run_lih + "-q -c set"), std::pair(0, std::string())) << config;
  }
  write_file(here / "set", "CUBE_FILE_DENSITY /dev/stdout\nCUBE_ORVA 0\n" + grid);
  const auto [status, cube] = run(here, run_lih + "-q -c set");
  EXPECT_EQ(std::pair(status, cube.substr(0, 17)), std::pair(0, std::string(" lithium hydride\n")));
}

TEST_F(Run, StatusIsZeroForACompleteRunOnly) {
  const std::string lost = "warning: file closing failured\n", program = ORVA_PROGRAM " ";
  const std::tuple<std::string, std::string, int, std::string> rows[] = {
      {"CUBE_FILE_ORVA /dev/full", program + run_lih + "-q", 1, lost},
      {"", program + run_lih + "-o /dev/full", 1, lost},
      {"", program + run_lih + ">/dev/full", 1, lost},
      {"\nCUBE_ORVA 0\nDEFINE_CUBE 1\n0 0 0\n1 0 0\n0 1 0\n0 0 1\n9 199 5\n",
       "ulimit -f 8; " + program + run_lih + "-q", 1, lost},
      {"", program + run_lih + ">&- 2>&-", 1, ""},
      {"", program + run_lih + "-q >/dev/full", 0, ""},
      {"", program + run_lih + "-o report >&-", 0, ""},
      {"CUBE_FILE_DENSITY /dev/stdout\nCUBE_ORVA 0", program + run_lih + "-q >&-", 1, ""},
      {"", "rm config; ln -s /dev/full config; " + program + "-p", 1,
       lost + "sample config file \"config\" has been written\n"},
  };
  for (const auto& [config, command, status, output] : rows) {
    write_file(here / "config", grid + config);
    EXPECT_EQ(run_command(here, command), std::pair(status, output)) << command;
    EXPECT_EQ(read_file(here / "out.tot").substr(0, 17), " lithium hydride\n") << command;
  }
}

TEST_F(Run, WhatCannotBeDoneIsRefusedBeforeAFileIsOpened) {
  const std::string go = ORVA_PROGRAM " -o report " + run_lih;
  const std::tuple<std::string, std::string, std::string> rows[] = {
      {"", "ORVA_KERNEL=abacus " + go, "error: kernel \"abacus\" is not available, only "},
      {"CUBE_ONE_MODEN 6", go, "error: invalid value in config file - number of orbital from 1 to 5 "}};
  for (const auto& [config, command, message] : rows) {
    write_file(here / "config", config);
    const auto [status, output] = run_command(here, command);
    EXPECT_EQ(std::pair(status, output.substr(0, message.size())), std::pair(1, message));
    EXPECT_EQ(files(here), (std::set<std::string>{"config", "lih.fchk"}));
  }
  report("PRINT_CUBE 0\nCUBE_ONE_MO 1");
  // A name that cannot be opened is told before a block of orbitals is evaluated.
  std::filesystem::create_directory(here / "d.3a");
  write_file(here / "config", grid + "CUBE_ALL_MO 1\nCUBE_FILE_ORBITAL d");
  EXPECT_EQ(run(here, "-q " + run_lih), std::pair(1, std::string("error: cannot open file \"d.3a\"\n")));
}

TEST_F(Run, OrbitalsOfTheSecondBlockAreThemselves) {
  SmallFchk fields;
  fields.shells[1].atom = 1;
  write_file(here / "lih.fchk", fchk_text(fields));
  for (const char* name : {"out.orb.1a", "out.orb.2a", "out.orb.3a", "out.orb.4a"}) {
    std::filesystem::create_symlink("/dev/null", here / name);
  }
  const std::string large =  // so large that blocks have three and two orbitals
      "CUBE_ORVA 0\nCUBE_TOT_DENSITY 0\nDEFINE_CUBE 1\n0 0 0\n1 0 0\n0 .01 0\n0 0 .01\n1 1500 1500\n";
  report(large + "CUBE_ALL_MO 1");
  report(large + "CUBE_ONE_MO 1\nCUBE_ONE_SPEC 5");
  EXPECT_TRUE(read_file(here / "out.orb.5a") == read_file(here / "out.orb"));
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(ORVA_EMULATED)  // both take more memory than there is here
TEST_F(Run, MemoryThatIsMissingIsAnErrorLine) {
  // Without memory for a block of orbitals they are written one by one.
  const std::string large = "DEFINE_CUBE 1\n0 0 0\n1 0 0\n0 1 0\n0 0 1\n1 600 600\n";
  write_file(here / "config", large + "CUBE_ALL_MO 1\nCUBE_ORVA 0\nCUBE_TOT_DENSITY 0");
  const std::string go = ORVA_PROGRAM " -q " + run_lih;
  ASSERT_EQ(run_command(here, go), std::pair(0, std::string()));
  std::filesystem::rename(here / "out.orb.5b", here / "expected");
  EXPECT_EQ(run_command(here, "ulimit -v 17000; " + go), std::pair(0, std::string()));
  EXPECT_EQ(read_file(here / "out.orb.5b"), read_file(here / "expected"));

  SmallFchk fields;
  fields.shells = {{-4, 1, Numbers(30000), Numbers(30000, 1.0), {}}};
  std::iota(fields.shells[0].exponents.begin(), fields.shells[0].exponents.end(), 1.0);
  write_file(here / "long.fchk", fchk_text(fields));
  write_file(here / "config", "PRINT_SHELL 0");
  const auto [status, output] =
      run_command(here, "ulimit -v 24000; " ORVA_PROGRAM " -q -i long.fchk -t fchk 2>/dev/null");
  EXPECT_EQ(std::pair(status, output), std::pair(1, std::string("error: cannot allocate memory\n")));
}
#endif

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
      {"-t wfn -i .", "error: cannot read file\n"},
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
}

TEST(Listing, ShellsAreCalledByLetterAndSizeAndWhatHasNoNameX) {
  const std::pair<short, const char*> rows[] = {{0, "S"},   {1, "P"},   {-1, "SP"}, {2, "D6"}, {-2, "D5"},
                                                {3, "F10"}, {-3, "F7"}, {4, "X"},   {-4, "X"}};
  for (const auto& [type, expected] : rows) {
    char symbol[4];
    EXPECT_STREQ(basis_shell_sym(symbol, type), expected) << "shell type " << type;
  }
  Atom atom = {112, {0, 0, 0}, "?"};
  BasisFunction functions[15 + 7];
  std::fill_n(functions, 15, BasisFunction{4, 0, 4, 0, 4294967294U, nullptr, nullptr, &atom});
  std::fill_n(functions + 15, 7, BasisFunction{-3, 0, -3, 0, 0, nullptr, nullptr, &atom});
  Molecule molecule = {};
  molecule.basis = functions, molecule.basis_count = 15 + 7;
  EXPECT_EQ(written([&](std::FILE* stream) { basis_print_shell(&molecule, stream); }),
            "  Shell   1, Atom X4294967295, Type   X, Num primitive   0\n"
            "  Shell   2, Atom    X1, Type  F7, Num primitive   0\n");
  expect_error([&] { orbit_print_mo(&molecule, stdout, 3, 5); }, "invalid code in function orbit_print_mo");
}

}  // namespace
