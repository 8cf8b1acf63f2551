#pragma once

// Operations on vectors. The caller's counts must not exceed the blocks.

/// Σ a_i·b_i, accumulated from 0.0 in index order.
double vec_fprod_scalar(const double* a, const double* b, unsigned n);

/// Cross product of two 3-vectors; `out` must be neither of them.
void vec_fprod_vector(const double* a, const double* b, double* out);

/// a · (b × w) of 3-vectors.
double vec_fprod_mixed(const double* a, const double* b, const double* w);

/// sqrt(Σ v_i²).
double vec_fnorm(const double* vector, unsigned n);

/// Angle between a and b in radians, 0 to π; NaN if one of them is zero.
double vec_fangle(const double* a, const double* b, unsigned n);

/// v_i = v_i · factor.
void vec_fscale(double* vector, unsigned n, double factor);

/// Σ v_i, accumulated from 0.0 in index order.
double vec_fsum(const double* vector, unsigned n);

/// destination_i = a_i + b_i, and a_i − b_i.
void vec_fadd(double* destination, const double* a, const double* b, unsigned n);
void vec_fsub(double* destination, const double* a, const double* b, unsigned n);

/// destination_i = destination_i + factor · source_i.
void vec_fadd_scaled(double* destination, const double* source, unsigned n, double factor);

/// Move every element one place towards the end (right) or the start (left); 0.0 takes the free place.
void vec_frshift(double* vector, unsigned n);
void vec_flshift(double* vector, unsigned n);

/// Index of the largest or smallest element or magnitude: the first of equals, 0 if n is 0.
unsigned vec_fmax(const double* vector, unsigned n);
unsigned vec_fmin(const double* vector, unsigned n);
unsigned vec_fmax_abs(const double* vector, unsigned n);
unsigned vec_fmin_abs(const double* vector, unsigned n);

/// Divides by the norm; a vector with a norm of at most 1e-10 is left as it is.
void vec_funit(double* vector, unsigned n);

/// Writes source / norm; leaves `destination` as it is if the norm is at most 1e-10.
void vec_funit_c(double* destination, const double* source, unsigned n);

/// The elements of a, then those of b, in a new vector; a and b are released. If one of the vectors is empty,
/// the other one itself is the result and nothing is released.
unsigned* vec_umerge(unsigned* a, unsigned a_count, unsigned* b, unsigned b_count);

/// A new vector of `index_count` elements: in increasing i, those v_i whose index i is among `indices`;
/// the old vector is released. Places that stay free (repeated or too large indices) are zero.
double* vec_freduce(double* vector, unsigned n, const unsigned* indices, unsigned index_count);
int* vec_ireduce(int* vector, unsigned n, const unsigned* indices, unsigned index_count);

/// The same for an array of strings; the new ones have `length` bytes, terminator included.
char** vec_sreduce(char** strings, unsigned n, const unsigned* indices, unsigned index_count,
                   unsigned length);
