#include "app/input/config.hpp"

#include "app/input/config_items.hpp"
#include "app/model/setup.hpp"
#include "support.hpp"

namespace {

struct Number {
  std::string item;
  std::int16_t* target;
  std::string setting;
  std::int16_t value;
  std::int16_t standard = *target;
};

const Number numbers[] = {
    {"PRINTED_WIDTH", &conf_width, "32767", 32767},
    {"PRINT_COORD", &conf_print_coord, "0", 0},
    {"PRINT_ZMAT", &conf_print_zmat, "1", 1},
    {"PRINT_DIST_MAT", &conf_print_dmat, "+1", 1},
    {"PRINT_SHELL", &conf_print_shell, "yes", 0},
    {"PRINT_BASE", &conf_print_base, "1x", 1},
    {"PRINT_MO", &conf_print_mo, "01", 1},
    {"PRINT_CUBE_PAR", &conf_print_cubp, "0\r", 0},
    {"PRINT_CUBE", &conf_print_cube, "-0", 0},
    {"CUBE_TOT_DENSITY", &conf_cube_totd, "0", 0},
    {"CUBE_ALL_MO", &conf_cube_allmo, "1\t# why not", 1},
    {"CUBE_ONE_MO", &conf_cube_onemo, "1 2", 1},
    {"CUBE_ONE_TYPE", &conf_cube_onety, "1", 1},
    {"CUBE_ONE_SPEC", &conf_cube_onesp, "7", 7},
    {"CUBE_ONE_MODEN", &conf_cube_moden, "12", 12},
    {"CUBE_ORVA", &conf_cube_orva, "0", 0},
    {"INPUT_CONVENTION", &conf_input_convention, "1", 1},
};

const std::tuple<std::string, char*, std::string> file_names[] = {
    {"CUBE_FILE_DENSITY", glob_cube_file_tot, "out.tot"},
    {"CUBE_FILE_ORBITAL", glob_cube_file_orb, "out.orb"},
    {"CUBE_FILE_MODEN", glob_cube_file_mod, "out.mod"},
    {"CUBE_FILE_ORVA", glob_cube_file_orva, "out.orva"},
};

// Runs of the program start with the defaults; tests share one process.
class Config : public testing::Test {
 protected:
  const Scratch here;
  CubeDefinition cube{};
  const int descriptor = next_descriptor();  // of a file that would be opened next

  void read_config(const std::string& text) {
    write_file(here / "config", text);
    set_name(glob_file_config, here / "config");
    conf_read(&cube);
  }

  void TearDown() override {
    EXPECT_EQ(next_descriptor(), descriptor);
    conf_restore();
  }
};

TEST_F(Config, EveryNumericItemSetsItsOwnSettingAndNoOther) {
  for (const Number& chosen : numbers) {
    read_config(" \t" + chosen.item + " \t " + chosen.setting + "\n");
    for (const Number& other : numbers) {
      EXPECT_EQ(*other.target, &other == &chosen ? other.value : other.standard) << chosen.item << other.item;
    }
    TearDown();
  }
}

TEST_F(Config, WhatIsTakenForAnotherSettingIsTold) {
  const std::pair<const char*, const char*> lines[] = {
      {"PRINT_MO yes", "in the config line \"PRINT_MO yes\" the setting is no number: it counts as 0"},
      {"CUBE_ONE_SPEC 2nd",
       "in the config line \"CUBE_ONE_SPEC 2nd\" the setting is no number: it counts as 2"},
      {"DEFINE_CUBE off", "in the config line \"DEFINE_CUBE off\" the setting is no number: it counts as 0"},
      {"CUBE_FILE_ORVA my file.cube ",
       "in the config line \"CUBE_FILE_ORVA my\" the name ends at the blank; not read: \"file.cube \""},
      {"CUBE_FILE_ORVA my # file", nullptr},
      {"CUBE_FILE_ORVA my \r", nullptr},
      {"PRINT_MO 0\r", nullptr},
      {"PRINT_MO 1 yes", nullptr},
  };
  for (const auto& [line, text] : lines) {
    const std::string config = std::string(line) + "\n";
    EXPECT_EQ(told([&] { read_config(config); }), text != nullptr ? formatted("warning: %s\n", text) : "")
        << line;
  }
}

TEST_F(Config, TheManPageTellsEveryItemAndItsDefault) {
  const std::string page = read_file(ORVA_TEST_DATA "/../../doc/orva.conf.5");
  const auto tells = [&](const ConfigItem& item) {
    const std::size_t at = page.find(formatted("\n.B %s ", item.name) + item.standard + "\n");
    const std::string paragraph = at != page.npos ? page.substr(at, page.find("\n.TP", at) - at) : "";
    return page.find(formatted("\n%s;", item.name) + item.standard + ";") != page.npos ||
           paragraph.find("\nThe default.\n") != paragraph.npos;
  };
  for (const ConfigItem& item : conf_items()) {
    EXPECT_TRUE(tells(item)) << item.name << ' ' << item.standard;
  }
}

TEST_F(Config, TheFileThatWasReadKeepsItsName) {
  const auto home = std::filesystem::current_path();
  std::filesystem::current_path(here.path());
  const auto name_after = [this](const char* name) {
    set_name(glob_file_config, name);
    conf_read(&cube);
    return std::string(glob_file_config);
  };
  EXPECT_EQ(name_after("absent"), "");
  std::filesystem::create_directory(here / "directory");
  write_file(here / "config", "PRINT_ZMAT 1"), write_file(here / "other", "PRINT_ZMAT 0");
  EXPECT_EQ(name_after("directory"), "config");
  EXPECT_EQ(conf_print_zmat, 1);
  EXPECT_EQ(name_after("other"), "other");
  EXPECT_EQ(conf_print_zmat, 0);
  std::filesystem::current_path(home);
}

TEST_F(Config, FileNamesAreCopiedAsTheyStandAndTheLastOneCounts) {
  const std::string longest(31, 'n');
  for (const auto& [item, target, standard] : file_names) {
    EXPECT_EQ(target, standard);
    read_config(item + " first\n\n# " + item + " never\n" + item + " " + longest + " rest\n");
    EXPECT_EQ(target, longest);
    read_config(item + " a=\"b\"\r");  // no newline at the end of the file
    EXPECT_EQ(target, std::string("a=\"b\"\r"));
  }
}

TEST_F(Config, GivenVectorsMayBeFollowedByComments) {
  read_config("DEFINE_CUBE 1 vectors\n-1\n0.5 2e-1 # origin\n.25 0 0 # x\n0 1 0 y" + std::string(2000, '!') +
              "\n0 -1 .125\n\n80 70\n60\n#\nDEFINE_CUBE 0\nPRINT_ZMAT 1\n");
  EXPECT_EQ(conf_cube_def, 1);
  EXPECT_EQ(conf_print_zmat, 1);
  EXPECT_EQ(std::to_array(cube.npoints), (std::array{80U, 70U, 60U}));
  EXPECT_EQ(std::to_array(cube.points[0]), (std::array{-1.0, 0.5, 0.2}));
  EXPECT_EQ(flat(cube.vectors), (Numbers{0.25, 0, 0, 0, 1, 0, 0, -1, 0.125}));
}

TEST_F(Config, GivenPointsAreReadAcrossLines) {
  read_config("DEFINE_CUBE 2\n1 2 3 4 5 6\n7 8\n9 10\n\n11 12 0 1 2");
  EXPECT_EQ(conf_cube_def, 2);
  EXPECT_EQ(std::to_array(cube.npoints), (std::array{0U, 1U, 2U}));
  for (unsigned i = 0; i < 12; ++i) {
    EXPECT_EQ(cube.points[i / 3][i % 3], i + 1);
  }
}

TEST_F(Config, WhatIsWrongIsSaidAndEndsTheRun) {
  const std::string format = "wrong format of config file - ", value = "invalid value in config file - ";
  const std::string option = "invalid option in config file ", grid = " in cube definition";
  const std::string vectors = "DEFINE_CUBE 1\n0 0 0\n1 0 0\n0 1 0\n";
  const std::string points = "DEFINE_CUBE 2\n0 0 0 1 0 0 1 1 0 ";
  const auto blanks = [](std::size_t count) { return std::string(count, ' '); };
  const std::string n31(31, 'N');
  const std::tuple<std::string, std::string, std::string> rows[] = {
      {"PRINT_COORD -1", value + "0 or 1 expected", "0 to 1"},
      {"PRINTED_WIDTH 0", value + "integer greater than 0 expected", "1 to 32767"},
      {"PRINTED_WIDTH 32768", value + "integer greater than 0 expected", "1 to 32767"},
      {"CUBE_ONE_SPEC -1", value + "integer greater than -1 expected", "0 to 32767"},
      {"CUBE_ONE_MODEN 99999999999999999999", value + "integer greater than -1 expected", "0 to 32767"},
      {"print_coord 1", option + "'print_coord'", ""},
      {"PRINT_COORD=1 x", option + "'PRINT_COORD=1'", ""},
      {n31 + " 1", option + "'" + n31 + "'", ""},
      {"N" + n31 + " 1", format + "item name", ""},
      {blanks(1023) + "\n", format + "item name", ""},
      {blanks(1020) + "ABC 1\n", format + "item name", ""},
      {"PRINT_COORD \t\n", format + "setting", ""},
      {"CUBE_FILE_ORVA N" + n31, format + "setting", ""},
      {"CUBE_FILE_ORVA " + blanks(1007) + "s\n", format + "setting", ""},
      {"DEFINE_CUBE 3", "invalid type of cube definition", "0 to 2"},
      {"DEFINE_CUBE 1\n0 0 # 0", "cannot read point" + grid, ""},
      {"DEFINE_CUBE 1\n0 0 0", "unexpected end of config file while reading cube definition", ""},
      {vectors, "unexpected end of file while reading cube definition", ""},
      {vectors + "# " + blanks(3000), "cannot read vectors" + grid, ""},
      {vectors + "0 0 # 1\n", "cannot read vectors" + grid, ""},
      {points + "# D\n1 1 1\n8 8 8\n", "cannot read points" + grid, ""},
      {points + "1 1 1\n8 x\n", "cannot read ranges" + grid, ""},
      {points + "1 1 1\n8 8 8.5\n", format + "setting", ""},
  };
  for (const auto& [text, message, range] : rows) {
    SCOPED_TRACE(text);
    const std::string told =
        range.empty() ? "" : "warning: the config line \"" + text + "\" needs a number from " + range + "\n";
    expect_exit([&, &given = text] { read_config(given); }, 1, told + "error: " + message + "\n");
  }
}

}  // namespace
