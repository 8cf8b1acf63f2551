#include "app/input/options.hpp"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "app/input/config_sample.hpp"
#include "app/input/help.hpp"
#include "app/model/setup.hpp"
#include "lib/arg.hpp"
#include "lib/file.hpp"
#include "lib/message.hpp"

namespace {

struct Switch {
  const char* letter;
  std::int16_t ends_parsing;
  std::int16_t* target;
};

struct Option {
  const char* letter;
  const char* value_name;
  std::int16_t is_optional;
  char* target;  // file_name_size bytes
};
static_assert(file_name_size == arg_text_size, "the parser fills a string of arg_text_size bytes");

struct InputFormat {
  std::string_view name;
  std::int16_t code;
};

constexpr std::array input_formats = {InputFormat{"fchk", input_fchk}, InputFormat{"wfn", input_wfn}};

// The parser cuts a value to its buffer, and a name that was cut would be that of another file.
void check_lengths(int argc, const char* const* argv) {
  for (int i = 1; i < argc; ++i) {
    if (std::strlen(argv[i]) >= file_name_size) {
      msg_fatal_format("argument is longer than %u characters", file_name_size - 1);
    }
  }
}

}  // namespace

void argument(int argc, char** argv) {
  std::int16_t wants_simple = 0;
  std::int16_t wants_verbose = 0;
  char format[file_name_size] = "";

  // In the order of the usage line.
  const std::array switches = {
      Switch{"q", 0, &arg_quiet},
      Switch{"w", 0, &arg_warning},
      Switch{"p", 1, &wants_simple},
      Switch{"P", 1, &wants_verbose},
  };
  const std::array options = {
      Option{"c", "config_file", 1, glob_file_config},
      Option{"o", "output_file", 1, glob_file_output},
      Option{"i", "input_file", 0, glob_file_input},
      Option{"t", "input_format", 0, format},
  };

  ArgTable table = {};
  for (const Switch& entry : switches) {
    arg_add_switch(&table, entry.letter, entry.ends_parsing, entry.target);
  }
  for (const Option& entry : options) {
    arg_add_option(&table, entry.letter, entry.value_name, arg_string, entry.is_optional, entry.target);
  }
  arg_add_help(&table, help_print);
  arg_read(argc, argv, table);

  if (wants_simple != 0 || wants_verbose != 0) {
    if (wants_simple != 0) {
      conf_print_simple();
    } else {
      conf_print_verbose();
    }
    std::exit(file_is_any_incomplete() ? 1 : 0);
  }
  check_lengths(argc, argv);
  check_input_format(format);
}

void check_input_format(const char* name) {
  for (const auto& [known, code] : input_formats) {
    if (name == known) {
      inp_format = code;
      return;
    }
  }
  msg_fatal("unknown format of input file");
}
