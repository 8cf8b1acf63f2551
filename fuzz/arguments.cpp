#include <algorithm>
#include <string>
#include <vector>

#include "app/input/help.hpp"
#include "app/input/options.hpp"
#include "fuzz.hpp"
#include "lib/arg.hpp"

namespace {

// What the program itself has no use for: every type of value, an item, a group and an exclusion.
void read_all_kinds(int count, char** arguments) {
  double values[arg_string];  // room for a value of each type of number
  char text[arg_text_size];
  ArgTable table = {};
  for (std::int16_t type = arg_int; type <= arg_double; ++type) {
    arg_add_option(&table, &" abcdefg"[type], "number", type, type % 2, &values[type]);
  }
  arg_add_item(&table, "item", arg_string, 1, text);
  arg_bind(&table, 0, 7);
  arg_bind(&table, 1, 3);
  arg_exclude(&table, 3, 5);
  arg_add_help(&table, help_print);
  arg_read(count, arguments, table);
}

}  // namespace

// One argument a line, the name of the program first.
void fuzz_pass(std::string_view input) {
  const auto read = input.starts_with("*\n") ? read_all_kinds : argument;
  static std::vector<std::string> lines;  // exit destroys nothing
  static std::vector<char*> arguments;
  lines.clear();
  arguments.clear();
  for (std::size_t begin = 0, end = 0; begin < input.size(); begin = end + 1) {
    end = std::min(input.find('\n', begin), input.size());
    lines.emplace_back(input.substr(begin, end - begin));
  }
  for (std::string& line : lines) {
    arguments.push_back(line.data());
  }
  read(static_cast<int>(lines.size()), arguments.data());
}
