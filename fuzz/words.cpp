#include <cstdio>
#include <string_view>

#include "app/input/config.hpp"
#include "app/input/fcheck_sections.hpp"

// Prints the words of one of the program's tables, as the dictionary of a harness: orva_words fchk|config.
int main(int argc, char** argv) {
  const std::string_view harness = argc > 1 ? argv[1] : "";
  for (const std::string_view word : harness == "fchk" ? fcheck_labels() : conf_names()) {
    std::printf("\"%.*s\"\n", static_cast<int>(word.size()), word.data());
  }
}
