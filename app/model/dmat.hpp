#pragma once

struct Molecule;

// The distance matrix: made once a run, shared by the listings that need it.

/// The distances between all atoms: atom × atom, bohr, symmetric, zero diagonal. Released by dmat_free.
/// Without memory the run ends with "cannot allocate memory for double matrix" (or "column of double
/// matrix").
double** dmat_alloc(const Molecule* molecule);

/// Releases a distance matrix of `atom_count` columns; null is allowed.
void dmat_free(const Molecule* molecule, double** distances);
