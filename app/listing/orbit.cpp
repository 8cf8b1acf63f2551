#include "app/listing/orbit.hpp"

#include <algorithm>
#include <vector>

#include "lib/mat_print.hpp"
#include "lib/message.hpp"

void orbit_print_mo(const Molecule* molecule, std::FILE* stream, std::int16_t spin, unsigned width) {
  if (spin != orbit_alpha && spin != orbit_beta) {
    msg_fatal("invalid code in function orbit_print_mo");
  }
  const bool is_alpha = spin == orbit_alpha;
  const Orbital* const orbitals = is_alpha ? molecule->alpha_orbitals : molecule->beta_orbitals;
  std::vector<const double*> rows(is_alpha ? molecule->alpha_orbital_count : molecule->beta_orbital_count);
  std::transform(orbitals, orbitals + rows.size(), rows.begin(),
                 [](const Orbital& orbital) { return orbital.coefficients; });
  mat_ffprint_blocks(stream, rows.data(), static_cast<unsigned>(rows.size()), molecule->basis_count, width);
}
