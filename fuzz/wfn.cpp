#include "app/input/wfn.hpp"
#include "app/model/memory.hpp"
#include "app/model/setup.hpp"
#include "fuzz.hpp"

void fuzz_pass(std::string_view input) {
  conf_input_convention = input.size() % 2;
  Molecule molecule = {};
  wfn_read(&molecule);
  mem_clean(&molecule, nullptr);
}
