#pragma once

#include <algorithm>
#include <cmath>

/// The logarithm of a positive number from four square roots and a short series, so that its bits are the
/// same on every machine. For 0.1 < x < 10 it errs by less than 10^-13, relatively to the larger of itself
/// and 1; for 10^-6 < x < 10^6 by less than 10^-5; farther from 1 it goes on growing.
inline double log_near_one(double x) {
  x = std::clamp(x, 1e-9, 1e9);
  const double root = std::sqrt(std::sqrt(std::sqrt(std::sqrt(x))));
  const double z = (root - 1.0) / (root + 1.0), w = z * z;  // ln root = 2 (z + z³/3 + z⁵/5 + ...)
  return 32.0 * z *
         (1.0 + w * (1.0 / 3 + w * (1.0 / 5 + w * (1.0 / 7 + w * (1.0 / 9 + w * (1.0 / 11 + w / 13))))));
}
