#include "app/input/fcheck.hpp"
#include "app/model/memory.hpp"
#include "app/model/setup.hpp"
#include "fuzz.hpp"

void fuzz_pass(std::string_view input) {
  conf_input_convention = input.size() % 2;
  Molecule molecule = {};
  fcheck_read(&molecule);
  mem_clean(&molecule, nullptr);
}
