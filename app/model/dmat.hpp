#pragma once

#include "app/model/memory.hpp"

/// The distances between all atoms: atom × atom, bohr, symmetric, zero diagonal. Released by dmat_free.
/// Without memory the run ends with "cannot allocate memory for double matrix" (or "column of double
/// matrix").
double** dmat_alloc(const Molecule* molecule);
