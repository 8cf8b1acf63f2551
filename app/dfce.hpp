#pragma once

#include "angular.hpp"
#include "memory.hpp"

// d shells: six Cartesian or five pure functions.

inline constexpr auto d5_zzrr = [](const auto& r) {
  const auto& [x, y, z] = r;
  return 2.0 * (z * z) - x * x - y * y;
};
inline constexpr auto d5_xxyy = [](const auto& r) {
  const auto& [x, y, z] = r;
  return x * x - y * y;
};

/// Angular factors in the order of the components: Cartesian xx, yy, zz, xy, xz, yz, and pure with
/// m = 0, 1, -1, 2, -2.
inline constexpr std::tuple d6_factors = {AxisProduct<2>{{0, 0}}, AxisProduct<2>{{1, 1}},
                                          AxisProduct<2>{{2, 2}}, AxisProduct<2>{{0, 1}},
                                          AxisProduct<2>{{0, 2}}, AxisProduct<2>{{1, 2}}};
inline constexpr std::tuple d5_factors = {d5_zzrr, AxisProduct<2>{{0, 2}}, AxisProduct<2>{{1, 2}}, d5_xxyy,
                                          AxisProduct<2>{{0, 1}}};
static_assert(std::tuple_size_v<decltype(d6_factors)> == 6 && std::tuple_size_v<decltype(d5_factors)> == 5);

/// Axis numbers of a Cartesian d function (0 x, 1 y, 2 z); untouched for a component out of range.
void dfce_d6_id(const BasisFunction* function, unsigned* a, unsigned* b);

/// Value of primitive `i` at the point (x, y, z in bohr), bohr^(-3/2); 0.0 for a component out of range.
double dfce_d6(const BasisFunction* function, unsigned i, const double* point);
double dfce_d5(const BasisFunction* function, unsigned i, const double* point);

/// The same with the polynomial of one component, or 0.0 where dfce_d5_xy does not have the component.
double dfce_d5_zzrr(const BasisFunction* function, unsigned i, const double* point);
double dfce_d5_xy(const BasisFunction* function, unsigned i, const double* point);
double dfce_d5_xxyy(const BasisFunction* function, unsigned i, const double* point);
