#include "distance.hpp"

#include <cmath>

double dist_r2(const double* a, const double* b, unsigned n) {
  double sum = 0.0;
  for (unsigned i = 0; i < n; ++i) {
    const double difference = a[i] - b[i];
    sum += difference * difference;
  }
  return sum;
}

double dist_r(const double* a, const double* b, unsigned n) { return std::sqrt(dist_r2(a, b, n)); }
