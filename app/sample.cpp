#include "sample.hpp"

#include <array>
#include <variant>

#include "file.hpp"
#include "setup.hpp"

namespace {

constexpr const char* simple_sample =
    "# orva - config file\n\n"
    "# print option\n"
    "PRINTED_WIDTH 5\n"
    "PRINT_COORD 1\n"
    "PRINT_ZMAT 0\n"
    "PRINT_DIST_MAT 0\n"
    "PRINT_SHELL 1\n"
    "PRINT_BASE 0\n"
    "PRINT_MO 0\n"
    "PRINT_CUBE_PAR 1\n\n"
    "# cube file option\n"
    "PRINT_CUBE 1\n"
    "CUBE_FILE_DENSITY out.den\n"
    "CUBE_FILE_ORBITAL out.orb\n"
    "CUBE_FILE_MODEN out.mod\n"
    "CUBE_FILE_ORVA out.orva\n"
    "CUBE_TOT_DENSITY 1\n"
    "CUBE_ALL_MO 0\n"
    "CUBE_ONE_MO 0\n"
    "CUBE_ONE_TYPE 0\n"
    "CUBE_ONE_SPEC 1\n"
    "CUBE_ONE_MODEN 0\n"
    "CUBE_ORVA 1\n\n"
    "# cube definition\n"
    "DEFINE_CUBE 0\n\n";

struct Explained {
  const char* comment;
  std::variant<std::monostate, int, const char*> standard;  // the default, told in a line of its own
  const char* setting;
};

constexpr std::array explained_items = {
    Explained{"# orva - config file\n\n"
              "# print option\n\n"
              "# width of printed matrices and vectors\n"
              "# [integer greater than 0] default 5\n",
              {},
              "PRINTED_WIDTH 5\n"},
    Explained{"# print cartesian atomic coordinates\n", 1, "PRINT_COORD 1\n"},
    Explained{"# print internal coordinates (z-matrix)\n", 0, "PRINT_ZMAT 0\n"},
    Explained{"# print distance matrix\n", 0, "PRINT_DIST_MAT 0\n"},
    Explained{"# print contracted shells\n", 1, "PRINT_SHELL 0\n"},
    Explained{"# print basis functions\n", 0, "PRINT_BASE 0\n"},
    Explained{"# print molecular orbital's coefficients\n", 0, "PRINT_MO 0\n"},
    Explained{"# print cube definition\n", 1, "PRINT_CUBE_PAR 1\n\n"},
    Explained{"# cube file option\n\n"
              "# write cube file\n",
              1, "PRINT_CUBE 1\n"},
    Explained{"# total density cube file's name\n", "out.den", "CUBE_FILE_DENSITY out.den\n"},
    Explained{"# single molecular orbital file's name\n", "out.orb", "CUBE_FILE_ORBITAL out.orb\n"},
    Explained{"# density of molecular orbital file's name\n", "out.mod", "CUBE_FILE_MODEN out.mod\n"},
    Explained{"# average local ionization potential file's name\n", "out.orva", "CUBE_FILE_ORVA out.orva\n"},
    Explained{"# write total density\n", 1, "CUBE_TOT_DENSITY 1\n"},
    Explained{"# write all moleculars orbital\n", 0, "CUBE_ALL_MO 0\n"},
    Explained{"# write single molecular orbital\n", 0, "CUBE_ONE_MO 0\n"},
    Explained{"# specify type of single molecular orbital to write\n"
              "# [0 is alpha, 1 is beta orbital, if restricted method in input file was used then there has "
              "to be 0] default 0\n",
              {},
              "CUBE_ONE_TYPE 0\n"},
    Explained{"# specify single molecular orbital to write\n"
              "# [integer from 1 to number of MOs] default 1\n",
              {},
              "CUBE_ONE_SPEC 1\n"},
    Explained{"# write density of one molecular orbital\n"
              "# [0 is false, interger greater than 0 is number of MO to write] default 0\n",
              {},
              "CUBE_ONE_MODEN 0\n"},
    Explained{"# write average local ionization potential\n", 1, "CUBE_ORVA 1\n\n"},
    Explained{"# cube definition\n\n"
              "# specify cube definition\n"
              "# [0, 1 or 2] default 0\n"
              "#\n# 0 = generate cube automatically\n",
              {},
              "DEFINE_CUBE 0\n"},
};
static_assert(explained_items.size() == 21, "one entry for each configuration item");

constexpr const char* grid_examples =
    "# 1 = vector definition of cube\n"
    "# DEFINE_CUBE 1\n"
    "# -1.000000 -1.000000 -1.000000   # first point\n"
    "#  0.125000  0.000000  0.000000   # 1. directional vector\n"
    "#  0.000000  0.125000  0.000000   # 2. directional vector\n"
    "#  0.000000  0.000000  0.125000   # 3. directional vector\n"
    "#  80 80 80                       # number of points in x,y,z direction\n"
    "#\n# 2 = point definition of cube\n"
    "# DEFINE_CUBE 2\n"
    "# -1.000000 -1.000000 -1.000000   # 1. point A\n"
    "#  1.000000 -1.000000 -1.000000   # 2. point B, x direction is vector AB\n"
    "#  1.000000  1.000000 -1.000000   # 3. point C, y direction is vector BC\n"
    "#  1.000000  1.000000  1.000000   # 4. point D, z direction is vector CD\n"
    "#  80 80 80                       # number of points in x,y,z direction\n\n";

void print_default(std::FILE*, std::monostate) {}
void print_default(std::FILE* stream, int value) { default_bool(stream, value); }
void print_default(std::FILE* stream, const char* text) { default_str(stream, text); }

void print_simple(std::FILE* stream) { std::fputs(simple_sample, stream); }

void print_verbose(std::FILE* stream) {
  for (const auto& [comment, standard, setting] : explained_items) {
    std::fputs(comment, stream);
    std::visit([stream](auto value) { print_default(stream, value); }, standard);
    std::fputs(setting, stream);
  }
  std::fputs(grid_examples, stream);
}

void write_sample(void (*print)(std::FILE* stream)) {
  std::FILE* stream = file_open(standard_config_file, "w");
  print(stream);
  file_close(stream);
  std::printf("sample config file \"%s\" has been written\n", standard_config_file);
}

}  // namespace

void conf_print_simple() { write_sample(print_simple); }

void conf_print_verbose() { write_sample(print_verbose); }

void default_bool(std::FILE* stream, int value) { std::fprintf(stream, "# [0 or 1] default %d\n", value); }

void default_str(std::FILE* stream, const char* text) {
  std::fprintf(stream, "# [string] default \"%s\"\n", text);
}
