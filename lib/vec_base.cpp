#include "vec_base.hpp"

#include <algorithm>
#include <cstring>

#include "allocate.hpp"

namespace {

int release(void* block) {
  std::free(block);
  return 0;
}

template <class Matches>
unsigned find_index(const void* vector, unsigned n, Matches matches) {
  if (vector == nullptr) {
    return vec_not_found;
  }
  for (unsigned i = 0; i < n; ++i) {
    if (matches(i)) {
      return i;
    }
  }
  return vec_not_found;
}

template <class Element>
unsigned find_value(const Element* vector, Element value, unsigned n) {
  return find_index(vector, n, [=](unsigned i) { return vector[i] == value; });
}

}  // namespace

double* vec_falloc(unsigned n) { return allocate<double>(n, vec_falloc_failure); }
int* vec_ialloc(unsigned n) { return allocate<int>(n, "cannot allocate memory for vector of int-s"); }
unsigned* vec_ualloc(unsigned n) {
  return allocate<unsigned>(n, "cannot allocate memory for vector of unsigned int-s");
}
unsigned long* vec_lualloc(unsigned n) {
  return allocate<unsigned long>(n, "cannot allocate memory for vector of unsigned longs");
}
short* vec_sialloc(unsigned n) {
  return allocate<short>(n, "cannot allocate memory for vector of short int-s");
}

void* vec_talloc(unsigned count, unsigned size) {
  void* block = std::malloc(std::max(count * size, 1U));
  if (block == nullptr) {
    msg_fatal("cannot allocate memory for user defined vector");
  }
  return block;
}

char** vec_salloc(unsigned n, unsigned length) {
  char** strings = allocate<char*>(n, "cannot allocate memory for array of strings");
  for (unsigned i = 0; i < n; ++i) {
    strings[i] = allocate<char>(length, "cannot allocate memory for string in array");
  }
  return strings;
}

int vec_ffree(double* vector) { return release(vector); }
int vec_ifree(int* vector) { return release(vector); }
int vec_ufree(unsigned* vector) { return release(vector); }
int vec_lufree(unsigned long* vector) { return release(vector); }
int vec_sifree(short* vector) { return release(vector); }
int vec_tfree(void* vector) { return release(vector); }

int vec_sfree(char** strings, unsigned n) {
  if (strings != nullptr) {
    std::for_each_n(strings, n, release);
  }
  return release(static_cast<void*>(strings));
}

void vec_fset(double* vector, double value, unsigned n) { std::fill_n(vector, n, value); }
void vec_iset(int* vector, int value, unsigned n) { std::fill_n(vector, n, value); }
void vec_uset(unsigned* vector, unsigned value, unsigned n) { std::fill_n(vector, n, value); }
void vec_luset(unsigned long* vector, unsigned long value, unsigned n) { std::fill_n(vector, n, value); }
void vec_siset(short* vector, short value, unsigned n) { std::fill_n(vector, n, value); }

unsigned vec_fin(const double* vector, double value, unsigned n) { return find_value(vector, value, n); }
unsigned vec_iin(const int* vector, int value, unsigned n) { return find_value(vector, value, n); }
unsigned vec_uin(const unsigned* vector, unsigned value, unsigned n) { return find_value(vector, value, n); }
unsigned vec_luin(const unsigned long* vector, unsigned long value, unsigned n) {
  return find_value(vector, value, n);
}
unsigned vec_siin(const short* vector, short value, unsigned n) { return find_value(vector, value, n); }

unsigned vec_sin(const char* const* strings, const char* text, unsigned n) {
  return find_index(static_cast<const void*>(strings), n,
                    [=](unsigned i) { return std::strcmp(strings[i], text) == 0; });
}

unsigned vec_tin(const void* vector, const void* key, int (*compare)(const void* element, const void* key),
                 unsigned size, unsigned n) {
  const auto* bytes = static_cast<const unsigned char*>(vector);
  return find_index(vector, n, [=](unsigned i) { return compare(bytes + std::size_t{i} * size, key) != 0; });
}
