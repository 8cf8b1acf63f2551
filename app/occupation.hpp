#pragma once

#include <vector>

#include "memory.hpp"

/// Occupied orbitals of one spin: the first `count`, in stored order.
struct OccupiedOrbitals {
  const Orbital* orbitals;
  unsigned count;
};

/// Which orbitals are occupied: electron_count / 2 doubly occupied ones of a restricted wavefunction, or the
/// alpha and beta electrons' singly occupied ones.
struct Occupation {
  bool is_restricted;
  OccupiedOrbitals spin[2];  // alpha, beta

  bool has_no_pairs() const { return is_restricted && spin[0].count == 0; }
};
Occupation occupation_of(const Molecule* molecule);

/// All occupied orbitals, alpha before beta.
std::vector<const Orbital*> occupied_orbitals(const Molecule* molecule);
