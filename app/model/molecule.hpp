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
