#include "app/wfn.hpp"
#include "app/memory.hpp"
#include "app/setup.hpp"
#include "fuzz.hpp"

void fuzz_pass(std::string_view input) {
  conf_input_convention = input.size() % 2;
  Molecule molecule = {};
  wfn_read(&molecule);
  mem_clean(&molecule, nullptr);
}
