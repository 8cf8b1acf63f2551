#pragma once

#include <array>
#include <cmath>
#include <span>
#include <string_view>

#include "app/field/point/exponential.hpp"
#include "app/field/rows/rows_plan.hpp"
#include "app/model/shell.hpp"

// How far the values of the sweep by rows may lie from those of the exact sweep: a proof, to be read from top
// to bottom. A radial is a sum of Gaussians (terms) that functions of a centre share; along a row, a row
// function is a radial times a power of the offset along; the two other offsets are across (rows_plan.hpp has
// all words).
//
// 1. What is compared. Both sweeps start from the same doubles: the offsets x, y, z of a point from a centre,
// exponents α, normalization constants N, contraction coefficients c, orbital coefficients C. Both come near
//
//   φ_o = Σ_f C_fo A_f(x, y, z) Σ_p c_fp N_fp exp(-α_fp r²)
//
// for orbital o, over functions f with angular factors A and over their primitives p. V_f is what function f
// comes to with all terms of the sum over p and of A taken positive. One rounding costs u = 2^-53,
// relatively. A number that is made by products and sums, k roundings at most between each term and the
// result, is off by at most k u of what it comes to with all terms taken positive; (k u)² is below the margin
// of 3. Fused operations round less often. From here on the error is the distance between both sweeps'
// values. A tolerance is relative to the value of the rows. Cube files take a value only if its tolerance is
// below 10^-7: it is sure. Surfaces take any, but only of sums over orbitals, where the margin of 7 covers
// all of Δ.
//
// 2. The roundings of a term, in both sweeps: what lies between it and φ_o. The error of φ_o is at most the
// sum of this table, in u, of Σ_f |C_fo| V_f.

inline constexpr double rows_unit = 0x1p-53;

/// What the roundings of an operation are counted by.
enum class RowCount {
  once,
  argument,   // a = α r² of the term: a relative error of the argument moves the exponential by a times it
  primitive,  // P, of the longest contraction
  function,   // n, that a tile has
  multiple,   // F, functions that are multiples of one radial, at most
  row_function,    // g, that a tile has
  summed_orbital,  // m, of a density
};

struct RowRounding {
  std::string_view operation, place;
  RowCount count;
  double units;
};

/// Roundings of any angular factor, one after the other; rows_functions.cpp counts them in the formulas.
inline constexpr double rows_angular = 9.0;

/// Functions are taken for multiples of a radial if each of their terms is so to this, relatively.
inline constexpr double rows_multiple = 32.0 * rows_unit;

inline constexpr std::array rows_roundings = {
    // The exact sweep, which gives the bits of the functions for one point.
    RowRounding{"r² = x² + y² + z²: a square, two sums", "prim_r2", RowCount::argument, 3},
    RowRounding{"times -α", "prim_fce_exp", RowCount::argument, 1},
    RowRounding{"exponential, a unit in the last place", "exponential", RowCount::once, 2},
    RowRounding{"angular factor", "dfce, ffce, gfce", RowCount::once, rows_angular},
    RowRounding{"N times exponential times A, times c", "prim_value", RowCount::once, 3},
    RowRounding{"sum over primitives", "eval_contractions", RowCount::primitive, 1},
    RowRounding{"C times function", "eval_orbitals", RowCount::once, 1},
    RowRounding{"sum over functions", "eval_orbitals", RowCount::function, 1},
    // The tables of the rows. The coefficients of the angular polynomials are integers.
    RowRounding{"d², times -α, of all three factors", "tabulate", RowCount::argument, 2},
    RowRounding{"exponentials of three factors", "tabulate", RowCount::once, 6},
    RowRounding{"weight w = c times N", "add_function", RowCount::once, 1},
    RowRounding{"a multiple of the radial, but nearly", "add_function", RowCount::once,
                rows_multiple / rows_unit},
    RowRounding{"the product in that comparison", "add_function", RowCount::once, 1},
    RowRounding{"ratio times integer, times C", "add_function, add_coefficients", RowCount::once, 2},
    RowRounding{"sum over the functions of a radial", "add_coefficients", RowCount::multiple, 1},
    // The kernel of the rows.
    RowRounding{"w times both factors across", "multiply_factors", RowCount::once, 2},
    RowRounding{"times the factor along", "evaluate_radial", RowCount::once, 1},
    RowRounding{"sum over terms", "evaluate_radial", RowCount::primitive, 1},
    RowRounding{"powers, in all", "multiply_out, evaluate_radial", RowCount::once, shell_max},
    RowRounding{"coefficient times powers across", "sum_monomials", RowCount::once, 1},
    RowRounding{"sum over the monomials of a power", "sum_monomials", RowCount::once,
                shell_function_count(shell_max)},
    RowRounding{"collapsed coefficient times row function", "evaluate_group", RowCount::once, 1},
    RowRounding{"sum over row functions", "evaluate_group", RowCount::row_function, 1},
    RowRounding{"slack", "", RowCount::once, 19},
};

/// What the entries of a table with such a count add up to.
constexpr double rows_units(std::span<const RowRounding> table, RowCount count) {
  double sum = 0.0;
  for (const RowRounding& entry : table) {
    sum += entry.count == count ? entry.units : 0.0;
  }
  return sum;
}

static_assert(rows_units(rows_roundings, RowCount::argument) == 6.0 &&
                  rows_units(rows_roundings, RowCount::once) == 100.0 &&
                  rows_units(rows_roundings, RowCount::primitive) == 2.0 &&
                  rows_units(rows_roundings, RowCount::multiple) == 1.0 &&
                  rows_units(rows_roundings, RowCount::function) == 1.0 &&
                  rows_units(rows_roundings, RowCount::row_function) == 1.0,
              "as the text says");

// n counts the functions that a tile has, though the exact sweep adds up all: see 5. The division that gives
// the ratio of a multiple costs nothing, since its result is used both to compare and to multiply; exponents
// of multiples are equal to the bit. At most as many pairs of powers across as a shell has functions add up
// to shell_max or less.
//
// 3. With a <= b therefore |error of φ_o| <= ε Σ_f |C_fo| V_f, where ε = (6 b + 100 + 2 P + n + F + g) u.
// A piece of a row is weighed by tiles, with b = 48: then the kernel takes for V_f the sum over powers of
// what they come to at most in a tile (`peaks`), in any of the rows that are weighed together. Or by points:
// then each point has a bound of its own, from what the terms come to there with all weights taken positive,
// and b = 746, beyond which an exponential is 0 or a few 2^-1074 in both sweeps, which 4 counts. Bounds are
// evaluated in doubles themselves, and errors of errors are left out: the margin is above both, as long as
// fewer than 10^8 numbers are added up.

inline constexpr double rows_margin = 1.0625;
inline constexpr double rows_argument_max[] = {48.0, exponential_zero_limit};  // by RowWeighing

/// ε without n and g, and what each of these adds.
constexpr double rows_rounding(double argument_max, double term_max, double function_max) {
  return rows_margin * rows_unit *
         (rows_units(rows_roundings, RowCount::argument) * argument_max +
          rows_units(rows_roundings, RowCount::once) +
          rows_units(rows_roundings, RowCount::primitive) * term_max +
          rows_units(rows_roundings, RowCount::multiple) * function_max);
}
inline constexpr double rows_rounding_of_summand = rows_margin * rows_unit;

// 4. The tail. By tiles, for a term with a > 48 the bound lacks (6 a - 6·48) u: from a = 746 on both sweeps
// have nothing of it to any purpose, below that it is at most 2^-40 of the term. Since r^l exp(-α r²) falls
// from α r² = l/2 on, the term is smaller than at a = 48, where no offset is above sqrt(48 / α). By points it
// lacks nothing. Terms that the rows do not evaluate at all, as they are out of reach (6), come to less than
// rows_negligible each. Both are added up over all terms, near or far; a term is here one of a radial, with
// all functions that share it, and with |C| or the length of 7. An exponential that underflows is off by
// 2^-1074: with all that it may be multiplied by (1e80 for an orbital, 1e110 with the root of n|ε|; see
// rows_is_ordinary and offset_max) that is far below what is negligible. By tiles no value of an orbital
// below 10^-19 is sure, as the tail alone is more than 10^-7 of it. By points nothing is known where V, over
// all orbitals, comes to less than rows_least. So a bound there is at least ε rows_least, a sure value above
// 10^7 of that, which is 10^-106, and its square does not underflow. What underflows in a sum over orbitals
// is below Δ² in any case.

inline constexpr double rows_tail = 0x1p-40;
inline constexpr double rows_negligible[] = {1e-26, 1e-120};  // by RowWeighing
inline constexpr double rows_least = 1e-100;
static_assert(rows_units(rows_roundings, RowCount::argument) * exponential_zero_limit * rows_unit <=
              rows_tail);
static_assert(shell_max <= 2.0 * rows_argument_max[row_by_tiles] && rows_negligible[row_by_tiles] < 1e-3);

/// What a term adds to the tail. magnitude(across, along): what it comes to at most, its exponential aside,
/// where the offsets are at most so large.
template <class Magnitude>
double rows_tail_of(RowWeighing weighing, double exponent, Magnitude magnitude) {
  const double argument = rows_argument_max[weighing], far = std::sqrt(argument / exponent);
  return (weighing == row_by_tiles ? rows_tail * std::exp(-argument) * magnitude(far, far) : 0.0) +
         rows_negligible[weighing];
}

// 5. What is left out. A tile leaves out radials that come to next to nothing in it. All of their V enters
// the bound twice: once because it is lacking in the rows, and once for its rounding in the exact sweep. For
// adding t to a double s costs at most |t|, since s itself would be a result, and the exact sweep adds its
// functions one after another; so these do not count in n. The same holds for the tail. For an orbital
// neither has a margin: a value is sure only if its tolerance is below 10^-7, so that less than 5·10^-8 of
// it is left out, and what roundings change in that is nothing against the margin of ε. In sums all has that
// of 7.
//
// A radial is left out where its share of a tile's total is below `cut` times ε: the more, the less there is
// to add up, but the more values are in doubt. Where each orbital has a bound of its own, the total is made
// of the largest coefficients of any of them, and some orbitals come to much less.
//
// By points, the part that a radial has of the total is taken at the point where it is largest, for each
// norm by itself, and so much of the total of any point counts as left out there. A radial whose peak in the
// tile is below `cut` times ε of the lowest total so far is not even evaluated: its part is taken as that
// peak by that total, which is no less than its part at any point, since totals only grow. It is missing in
// the totals then, and needs no rounding there, as all of it is left out.

inline constexpr double rows_cut = 4.0, rows_cut_of_many = 0x1p-8;

// 6. The reach. From some distance on, a term comes to less than rows_negligible: no offset is above r, and
// r^l exp(-α r²) falls from r² = l / (2α) on. A piece leaves out the terms that are so far from all its
// points, in all rows that are weighed together: the least distance is made of those along each axis. Terms
// are in the order of their reach by points; that by tiles is raised to no less than the one before, which
// only keeps more.

/// The square of that distance; infinite if there is none in sight.
template <class Magnitude>
double rows_reach(RowWeighing weighing, double exponent, Magnitude magnitude) {
  const auto is_out = [&](double distance2) {
    const double distance = std::sqrt(distance2);
    return std::exp(-exponent * distance2) * magnitude(distance, distance) <= rows_negligible[weighing];
  };
  // Where the exponential alone does, few steps are left.
  double distance2 = -std::log(rows_negligible[weighing]) / exponent;
  for (int step = 0; step < 50 && !is_out(distance2); ++step) {
    distance2 *= 1.1;
  }
  return is_out(distance2) ? distance2 : HUGE_VAL;
}

// 7. Sums over orbitals, Σ w_o φ_o² with weights w_o >= 0. Let Δ be the bound of 3 to 6 with the length of
// the vector of √w_o C_fo over the orbitals in place of |C_fo|: by the triangle inequality the vector of the
// errors of all √w_o φ_o is not longer. With s from the rows, the exact sweep's sum differs by at most 2 √s Δ
// + Δ² (below, 3 in place of 1 is slack) and by the roundings of both sums. Occupations n_o weigh the
// density, n_o |ε_o| the numerator of the potential. The relative tolerance of a quotient is the sum of both,
// within the margin for what is sure. By tiles the bound is the same for all points of a tile, and its
// smallest s gives a tolerance that holds for all; if that is low enough they all get it, else each that of
// its own s. By points each gets that of its own bound and s. Doubling for pairs of electrons is exact.

inline constexpr std::array rows_sum_roundings = {
    RowRounding{"square", "eval_square", RowCount::once, 1},
    RowRounding{"weight times square", "OccupiedSums::add", RowCount::once, 1},
    RowRounding{"sum over orbitals", "OccupiedSums::add", RowCount::summed_orbital, 1},
    RowRounding{"quotient", "eval_potential", RowCount::once, 1},
    RowRounding{"slack", "", RowCount::once, 1},
};

/// Both sweeps' roundings of a sum over `count` orbitals: (2 m + 8) u.
[[gnu::always_inline]] constexpr double rows_rounding_of_sum(unsigned count) {
  constexpr double once = rows_units(rows_sum_roundings, RowCount::once);
  constexpr double each = rows_units(rows_sum_roundings, RowCount::summed_orbital);
  return 2.0 * (each * count + once) * rows_unit;
}

/// Relative tolerance of Σ w_o φ_o² over `count` orbitals with the bound Δ; infinite if the sum is
/// 0.
[[gnu::always_inline]] inline double rows_sum_tolerance(double bound, double sum, unsigned count) {
  const double relative = rows_margin * bound / std::sqrt(sum);
  return (2.0 + 3.0 * relative) * relative + rows_rounding_of_sum(count);
}

[[gnu::always_inline]] inline double rows_quotient_tolerance(double numerator, double denominator) {
  return rows_margin * (numerator + denominator);
}

/// Relative tolerance of φ² where that of φ is `relative`.
template <class Real>
[[gnu::always_inline]] inline Real rows_square_tolerance(const Real& relative) {
  return (2.0 + 3.0 * relative) * relative + rows_rounding_of_sum(0);
}

/// Whether a coefficient, weight or energy is so small that products of them are finite; what is not ordinary
/// is left to the exact sweep.
inline bool rows_is_ordinary(double number) { return std::fabs(number) <= 1e30; }
