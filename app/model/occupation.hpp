#pragma once

#include <vector>

#include "app/model/molecule.hpp"

/// An orbital, and how often it counts in sums over orbitals.
struct WeightedOrbital {
  WeightedOrbital(const Orbital* of, double times = 1.0) : orbital(of), weight(times) {}

  const Orbital* orbital;
  double weight;
};

/// The occupied orbitals, alpha before beta, each with its electrons, or with 1 for a pair of them.
struct Occupation {
  bool is_restricted;  // all are occupied by pairs: what their sums tell of electrons is to be doubled
  std::vector<WeightedOrbital> orbitals;

  bool has_no_pairs() const { return is_restricted && orbitals.empty(); }
};

/// Which orbitals are occupied: those whose own occupation is not 0, if the molecule has occupations; else
/// the first electron_count / 2 by pairs in a restricted wavefunction, or the first of each spin by its
/// electrons.
Occupation occupation_of(const Molecule* molecule);
