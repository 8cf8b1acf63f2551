#include "fcheck.hpp"
#include "fuzz.hpp"
#include "memory.hpp"

void fuzz_pass(std::string_view) {
  Molecule molecule = {};
  fcheck_read(&molecule);
  mem_clean(&molecule, nullptr);
}
