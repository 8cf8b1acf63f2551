#include "app/input/config.hpp"

#include "fuzz.hpp"

void fuzz_pass(std::string_view) {
  CubeDefinition cube = {};
  conf_read(&cube);
}
