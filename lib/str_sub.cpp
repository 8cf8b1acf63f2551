#include "str_sub.hpp"

#include <algorithm>
#include <cstring>

int str_sub_bfind(const char* text, const char* prefix) {
  while (*text != '\0' && *text == *prefix) {
    ++text;
    ++prefix;
  }
  return *text == '\0' || *prefix == '\0';
}

void str_sub_copy(const char* source, char* destination, unsigned from, unsigned to) {
  const std::size_t end = std::min<std::size_t>(to, std::strlen(source));
  if (from < end) {
    destination = std::copy(source + from, source + end, destination);
  }
  *destination = '\0';
}
