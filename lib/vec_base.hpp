#pragma once

#include <cstddef>
#include <cstdint>

// Vectors: bare heap blocks whose length the caller carries.
// The letters after `vec_` name the element: f double, i int, u unsigned int, lu unsigned long,
// si short int, s string, t an element of a size that the caller gives.

/// Index that a search returns when nothing matches.
inline constexpr unsigned vec_not_found = 0xFFFFFFFFU;

inline constexpr const char* vec_falloc_failure = "cannot allocate memory for vector of doubles";

/// Zero-filled vectors of `n` elements, never null. Without memory the run ends with
/// "cannot allocate memory for vector of ...".
double* vec_falloc(unsigned n);
int* vec_ialloc(unsigned n);
unsigned* vec_ualloc(unsigned n);
unsigned long* vec_lualloc(unsigned n);
short* vec_sialloc(unsigned n);

/// `count` elements of `size` bytes, not zero-filled; the byte count wraps at 32 bits.
/// Without memory the run ends with "cannot allocate memory for user defined vector".
void* vec_talloc(unsigned count, unsigned size);

/// An array of `n` zero-filled strings of `length` bytes each. Without memory the run ends with
/// "cannot allocate memory for array of strings" or "cannot allocate memory for string in array".
char** vec_salloc(unsigned n, unsigned length);

/// Release; null is allowed. All return 0.
int vec_ffree(double* vector);
int vec_ifree(int* vector);
int vec_ufree(unsigned* vector);
int vec_lufree(unsigned long* vector);
int vec_sifree(short* vector);
int vec_tfree(void* vector);
int vec_sfree(char** strings, unsigned n);

/// Store `value` into the first `n` elements.
void vec_fset(double* vector, double value, unsigned n);
void vec_iset(int* vector, int value, unsigned n);
void vec_uset(unsigned* vector, unsigned value, unsigned n);
void vec_luset(unsigned long* vector, unsigned long value, unsigned n);
void vec_siset(short* vector, short value, unsigned n);

/// First index whose element equals the value; vec_not_found if there is none, the vector is null or n is 0.
/// A NaN equals nothing; strings are compared byte by byte.
unsigned vec_fin(const double* vector, double value, unsigned n);
unsigned vec_iin(const int* vector, int value, unsigned n);
unsigned vec_uin(const unsigned* vector, unsigned value, unsigned n);
unsigned vec_luin(const unsigned long* vector, unsigned long value, unsigned n);
unsigned vec_siin(const short* vector, short value, unsigned n);
unsigned vec_sin(const char* const* strings, const char* text, unsigned n);

/// First index for which compare(element, key) is nonzero; elements are `size` bytes apart.
unsigned vec_tin(const void* vector, const void* key, int (*compare)(const void* element, const void* key),
                 unsigned size, unsigned n);
