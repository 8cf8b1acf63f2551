#include "app/input/fcheck_line.hpp"

#include <cstdlib>
#include <cstring>
#include <limits>

#include "app/model/setup.hpp"
#include "lib/message.hpp"

namespace {

constexpr const char* blanks = " \t";

}  // namespace

void fcheck_input_method(const char* line) {
  const char* word = line + std::strspn(line, blanks);
  word += std::strcspn(word, blanks);
  word += std::strspn(word, blanks);
  if (*word == '\0') {
    msg_fatal("cannot find method which was used to compute MOs");
  }
  inp_rest_scf = *word == 'R' ? 1 : 0;
}

int fcheck_last_int(const char* line) {
  const char* end = line + std::strlen(line);
  while (end != line && std::strchr(blanks, end[-1]) != nullptr) {
    --end;
  }
  const char* word = end;
  while (word != line && std::strchr(blanks, word[-1]) == nullptr) {
    --word;
  }
  char* stop = nullptr;
  const long value = std::strtol(word, &stop, 10);
  if (stop == word || value < std::numeric_limits<int>::min() || value > std::numeric_limits<int>::max()) {
    msg_fatal("cannot convert last word into integer");
  }
  return static_cast<int>(value);
}
