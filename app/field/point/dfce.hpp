#pragma once

#include "app/field/point/angular.hpp"
#include "app/model/molecule.hpp"

// d shells: six Cartesian or five pure functions.

inline constexpr auto d5_zzrr = [](const auto& r) {
  const auto& [x, y, z] = r;
  return 2.0 * (z * z) - x * x - y * y;
};
inline constexpr auto d5_xxyy = [](const auto& r) {
  const auto& [x, y, z] = r;
  return x * x - y * y;
};

/// Angular factors of the pure functions with m = 0, 1, -1, 2, -2.
inline constexpr std::tuple d5_factors = {d5_zzrr, axis_product<2>("xz"), axis_product<2>("yz"), d5_xxyy,
                                          axis_product<2>("xy")};
static_assert(std::tuple_size_v<decltype(d5_factors)> == shell_function_count(-2));

/// Axis numbers of a Cartesian function (0 x, 1 y, 2 z); untouched for a component out of range.
void dfce_d6_id(const BasisFunction* function, unsigned* a, unsigned* b);

/// Value of primitive `i` at the point (x, y, z in bohr), bohr^(-3/2); 0.0 for a component out of range.
double dfce_d6(const BasisFunction* function, unsigned i, const double* point);
double dfce_d5(const BasisFunction* function, unsigned i, const double* point);

/// The same with the polynomial of one component, or 0.0 where dfce_d5_xy does not have the component.
double dfce_d5_zzrr(const BasisFunction* function, unsigned i, const double* point);
double dfce_d5_xy(const BasisFunction* function, unsigned i, const double* point);
double dfce_d5_xxyy(const BasisFunction* function, unsigned i, const double* point);
