#include "app/input/config_sample.hpp"

#include <cstdlib>

#include "app/input/config_items.hpp"
#include "app/model/setup.hpp"
#include "lib/file.hpp"

namespace {

constexpr const char* title = "# orva - config file\n";

constexpr const char* automatic_grid = "#\n# 0 = generate cube automatically\n";
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

void print_values(std::FILE* stream, const ConfigItem& item) {
  if (item.sample.values != nullptr) {
    std::fprintf(stream, "# %s default %s\n", item.sample.values, item.setting());
  } else if (item.kind == ConfigKind::file_name) {
    default_str(stream, item.setting());
  } else if (item.kind == ConfigKind::zero_or_one) {
    default_bool(stream, std::atoi(item.setting()));
  } else {
    const auto [lowest, highest] = conf_range(item.kind);
    std::fprintf(stream, "# [integer from %d to %d] default %s\n", lowest, highest, item.setting());
  }
}

// Calls `print` for every item of the samples, each section under its heading.
template <class Print>
void print_items(std::FILE* stream, const char* below_heading, Print print) {
  std::fputs(title, stream);
  const char* section = nullptr;
  for (const ConfigItem& item : conf_items()) {
    if (item.sample.section == nullptr) {
      continue;
    }
    if (item.sample.section != section) {
      section = item.sample.section;
      std::fprintf(stream, "\n# %s\n%s", section, below_heading);
    }
    print(item);
  }
}

void print_simple(std::FILE* stream) {
  print_items(stream, "", [stream](const ConfigItem& item) {
    std::fprintf(stream, "%s %s\n", item.name, item.setting());
  });
  std::fputc('\n', stream);
}

void print_verbose(std::FILE* stream) {
  print_items(stream, "\n", [stream](const ConfigItem& item) {
    std::fprintf(stream, "# %s\n", item.sample.purpose);
    print_values(stream, item);
    if (item.kind == ConfigKind::grid) {
      std::fputs(automatic_grid, stream);
    }
    const char* const own = item.sample.explained_setting;
    std::fprintf(stream, "%s %s\n", item.name, own != nullptr ? own : item.setting());
  });
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
