#pragma once

#include <array>
#include <cstdio>

#include "app/listing/graph.hpp"
#include "app/model/molecule.hpp"
#include "lib/stack.hpp"

// The Z-matrix: every atom by a bond, an angle and a dihedral to atoms of earlier rows, chosen by walking
// the tree of the bonds.

/// Atoms of a row, -1 where there is none: 3 the row's own, 2 bond, 1 angle, 0 dihedral partner.
using ZmatSlots = std::array<int, 4>;

/// Prints the Z-matrix (ångström, degrees); nothing for a molecule without atoms.
/// distances: between the atoms, bohr. Ends the run if an atom is out of reach of the others.
void zmat_print(const Molecule* molecule, std::FILE* stream, const double* const* distances);

/// Places `atom` in the row of the zero-based index: sets its row number, chooses its partners and pushes
/// its children onto `stack`. rows: number of each atom's row, from 1; -1 if it has none yet.
void zmat_define_row(Stack* stack, const Graph* graph, int* rows, unsigned row_index, int atom,
                     ZmatSlots& slots);

/// Chooses the partners of the atom in slot 3 for the row of the given number (from 1): its ancestors, then
/// placed atoms in the order in which a search from the root meets them.
void zmat_backtrack(const Graph* graph, const int* rows, unsigned row_number, ZmatSlots& slots);

/// Whether the atom is in one of the slots lowest to 3.
bool zmat_atom_used(const ZmatSlots& slots, unsigned lowest, int atom);

/// Prints one row.
void zmat_print_row(const Molecule* molecule, std::FILE* stream, const double* const* distances,
                    const ZmatSlots& slots, const int* rows);
