#pragma once

#include <cmath>

// How far the values of the sweep by rows may lie from those of the exact sweep.
//
// u = 2^-53 is what one rounding costs, relatively. Both ways start from the same offsets x, y, z, exponents
// α, normalization constants N and coefficients c, C, all of them doubles, and both come near the true value
//
//   φ_o = Σ_f C_fo A_f(x, y, z) Σ_p c_fp N_fp exp(-α_p r²).
//
// Let a = α r², and V_f what function f comes to with all terms of its sum and of its angular factor A taken
// positive. The exact sweep rounds r² thrice and its product with α once, which moves a term by 4 a u; the
// exponential is good to 2 u, the angular factor to 10 u of its magnitude, the three products of a term and
// the sum over P terms to (3 + P) u, the orbital's sum over n functions to (1 + n) u. (Functions that the
// rows leave out do not count in n: adding t changes a sum by a rounding of at most |t|, since the sum itself
// is a double.) The rows take three exponentials of α d², each moved by 2 u of its argument and good to 2 u,
// and multiply them with a weight: (2 a + 9) u; functions count as multiples of one radial if each term is so
// to 32 u; the sum over the terms, the powers along and across, the collapsed coefficients, which are sums
// over at most F functions of a radial and then over 15 monomials, and the sum over g row functions add (P +
// 28 + F + g) u. Together, for all terms with a <= 48,
//
//   |error of φ_o| <= ε Σ_f |C_fo| V_f,   ε = (6·48 + 100 + 2 P + n + F + g) u.
//
// Terms with a > 48 are smaller than |c N| (48 / α)^(l/2) exp(-48) and are off by another 2^-40 of themselves
// at most (6·746 roundings; from 746 on both are 0 to any purpose): `tail` adds them up, and rows_negligible
// for each term that is out of reach. What a tile leaves out enters with all of its V twice, once for lacking
// and once for its rounding in the exact sweep. Underflow costs less than 10^-240, which the tail covers, and
// no smaller value is sure (what is not ordinary is left to the exact sweep).
//
// For sums over orbitals with weights n_o >= 0, let Δ be the same bound with the norm of the vector √n_o C_fo
// over the orbitals in place of |C_fo|: by the triangle inequality the vector of the errors of all √n_o φ_o
// is not longer. With s = Σ n_o φ_o² from the rows, the exact sweep's differs by at most 2 √s Δ + 3 Δ² and
// the rounding of both sums over m orbitals, of the squares in them and their products with n_o, (2 m + 8) u
// s. Σ n_o |ε_o| φ_o² is the same with norms over √(n_o |ε_o|) C_fo; the relative tolerance of a quotient is
// the sum of both.

inline constexpr double rows_unit = 0x1p-53;
inline constexpr double rows_argument_max = 48.0;
inline constexpr double rows_tail = 0x1p-40;
inline constexpr double rows_negligible = 1e-26;
inline constexpr double rows_multiple = 32.0 * rows_unit;  // how nearly functions are multiples of a radial

// The bounds are evaluated in doubles themselves, and where errors count twice their squares are left out.
inline constexpr double rows_margin = 1.0625;

/// Whether a coefficient, weight or energy is so small that products of them are finite.
inline bool rows_is_ordinary(double number) { return std::fabs(number) <= 1e30; }

/// ε without n and g, and what each of these summands adds.
constexpr double rows_rounding(double term_max, double function_max) {
  return rows_margin * (6.0 * rows_argument_max + 100.0 + 2.0 * term_max + function_max) * rows_unit;
}
inline constexpr double rows_rounding_of_summand = rows_margin * rows_unit;

/// Relative tolerance of Σ n_o φ_o² or Σ n_o |ε_o| φ_o² over `count` orbitals with the bound Δ; infinite if
/// the sum is 0.
[[gnu::always_inline]] inline double rows_sum_tolerance(double bound, double sum, unsigned count) {
  const double relative = rows_margin * bound / std::sqrt(sum);
  return (2.0 + 3.0 * relative) * relative + (2.0 * count + 8.0) * rows_unit;
}

[[gnu::always_inline]] inline double rows_quotient_tolerance(double numerator, double denominator) {
  return rows_margin * (numerator + denominator);
}

/// Relative tolerance of φ² where that of φ is `relative`.
template <class Real>
[[gnu::always_inline]] inline Real rows_square_tolerance(const Real& relative) {
  return (2.0 + 3.0 * relative) * relative + 8.0 * rows_unit;
}
