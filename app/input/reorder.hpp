#pragma once

// Expansion of contracted shells into basis functions.

struct Atom;
struct Molecule;

/// The contracted shells as a formatted checkpoint file lists them. The primitives of all shells lie back to
/// back, in shell order.
struct ShellTable {
  int* types;                  // shell type codes
  unsigned* atom_map;          // centres, counted from 1
  unsigned* primitive_counts;  // primitives of each shell
  double* sp_coefficients;     // of the p functions of sp shells; null if the basis has none
  double* coefficients;
  double* exponents;  // bohr^-2
};

/// All arrays null.
void reorder_shell_init(ShellTable* shells);

/// Releases the arrays (null is allowed) and leaves the table as reorder_shell_init does.
void reorder_free(ShellTable* shells);

/// Makes the molecule's basis functions from its `shell_count` shells, in the order in which orbital
/// coefficients list them, and releases the shells. The molecule holds its atoms and all counts.
/// Ends the run with "unknown shell type CODE", "shell atom index exceedes number of atoms", or "wrong base
/// reorder - ..." if the shells make more or fewer functions than `basis_count`, or use more or fewer
/// primitives than `primitive_count`, or if an array that they need is null.
void reorder_basis(Molecule* molecule, ShellTable* shells);

// Each of these makes the functions of one shell, starting with basis function `function`, from the
// primitives that begin at `primitive`, and moves both counters on. The errors are those of reorder_basis.

/// `count` functions of a d, f or g shell of the given code.
void reorder_shell(Molecule* molecule, const ShellTable* shells, unsigned shell, unsigned& function,
                   unsigned& primitive, short type, unsigned count);

/// An s function; `shell_type` is 0, or -1 for the s part of an sp shell.
void reorder_shell_s(Molecule* molecule, const ShellTable* shells, unsigned shell, unsigned& function,
                     unsigned& primitive, short shell_type);

/// Three p functions; `shell_type` is 1, or -1 for the p part of an sp shell.
void reorder_shell_p(Molecule* molecule, const ShellTable* shells, unsigned shell, unsigned& function,
                     unsigned& primitive, short shell_type);

/// The s and the three p functions of an sp shell, over the same primitives.
void reorder_shell_sp(Molecule* molecule, const ShellTable* shells, unsigned shell, unsigned& function,
                      unsigned& primitive);

/// The centre of a shell. A number outside 1 to `atom_count` ends the run with
/// "shell atom index exceedes number of atoms".
const Atom* reorder_atom_pointer(const Molecule* molecule, const ShellTable* shells, unsigned shell);
