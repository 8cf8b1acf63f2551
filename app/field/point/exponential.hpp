#pragma once

#include "app/field/point/pack.hpp"

// The exponential of all field formulas, for one double and for a pack: the C library's has no lanes, and its
// last bit differs between versions. Cody & Waite reduction x = k·ln 2 + r, |r| <= ln(2)/2, then a polynomial
// for exp(r) (W. J. Cody, W. Waite, Software Manual for the Elementary Functions, 1980).

/// exp(-x) is exactly 0.0 from this x on: from 745.14, with room for the rounding of x and for packs of
/// points whose distances are ordered to 14 digits.
inline constexpr double exponential_zero_limit = 746.0;

/// Largest magnitude of an argument of exponential_normal.
inline constexpr double exponential_normal_limit = 708.0;

namespace exponential_constants {
inline constexpr double log2_e = 0x1.71547652b82fep+0;
inline constexpr double ln2_high = 0x1.62e42feep-1;  // 32 bits: k times this is exact for all k in use
inline constexpr double ln2_low = 0x1.a39ef35793c76p-33;
inline constexpr double shifter = 0x1.8p52;  // adding it leaves the nearest integer in the lowest bits
inline constexpr double lowest_argument = -exponential_zero_limit;
inline constexpr double highest_argument = 710.0;  // above 709.79 it is infinite

// exp(r) = 1 + r + r²/2 + r³·(c[0] + c[1]·r + ...): least squares over Chebyshev points in |r| <= ln(2)/2,
// absolute error below 2^-57.
inline constexpr double c[] = {0x1.555555555555cp-3,  0x1.5555555552ff0p-5,  0x1.111111110eab7p-7,
                               0x1.6c16c17d6070bp-10, 0x1.a01a01b40c351p-13, 0x1.a019a95b8adb5p-16,
                               0x1.71ddeee55462ap-19, 0x1.28a1431d7854bp-22, 0x1.af6dd92e2421bp-26};
}  // namespace exponential_constants

/// exp(x) / 2^k for k = the integer nearest to x / ln 2.
template <class Real>
[[gnu::always_inline]] inline Real exponential_fraction(const Real& x, const Real& k) {
  using namespace exponential_constants;
  const Real r = (x - k * ln2_high) - k * ln2_low;
  // Estrin's scheme: short chains of operations side by side.
  const Real square = r * r;
  const Real fourth = square * square;
  const Real low = (0.5 + c[0] * r) + (c[1] + c[2] * r) * square;
  const Real high = (c[3] + c[4] * r) + (c[5] + c[6] * r) * square;
  const Real polynomial = low + (high + (c[7] + c[8] * r) * fourth) * fourth;
  // 1 + r is rounded; what it lost goes with the small terms.
  const Real sum = 1.0 + r;
  const Real lost = (1.0 - sum) + r;
  return sum + (lost + square * polynomial);
}

/// exp(x) for |x| up to exponential_normal_limit, where neither the result nor a step on the way leaves the
/// normal numbers. The same bits as exponential(x).
template <class Real>
[[gnu::always_inline]] inline Real exponential_normal(const Real& x) {
  using namespace exponential_constants;
  const Real shifted = x * log2_e + shifter;
  const Real fraction = exponential_fraction(x, shifted - shifter);
  return from_bits(bits_of(fraction) + (bits_of(shifted) << 52), fraction);
}

/// exp(x) for any x, at most 1 unit in the last place from the true value: exact 0.0 below the smallest
/// subnormal number, infinity above the largest finite one, NaN for NaN, exactly 1.0 for 0.
template <class Real>
Real exponential(const Real& x) {
  using namespace exponential_constants;
  const Real bounded = lower_of(Real(highest_argument), higher_of(Real(lowest_argument), x));
  const Real k = (bounded * log2_e + shifter) - shifter;
  // 2^k may be no normal number; its two halves are, and only the last product is rounded.
  const Real half = (k * 0.5 + shifter) - shifter;
  const auto power = [](const Real& n) { return from_bits((bits_of(n + shifter) + 1023) << 52, n); };
  return exponential_fraction(bounded, k) * power(half) * power(k - half);
}
