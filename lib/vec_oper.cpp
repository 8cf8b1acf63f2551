#include "vec_oper.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "vec_base.hpp"

namespace {

constexpr double angle_slack = 1e-10;    // by which rounding may carry a cosine beyond -1 or 1
constexpr double smallest_norm = 1e-10;  // of a vector that has a direction

double magnitude(double value) { return std::fabs(value); }
double itself(double value) { return value; }

// First index whose key exceeds all keys before it and `best`.
template <class Key>
unsigned find_largest(const double* vector, unsigned n, double best, Key key) {
  unsigned index = 0;
  for (unsigned i = 0; i < n; ++i) {
    if (key(vector[i]) > best) {
      best = key(vector[i]);
      index = i;
    }
  }
  return index;
}

// First index whose key is below all keys before it.
template <class Key>
unsigned find_smallest(const double* vector, unsigned n, Key key) {
  unsigned index = 0;
  for (unsigned i = 1; i < n; ++i) {
    if (key(vector[i]) < key(vector[index])) {
      index = i;
    }
  }
  return index;
}

// Calls move(target, i) for the indices i < n that are listed; targets count from 0.
template <class Move>
void for_each_kept(unsigned n, const unsigned* indices, unsigned index_count, Move move) {
  unsigned target = 0;
  for (unsigned i = 0; i < n; ++i) {
    if (vec_uin(indices, i, index_count) != vec_not_found) {
      move(target++, i);
    }
  }
}

}  // namespace

double vec_fprod_scalar(const double* a, const double* b, unsigned n) {
  double sum = 0.0;
  for (unsigned i = 0; i < n; ++i) {
    sum += a[i] * b[i];
  }
  return sum;
}

void vec_fprod_vector(const double* a, const double* b, double* out) {
  out[0] = a[1] * b[2] - a[2] * b[1];
  out[1] = a[2] * b[0] - a[0] * b[2];
  out[2] = a[0] * b[1] - a[1] * b[0];
}

double vec_fprod_mixed(const double* a, const double* b, const double* w) {
  double product[3];
  vec_fprod_vector(b, w, product);
  return vec_fprod_scalar(a, product, 3);
}

double vec_fnorm(const double* vector, unsigned n) { return std::sqrt(vec_fprod_scalar(vector, vector, n)); }

double vec_fangle(const double* a, const double* b, unsigned n) {
  double cosine = vec_fprod_scalar(a, b, n) / (vec_fnorm(b, n) * vec_fnorm(a, n));
  if (cosine < -1.0 && -1.0 - cosine < angle_slack) {
    cosine = -1.0;
  }
  if (cosine > 1.0 && cosine - 1.0 < angle_slack) {
    cosine = 1.0;
  }
  return std::acos(cosine);
}

void vec_fscale(double* vector, unsigned n, double factor) {
  for (unsigned i = 0; i < n; ++i) {
    vector[i] *= factor;
  }
}

double vec_fsum(const double* vector, unsigned n) {
  double sum = 0.0;
  for (unsigned i = 0; i < n; ++i) {
    sum += vector[i];
  }
  return sum;
}

void vec_fadd(double* destination, const double* a, const double* b, unsigned n) {
  std::transform(a, a + n, b, destination, [](double x, double y) { return x + y; });
}

void vec_fsub(double* destination, const double* a, const double* b, unsigned n) {
  std::transform(a, a + n, b, destination, [](double x, double y) { return x - y; });
}

void vec_fadd_scaled(double* destination, const double* source, unsigned n, double factor) {
  std::transform(destination, destination + n, source, destination,
                 [=](double x, double y) { return x + factor * y; });
}

void vec_frshift(double* vector, unsigned n) {
  if (n > 0) {
    std::copy_backward(vector, vector + n - 1, vector + n);
    vector[0] = 0.0;
  }
}

void vec_flshift(double* vector, unsigned n) {
  if (n > 0) {
    std::copy(vector + 1, vector + n, vector);
    vector[n - 1] = 0.0;
  }
}

unsigned vec_fmax(const double* vector, unsigned n) {
  return n == 0 ? 0 : find_largest(vector, n, vector[0], itself);
}
unsigned vec_fmin(const double* vector, unsigned n) { return find_smallest(vector, n, itself); }
unsigned vec_fmax_abs(const double* vector, unsigned n) { return find_largest(vector, n, 0.0, magnitude); }
unsigned vec_fmin_abs(const double* vector, unsigned n) { return find_smallest(vector, n, magnitude); }

void vec_funit(double* vector, unsigned n) { vec_funit_c(vector, vector, n); }

void vec_funit_c(double* destination, const double* source, unsigned n) {
  const double norm = vec_fnorm(source, n);
  if (norm > smallest_norm) {
    std::transform(source, source + n, destination, [=](double value) { return value / norm; });
  }
}

unsigned* vec_umerge(unsigned* a, unsigned a_count, unsigned* b, unsigned b_count) {
  if (a_count == 0) {
    return b;
  }
  if (b_count == 0) {
    return a;
  }
  unsigned* merged = vec_ualloc(a_count + b_count);
  std::copy_n(b, b_count, std::copy_n(a, a_count, merged));
  vec_ufree(a);
  vec_ufree(b);
  return merged;
}

double* vec_freduce(double* vector, unsigned n, const unsigned* indices, unsigned index_count) {
  double* kept = vec_falloc(index_count);
  for_each_kept(n, indices, index_count, [=](unsigned target, unsigned i) { kept[target] = vector[i]; });
  vec_ffree(vector);
  return kept;
}

int* vec_ireduce(int* vector, unsigned n, const unsigned* indices, unsigned index_count) {
  int* kept = vec_ialloc(index_count);
  for_each_kept(n, indices, index_count, [=](unsigned target, unsigned i) { kept[target] = vector[i]; });
  vec_ifree(vector);
  return kept;
}

char** vec_sreduce(char** strings, unsigned n, const unsigned* indices, unsigned index_count,
                   unsigned length) {
  char** kept = vec_salloc(index_count, length);
  for_each_kept(n, indices, index_count,
                [=](unsigned target, unsigned i) { std::snprintf(kept[target], length, "%s", strings[i]); });
  vec_sfree(strings, n);
  return kept;
}
