#include "app/model/occupation.hpp"

#include <algorithm>
#include <span>

namespace {

void add_first(const Orbital* orbitals, unsigned count, Occupation* occupation) {
  for (unsigned i = 0; i < count; ++i) {
    occupation->orbitals.emplace_back(&orbitals[i]);
  }
}

Occupation from_counts(const Molecule* molecule) {
  Occupation occupation = {molecule->is_restricted, {}};
  if (occupation.is_restricted) {
    add_first(molecule->alpha_orbitals, molecule->electron_count / 2, &occupation);
  } else {
    add_first(molecule->alpha_orbitals, molecule->alpha_electron_count, &occupation);
    add_first(molecule->beta_orbitals, molecule->beta_electron_count, &occupation);
  }
  return occupation;
}

}  // namespace

Occupation occupation_of(const Molecule* molecule) {
  if (!molecule->has_occupations) {
    return from_counts(molecule);
  }
  Occupation occupation = {false, {}};
  for (const Orbital& orbital : std::span(molecule->alpha_orbitals, molecule->alpha_orbital_count)) {
    if (orbital.occupation != 0.0) {
      occupation.orbitals.emplace_back(&orbital, orbital.occupation);
    }
  }
  // Pairs as such have the bits of a closed shell, also where a square underflows.
  occupation.is_restricted = std::ranges::all_of(
      occupation.orbitals, [](double n) { return n == 2.0; }, &WeightedOrbital::weight);
  if (occupation.is_restricted) {
    std::ranges::for_each(occupation.orbitals, [](WeightedOrbital& pair) { pair.weight = 1.0; });
  }
  return occupation;
}
