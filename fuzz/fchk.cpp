#include "fcheck.hpp"
#include "fuzz.hpp"
#include "memory.hpp"
#include "setup.hpp"

void fuzz_pass(std::string_view input) {
  conf_input_convention = input.size() % 2;
  Molecule molecule = {};
  fcheck_read(&molecule);
  mem_clean(&molecule, nullptr);
}
