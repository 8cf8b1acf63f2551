#include "app/input/config_items.hpp"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <tuple>
#include <type_traits>

#include "app/model/setup.hpp"

namespace {

// A global has its default before this table is made: the compiler has put it there.
template <class Target>
ConfigItem item(const char* name, ConfigKind kind, Target* target, const ConfigSample& sample) {
  if constexpr (std::is_same_v<Target, char>) {
    return {name, kind, target, sample, target};
  } else {
    return {name, kind, target, sample, std::to_string(*target)};
  }
}

ConfigItem flag(const char* name, std::int16_t* target, const ConfigSample& sample = {}) {
  return item(name, ConfigKind::zero_or_one, target, sample);
}

ConfigItem positive(const char* name, std::int16_t* target, const ConfigSample& sample = {}) {
  return item(name, ConfigKind::positive, target, sample);
}

ConfigItem natural(const char* name, std::int16_t* target, const ConfigSample& sample = {}) {
  return item(name, ConfigKind::natural, target, sample);
}

ConfigItem file_name(const char* name, char* target, const ConfigSample& sample = {}) {
  return item(name, ConfigKind::file_name, target, sample);
}

constexpr const char* report = "print option";
constexpr const char* files = "cube file option";
constexpr const char* grid = "cube definition";

const std::array items = {
    positive("PRINTED_WIDTH", &conf_width,
             {report, "width of printed matrices and vectors", "[integer greater than 0]"}),
    flag("PRINT_COORD", &conf_print_coord, {report, "print cartesian atomic coordinates"}),
    flag("PRINT_ZMAT", &conf_print_zmat, {report, "print internal coordinates (z-matrix)"}),
    flag("PRINT_DIST_MAT", &conf_print_dmat, {report, "print distance matrix"}),
    flag("PRINT_SHELL", &conf_print_shell,
         {.section = report, .purpose = "print contracted shells", .explained_setting = "0"}),
    flag("PRINT_BASE", &conf_print_base, {report, "print basis functions"}),
    flag("PRINT_MO", &conf_print_mo, {report, "print molecular orbital's coefficients"}),
    flag("PRINT_CUBE_PAR", &conf_print_cubp, {report, "print cube definition"}),
    flag("PRINT_CUBE", &conf_print_cube, {files, "write cube file"}),
    file_name("CUBE_FILE_DENSITY", glob_cube_file_tot,
              {.section = files, .purpose = "total density cube file's name", .setting = "out.den"}),
    file_name("CUBE_FILE_ORBITAL", glob_cube_file_orb, {files, "single molecular orbital file's name"}),
    file_name("CUBE_FILE_MODEN", glob_cube_file_mod, {files, "density of molecular orbital file's name"}),
    file_name("CUBE_FILE_ORVA", glob_cube_file_orva,
              {files, "average local ionization potential file's name"}),
    flag("CUBE_TOT_DENSITY", &conf_cube_totd, {files, "write total density"}),
    flag("CUBE_ALL_MO", &conf_cube_allmo, {files, "write all moleculars orbital"}),
    flag("CUBE_ONE_MO", &conf_cube_onemo, {files, "write single molecular orbital"}),
    flag("CUBE_ONE_TYPE", &conf_cube_onety,
         {files, "specify type of single molecular orbital to write",
          "[0 is alpha, 1 is beta orbital, if restricted method in input file was used then there has to be "
          "0]"}),
    natural("CUBE_ONE_SPEC", &conf_cube_onesp,
            {files, "specify single molecular orbital to write", "[integer from 1 to number of MOs]", "1"}),
    natural("CUBE_ONE_MODEN", &conf_cube_moden,
            {files, "write density of one molecular orbital",
             "[0 is false, interger greater than 0 is number of MO to write]"}),
    flag("CUBE_ORVA", &conf_cube_orva, {files, "write average local ionization potential"}),
    item("DEFINE_CUBE", ConfigKind::grid, &conf_cube_def, {grid, "specify cube definition", "[0, 1 or 2]"}),
    flag("INPUT_CONVENTION", &conf_input_convention),
};
static_assert(std::tuple_size_v<decltype(items)> == 22, "the items of a configuration");

}  // namespace

ConfigRange conf_range(ConfigKind kind) {
  switch (kind) {
    case ConfigKind::zero_or_one:
      return {0, 1};
    case ConfigKind::positive:
      return {1, std::numeric_limits<std::int16_t>::max()};
    case ConfigKind::natural:
      return {0, std::numeric_limits<std::int16_t>::max()};
    case ConfigKind::grid:
      return {0, 2};
    default:
      return {};
  }
}

std::span<const ConfigItem> conf_items() { return items; }

void conf_restore() {
  for (const ConfigItem& entry : items) {
    std::visit(
        [text = entry.standard.c_str()](auto* target) {
          if constexpr (std::is_same_v<decltype(target), char*>) {
            std::snprintf(target, file_name_size, "%s", text);
          } else {
            *target = static_cast<std::remove_reference_t<decltype(*target)>>(std::atoi(text));
          }
        },
        entry.target);
  }
}
