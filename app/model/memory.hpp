#pragma once

// The one record of a run: what was read of the molecule and its wavefunction.
// Lengths in bohr, exponents in bohr^-2, energies in hartree.

struct Atom {
  unsigned atomic_number;  // 0 where the symbol names no element
  double coord[3];         // x, y, z, bohr
  char symbol[8];
};

struct Orbital {
  double energy;         // hartree
  double* coefficients;  // one per basis function
  double occupation;     // electrons, if Molecule::has_occupations
};

/// A function of a shell of a type of shell.hpp.
struct BasisFunction {
  short type;        // never -1: the functions of an sp shell are s and p
  short component;   // position within the shell
  short shell_type;  // type of the shell that the function came from
  unsigned primitive_count;
  unsigned atom_index;   // zero-based centre
  double* exponents;     // bohr^-2
  double* coefficients;  // as read; primitives are normalised where they are evaluated
  const Atom* atom;      // the centre, not owned
};

struct Molecule {
  unsigned atom_count;
  unsigned electron_count;
  unsigned alpha_electron_count;
  unsigned beta_electron_count;
  int charge;
  unsigned multiplicity;
  unsigned basis_count;  // basis functions, length of every coefficient vector
  unsigned primitive_count;
  unsigned shell_count;
  char title[1024];
  Atom* atoms;
  Orbital* alpha_orbitals;  // or the orbitals of a restricted wavefunction
  Orbital* beta_orbitals;   // null for a restricted wavefunction
  BasisFunction* basis;
  unsigned alpha_orbital_count;
  unsigned beta_orbital_count;
  bool is_restricted = true;  // one set of orbitals serves both spins
  bool has_occupations;       // of each orbital; else the counts of electrons tell which are occupied
};

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
