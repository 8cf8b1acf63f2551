#include "occupation.hpp"

#include "setup.hpp"

Occupation occupation_of(const Molecule* molecule) {
  if (inp_rest_scf != 0) {
    return {true, {{molecule->alpha_orbitals, molecule->electron_count / 2}, {nullptr, 0}}};
  }
  return {false,
          {{molecule->alpha_orbitals, molecule->alpha_electron_count},
           {molecule->beta_orbitals, molecule->beta_electron_count}}};
}

std::vector<const Orbital*> occupied_orbitals(const Molecule* molecule) {
  std::vector<const Orbital*> orbitals;
  for (const OccupiedOrbitals& spin : occupation_of(molecule).spin) {
    for (unsigned i = 0; i < spin.count; ++i) {
      orbitals.push_back(&spin.orbitals[i]);
    }
  }
  return orbitals;
}
