#pragma once

#include "app/model/shell.hpp"

struct Molecule;

// The primitives of WFN files, whoever writes them.

/// Type numbers count from 1 through the components of the Cartesian shells.
inline constexpr unsigned wfn_type_count = [] {
  unsigned count = 0;
  for (int type = 0; type <= shell_max; ++type) {
    count += shell_function_count(type);
  }
  return count;
}();

/// Makes the basis functions from the centre (counted from 1), type number and exponent (bohr^-2) of each
/// primitive. A centre outside 1 to `atom_count` ends the run with "shell atom index exceedes number of
/// atoms".
void wfn_basis_reorder(Molecule* molecule, const unsigned* centres, const unsigned* types,
                       const double* exponents);
