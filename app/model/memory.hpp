#pragma once

#include "app/model/molecule.hpp"

// What the record owns: made and released.

/// All counts 0, all pointers null, no title, restricted.
void mem_init_mol(Molecule* molecule);

/// `atom_count` zeroed atoms. Without memory the run ends with "cannot allocate memory for atom information".
void mem_alloc_atoms(Molecule* molecule);

/// The atom of a number that a file counts from 1. A number outside 1 to `atom_count` ends the run with
/// "shell atom index exceedes number of atoms".
const Atom* mem_centre(const Molecule* molecule, unsigned number);

/// As many orbitals as basis functions, with zero coefficients, for both spins unless it is restricted.
/// The coefficient vectors of a spin lie back to back in one block, released with the first of them.
/// Without memory the run ends with "cannot allocate memory for alpha molecular orbitals" (or beta).
void mem_alloc_orbitals(Molecule* molecule);

/// The same for an input that lists only the first `listed` orbitals: all others share one vector of zeros,
/// which nobody may change. A file of many primitives and few orbitals would else cost the square of the
/// former.
void mem_alloc_listed_orbitals(Molecule* molecule, unsigned listed);

/// `count` orbitals of one spin, which is then their number: each a vector of its own of `basis_count` zeros.
/// Without memory the run ends as for mem_alloc_orbitals.
void mem_alloc_alpha_orbitals(Molecule* molecule, unsigned count);
void mem_alloc_beta_orbitals(Molecule* molecule, unsigned count);

/// Releases the beta orbitals; there are none any more.
void mem_free_beta_orbitals(Molecule* molecule);

/// `basis_count` zeroed basis functions. Without memory the run ends with
/// "cannot allocate memory for basis functions".
void mem_alloc_basis(Molecule* molecule);

/// Releases all that the molecule owns, and the distance matrix (null if none was made).
void mem_clean(Molecule* molecule, double** distances);
