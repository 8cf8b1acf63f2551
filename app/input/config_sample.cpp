#include "app/input/config_sample.hpp"

#include <array>
#include <span>
#include <variant>

#include "app/model/setup.hpp"
#include "lib/file.hpp"

namespace {

struct YesOrNo {
  int standard;
};
struct FileName {
  const char* standard;
};
using Values = std::variant<YesOrNo, FileName, const char*>;  // what the setting may be, and its default

struct Item {
  const char* purpose;
  Values values;
  const char* name;
  const char* setting;
  const char* explained_setting = nullptr;  // of the explained sample, where it differs
};

struct Section {
  const char* heading;
  std::span<const Item> items;
};

constexpr std::array print_items = {
    Item{"width of printed matrices and vectors", "[integer greater than 0] default 5", "PRINTED_WIDTH", "5"},
    Item{"print cartesian atomic coordinates", YesOrNo{1}, "PRINT_COORD", "1"},
    Item{"print internal coordinates (z-matrix)", YesOrNo{0}, "PRINT_ZMAT", "0"},
    Item{"print distance matrix", YesOrNo{0}, "PRINT_DIST_MAT", "0"},
    Item{"print contracted shells", YesOrNo{1}, "PRINT_SHELL", "1", "0"},
    Item{"print basis functions", YesOrNo{0}, "PRINT_BASE", "0"},
    Item{"print molecular orbital's coefficients", YesOrNo{0}, "PRINT_MO", "0"},
    Item{"print cube definition", YesOrNo{1}, "PRINT_CUBE_PAR", "1"},
};

constexpr std::array file_items = {
    Item{"write cube file", YesOrNo{1}, "PRINT_CUBE", "1"},
    Item{"total density cube file's name", FileName{"out.den"}, "CUBE_FILE_DENSITY", "out.den"},
    Item{"single molecular orbital file's name", FileName{"out.orb"}, "CUBE_FILE_ORBITAL", "out.orb"},
    Item{"density of molecular orbital file's name", FileName{"out.mod"}, "CUBE_FILE_MODEN", "out.mod"},
    Item{"average local ionization potential file's name", FileName{"out.orva"}, "CUBE_FILE_ORVA",
         "out.orva"},
    Item{"write total density", YesOrNo{1}, "CUBE_TOT_DENSITY", "1"},
    Item{"write all moleculars orbital", YesOrNo{0}, "CUBE_ALL_MO", "0"},
    Item{"write single molecular orbital", YesOrNo{0}, "CUBE_ONE_MO", "0"},
    Item{
        "specify type of single molecular orbital to write",
        "[0 is alpha, 1 is beta orbital, if restricted method in input file was used then there has to be 0] "
        "default 0",
        "CUBE_ONE_TYPE", "0"},
    Item{"specify single molecular orbital to write", "[integer from 1 to number of MOs] default 1",
         "CUBE_ONE_SPEC", "1"},
    Item{"write density of one molecular orbital",
         "[0 is false, interger greater than 0 is number of MO to write] default 0", "CUBE_ONE_MODEN", "0"},
    Item{"write average local ionization potential", YesOrNo{1}, "CUBE_ORVA", "1"},
};

constexpr std::array grid_items = {
    Item{"specify cube definition", "[0, 1 or 2] default 0\n#\n# 0 = generate cube automatically",
         "DEFINE_CUBE", "0"},
};
static_assert(print_items.size() + file_items.size() + grid_items.size() == 21,
              "the items of a configuration");

constexpr std::array sections = {
    Section{"print option", print_items},
    Section{"cube file option", file_items},
    Section{"cube definition", grid_items},
};

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

constexpr const char* title = "# orva - config file\n";

void print_values(std::FILE* stream, YesOrNo values) { default_bool(stream, values.standard); }
void print_values(std::FILE* stream, FileName values) { default_str(stream, values.standard); }
void print_values(std::FILE* stream, const char* values) { std::fprintf(stream, "# %s\n", values); }

void print_simple(std::FILE* stream) {
  std::fputs(title, stream);
  for (const auto& [heading, items] : sections) {
    std::fprintf(stream, "\n# %s\n", heading);
    for (const Item& item : items) {
      std::fprintf(stream, "%s %s\n", item.name, item.setting);
    }
  }
  std::fputc('\n', stream);
}

void print_verbose(std::FILE* stream) {
  std::fputs(title, stream);
  for (const auto& [heading, items] : sections) {
    std::fprintf(stream, "\n# %s\n\n", heading);
    for (const Item& item : items) {
      std::fprintf(stream, "# %s\n", item.purpose);
      std::visit([stream](auto values) { print_values(stream, values); }, item.values);
      const bool has_own = item.explained_setting != nullptr;
      std::fprintf(stream, "%s %s\n", item.name, has_own ? item.explained_setting : item.setting);
    }
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
