#include "app/output.hpp"

#include "app/model/setup.hpp"
#include "lib/file.hpp"

std::FILE* set_output() { return glob_file_output[0] != '\0' ? file_open(glob_file_output, "w") : stdout; }

void close_output(std::FILE* stream) {
  if (stream != stdout) {
    file_close(stream);
  } else {
    file_flush_output();
  }
}
