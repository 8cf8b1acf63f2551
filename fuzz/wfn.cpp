#include "wfn.hpp"
#include "fuzz.hpp"
#include "memory.hpp"

void fuzz_pass(std::string_view) {
  Molecule molecule = {};
  wfn_read(&molecule);
  mem_clean(&molecule, nullptr);
}
