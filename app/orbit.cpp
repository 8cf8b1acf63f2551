#include "orbit.hpp"

#include <vector>

#include "mat_print.hpp"
#include "message.hpp"

void orbit_print_mo(const Molecule* molecule, std::FILE* stream, std::int16_t spin, unsigned width) {
  if (spin != orbit_alpha && spin != orbit_beta) {
    msg_fatal("invalid code in function orbit_print_mo");
  }
  const Orbital* orbitals = spin == orbit_alpha ? molecule->alpha_orbitals : molecule->beta_orbitals;
  std::vector<double*> rows;
  rows.reserve(molecule->basis_count);
  for (unsigned i = 0; i < molecule->basis_count; ++i) {
    rows.push_back(orbitals[i].coefficients);
  }
  mat_ffprint_sc(stream, rows.data(), molecule->basis_count, width);
}
