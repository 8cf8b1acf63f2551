#pragma once

#include <cstdio>

// Matrices, given as arrays of row pointers, printed as text. The first letter f after the prefix of a longer
// name stands for a stream given by the caller; the others write to standard output. In the block layouts
// the columns come in blocks of `width`, each under a line of column numbers and with numbered rows.

/// Lower triangle of a symmetric n × n matrix, diagonal included, every element times `scale`.
void mat_ffprint_Sc_scale(std::FILE* stream, const double* const* matrix, unsigned n, unsigned width,
                          double scale);

/// The same without scaling.
void mat_ffprint_Sc(std::FILE* stream, const double* const* matrix, unsigned n, unsigned width);
void mat_fprint_Sc(const double* const* matrix, unsigned n, unsigned width);

/// The full n × n matrix.
void mat_ffprint_sc(std::FILE* stream, const double* const* matrix, unsigned n, unsigned width);
void mat_fprint_sc(const double* const* matrix, unsigned n, unsigned width);

/// A full matrix of any shape in the same layout.
void mat_ffprint_blocks(std::FILE* stream, const double* const* matrix, unsigned rows, unsigned columns,
                        unsigned width);

/// Rows and columns from first up to but excluding end, without numbers and blocks.
void mat_fprint_sub(const double* const* matrix, unsigned first_row, unsigned first_column, unsigned end_row,
                    unsigned end_column);

/// All elements, one line a row, without numbers and blocks.
void mat_fprint(const double* const* matrix, unsigned rows, unsigned columns);
void mat_uprint(const unsigned* const* matrix, unsigned rows, unsigned columns);
void mat_iprint(const int* const* matrix, unsigned rows, unsigned columns);
