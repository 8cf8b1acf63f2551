#include "str_file.hpp"

#include <cstdio>
#include <cstring>

namespace {

int copy_behind_last(const char* path, char separator, char* destination) {
  const char* last = std::strrchr(path, separator);
  std::snprintf(destination, str_file_size, "%s", last == nullptr ? path : last + 1);
  return destination[0] != '\0';
}

}  // namespace

int str_file_base(const char* path, char* destination) { return copy_behind_last(path, '/', destination); }
int str_file_ext(const char* path, char* destination) { return copy_behind_last(path, '.', destination); }
