#pragma once

// Matrices: a heap array of `columns` pointers to blocks of `length` elements, the columns; element (i, j) is
// entry j of column i. The caller carries both numbers.

/// Zero-filled matrices, never null. Without memory the run ends with "cannot allocate memory for ... matrix"
/// or "cannot allocate memory for column of ... matrix".
double** mat_falloc(unsigned columns, unsigned length);
int** mat_ialloc(unsigned columns, unsigned length);
unsigned** mat_ualloc(unsigned columns, unsigned length);

/// Release; null is allowed. All return 0.
int mat_ffree(double** matrix, unsigned columns);
int mat_ifree(int** matrix, unsigned columns);
int mat_ufree(unsigned** matrix, unsigned columns);
