#include "app/model/memory.hpp"

#include <algorithm>
#include <cstdlib>

#include "app/model/dmat.hpp"
#include "lib/allocate.hpp"
#include "lib/message.hpp"
#include "lib/vec_base.hpp"

namespace {

// All orbitals but the first `listed` share one vector.
Orbital* allocate_orbitals(std::size_t count, std::size_t listed, std::size_t basis_count,
                           const char* failure) {
  auto* orbitals = allocate<Orbital>(count, failure);
  const std::size_t vector_count = std::min(count, listed + 1);
  auto* coefficients = allocate<double>(vector_count * basis_count, vec_falloc_failure);
  orbitals[0].coefficients = coefficients;  // there is room for one even if the count is 0
  for (std::size_t i = 1; i < count; ++i) {
    orbitals[i].coefficients = coefficients + std::min(i, listed) * basis_count;
  }
  return orbitals;
}

void allocate_alpha(Molecule* molecule, unsigned count, unsigned listed) {
  molecule->alpha_orbital_count = count;
  molecule->alpha_orbitals = allocate_orbitals(count, listed, molecule->basis_count,
                                               "cannot allocate memory for alpha molecular orbitals");
}

void allocate_beta(Molecule* molecule, unsigned count, unsigned listed) {
  molecule->beta_orbital_count = count;
  molecule->beta_orbitals = allocate_orbitals(count, listed, molecule->basis_count,
                                              "cannot allocate memory for beta molecular orbitals");
}

void free_orbitals(Orbital* orbitals) {
  if (orbitals != nullptr) {
    vec_ffree(orbitals[0].coefficients);
    std::free(orbitals);
  }
}

void free_basis(BasisFunction* basis, unsigned count) {
  if (basis != nullptr) {
    std::for_each_n(basis, count, [](const BasisFunction& function) {
      vec_ffree(function.exponents);
      vec_ffree(function.coefficients);
    });
    std::free(basis);
  }
}

}  // namespace

void mem_init_mol(Molecule* molecule) { *molecule = Molecule{}; }

void mem_alloc_atoms(Molecule* molecule) {
  molecule->atoms = allocate<Atom>(molecule->atom_count, "cannot allocate memory for atom information");
}

const Atom* mem_centre(const Molecule* molecule, unsigned number) {
  if (number < 1 || number > molecule->atom_count) {
    msg_fatal("shell atom index exceedes number of atoms");
  }
  return &molecule->atoms[number - 1];
}

void mem_alloc_orbitals(Molecule* molecule) { mem_alloc_listed_orbitals(molecule, molecule->basis_count); }

void mem_alloc_listed_orbitals(Molecule* molecule, unsigned listed) {
  allocate_alpha(molecule, molecule->basis_count, listed);
  if (!molecule->is_restricted) {
    allocate_beta(molecule, molecule->basis_count, listed);
  }
}

void mem_alloc_alpha_orbitals(Molecule* molecule, unsigned count) { allocate_alpha(molecule, count, count); }
void mem_alloc_beta_orbitals(Molecule* molecule, unsigned count) { allocate_beta(molecule, count, count); }

void mem_free_beta_orbitals(Molecule* molecule) {
  free_orbitals(molecule->beta_orbitals);
  molecule->beta_orbitals = nullptr;
  molecule->beta_orbital_count = 0;
}

void mem_alloc_basis(Molecule* molecule) {
  molecule->basis =
      allocate<BasisFunction>(molecule->basis_count, "cannot allocate memory for basis functions");
}

void mem_clean(Molecule* molecule, double** distances) {
  std::free(molecule->atoms);
  free_orbitals(molecule->alpha_orbitals);
  free_orbitals(molecule->beta_orbitals);
  free_basis(molecule->basis, molecule->basis_count);
  dmat_free(molecule, distances);
  mem_init_mol(molecule);
}
