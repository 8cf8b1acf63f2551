#include "str_trim.hpp"

#include <cstring>
#include <string_view>

void str_ctrim(const char* source, char* destination) {
  source += std::strspn(source, " \t");
  // Position npos plus one is 0: nothing is left.
  const std::size_t length = std::string_view(source).find_last_not_of(" \t\n") + 1;
  std::memmove(destination, source, length);
  destination[length] = '\0';
}

void str_trim(char* string) { str_ctrim(string, string); }

void str_rtrim(char* string) { string[std::string_view(string).find_last_not_of(" \t\n") + 1] = '\0'; }
