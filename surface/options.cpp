#include "surface/options.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "app/input/options.hpp"
#include "app/model/setup.hpp"
#include "lib/file.hpp"

namespace {

constexpr double level_min = 1e-12, level_max = 1e6;  // bohr^-3
constexpr double step_min = 0.02, step_max = 2.0;     // bohr

[[noreturn]] void refuse(const std::string& text) {
  std::fprintf(stderr, "orva-surface: %s (--help tells more)\n", text.c_str());
  std::exit(1);
}

struct Taken {
  SurfaceOptions options;
  std::string partition = "radii", unit = "eV", length = "angstrom", convention = "1", format, level, step;
};

struct Option {
  char letter;            // 0: none
  std::string_view name;  // behind two dashes
  std::string_view value;
  std::string_view choices;  // between bars; empty: anything
  std::string_view help;
  std::string Taken::*text;      // of those with a value
  void (*set)(SurfaceOptions&);  // of the others; null: ends the run
};

constexpr std::array table = {
    Option{0, "json", "", "", "one line for each molecule, an object of JSON", nullptr,
           [](SurfaceOptions& o) { o.form = Form::json; }},
    Option{0, "csv", "", "", "a table of all atoms, values between commas", nullptr,
           [](SurfaceOptions& o) { o.form = Form::csv; }},
    Option{0, "extrema", "", "", "with --csv: of all minima and maxima instead", nullptr,
           [](SurfaceOptions& o) { o.lists_extrema = true; }},
    Option{0, "unit", "UNIT", "eV|hartree", "of the potential: eV (default) or hartree", &Taken::unit,
           nullptr},
    Option{0, "length", "UNIT", "angstrom|bohr", "of lengths: angstrom (default) or bohr", &Taken::length,
           nullptr},
    Option{0, "level", "DENSITY", "", "of the surface, in bohr^-3 (default 0.001)", &Taken::level, nullptr},
    Option{0, "step", "LENGTH", "", "of the grid, in bohr (default 0.5)", &Taken::step, nullptr},
    Option{0, "atoms", "WAY", "radii|nearest", "whose a point is: by radii (default) or the nearest nucleus",
           &Taken::partition, nullptr},
    Option{0, "mesh", "FILE", "", "write the surface of one input as a PLY file", nullptr, nullptr},
    Option{0, "convention", "N", "0|1",
           "1 (default): files mean what their programs mean; 0: see orva.conf(5)", &Taken::convention,
           nullptr},
    Option{'t', "format", "FORMAT", "fchk|wfn", "of the input (default: as its contents tell)",
           &Taken::format, nullptr},
    Option{'h', "help", "", "", "print this help and exit", nullptr, nullptr},
    Option{'V', "version", "", "", "print the version and exit", nullptr, nullptr},
};

void print_help() {
  std::puts(
      "usage: orva-surface [options] INPUT...\n\n"
      "The average local ionization potential on a surface of constant electron density: areas, lowest, "
      "highest\n"
      "and mean values of the whole and of each atom, and where its minima and maxima are. Inputs are "
      "formatted\n"
      "checkpoint files and WFN files.\n");
  for (const Option& option : table) {
    std::string names = option.letter != 0 ? std::string("-") + option.letter + ", --" : "    --";
    names += option.name;
    names += option.value.empty() ? "" : " ";
    names += option.value;
    std::printf("  %-22s %s\n", names.c_str(), std::string(option.help).c_str());
  }
}

// The end of a run that only tells something.
[[noreturn]] void end_told() {
  file_flush_output();
  std::exit(file_is_any_incomplete() ? 1 : 0);
}

bool is_choice(std::string_view choices, std::string_view value) {
  while (!choices.empty()) {
    const std::size_t end = std::min(choices.find('|'), choices.size());
    if (choices.substr(0, end) == value) {
      return true;
    }
    choices.remove_prefix(std::min(end + 1, choices.size()));
  }
  return false;
}

double number_between(const std::string& text, double low, double high, const char* name) {
  char* end = nullptr;
  const double value = std::strtod(text.c_str(), &end);
  if (text.empty() || *end != '\0' || !(value >= low && value <= high)) {
    char range[64];
    std::snprintf(range, sizeof range, " is a number from %g to %g", low, high);
    refuse(std::string("--") + name + range);
  }
  return value;
}

const Option& option_of(std::string_view argument) {
  const auto option = std::ranges::find_if(table, [&](const Option& entry) {
    return argument.starts_with("--")
               ? argument.substr(2) == entry.name
               : argument.size() == 2 && entry.letter != 0 && argument[1] == entry.letter;
  });
  if (option == table.end()) {
    refuse("there is no option " + std::string(argument));
  }
  return *option;
}

void take_value(const Option& option, const std::string& value, Taken* taken) {
  if (value.empty()) {
    refuse("--" + std::string(option.name) + " needs a value");
  }
  if (!option.choices.empty() && !is_choice(option.choices, value)) {
    refuse("--" + std::string(option.name) + " is one of " + std::string(option.choices) + ", not \"" +
           value + '"');
  }
  (option.text != nullptr ? taken->*option.text : taken->options.mesh) = value;
}

void take_switch(const Option& option, SurfaceOptions* options) {
  if (option.set != nullptr) {
    option.set(*options);
  } else if (option.letter == 'h') {
    print_help();
    end_told();
  } else {
    std::puts("orva-surface " ORVA_VERSION);
    end_told();
  }
}

Taken taken_from(int argc, char** argv) {
  Taken taken;
  bool are_inputs = false;
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    if (are_inputs || argument.size() < 2 || argument[0] != '-') {
      taken.options.inputs.emplace_back(argument);
      continue;
    }
    if (argument == "--") {
      are_inputs = true;
      continue;
    }
    const bool is_long = argument.starts_with("--");
    const std::size_t name_end = is_long ? std::min(argument.find('='), argument.size()) : argument.size();
    const bool has_value = name_end < argument.size();
    const Option& option = option_of(argument.substr(0, name_end));
    if (option.value.empty()) {
      if (has_value) {
        refuse("--" + std::string(option.name) + " has no value");
      }
      take_switch(option, &taken.options);
    } else if (has_value) {
      take_value(option, std::string(argument.substr(name_end + 1)), &taken);
    } else if (i + 1 < argc) {
      take_value(option, argv[++i], &taken);
    } else {
      refuse("--" + std::string(option.name) + " needs a value");
    }
  }
  return taken;
}

}  // namespace

SurfaceOptions surface_options(int argc, char** argv) {
  Taken taken = taken_from(argc, argv);
  SurfaceOptions& options = taken.options;
  if (options.inputs.empty()) {
    refuse("an input is needed");
  }
  if (!options.mesh.empty() && options.inputs.size() != 1) {
    refuse("--mesh is for one input");
  }
  if (options.lists_extrema && options.form != Form::csv) {
    refuse("--extrema goes with --csv");
  }
  if (!taken.level.empty()) {
    options.settings.level = number_between(taken.level, level_min, level_max, "level");
  }
  if (!taken.step.empty()) {
    options.settings.step = number_between(taken.step, step_min, step_max, "step");
  }
  options.shares_by_radii = taken.partition == "radii";
  options.uses_hartree = taken.unit == "hartree";
  options.uses_bohr = taken.length == "bohr";
  conf_input_convention = taken.convention == "0" ? 0 : 1;
  options.input_format = taken.format == "wfn" ? input_wfn : taken.format == "fchk" ? input_fchk : 0;
  return options;
}
