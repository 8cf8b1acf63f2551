#include <cstdio>
#include <string_view>

#include "app/input/config_items.hpp"
#include "app/input/fcheck_sections.hpp"

namespace {

void print_word(std::string_view word) {
  std::printf("\"%.*s\"\n", static_cast<int>(word.size()), word.data());
}

}  // namespace

// Prints the words of one of the program's tables, as the dictionary of a harness: orva_words fchk|config.
int main(int argc, char** argv) {
  const std::string_view harness = argc > 1 ? argv[1] : "";
  if (harness == "fchk") {
    for (const std::string_view label : fcheck_labels()) {
      print_word(label);
    }
  } else {
    for (const ConfigItem& item : conf_items()) {
      print_word(item.name);
    }
  }
}
