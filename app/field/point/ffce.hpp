#pragma once

#include "app/field/point/angular.hpp"
#include "app/model/molecule.hpp"

// f shells: ten Cartesian or seven pure functions.

inline constexpr auto f7_z3r2z = [](const auto& r) {
  const auto& [x, y, z] = r;
  return 2.0 * cubed(z) - 3.0 * (x * x) * z - 3.0 * (y * y) * z;
};
// x(4z² - x² - y²), and the same with x and y exchanged.
template <std::size_t Axis>
inline constexpr auto f7_z2xr2x = [](const auto& r) {
  const auto &a = r[Axis], &b = r[1 - Axis], &z = r[2];
  return 4.0 * (z * z) * a - cubed(a) - b * b * a;
};
inline constexpr auto f7_x2zy2z = [](const auto& r) {
  const auto& [x, y, z] = r;
  return z * (x * x - y * y);
};
inline constexpr AxisProduct<3> f7_xyz = axis_product<3>("xyz");
inline constexpr auto f7_x3y2x = [](const auto& r) {
  const auto& [x, y, z] = r;
  return cubed(x) - 3.0 * x * (y * y);
};
inline constexpr auto f7_x2yy3 = [](const auto& r) {
  const auto& [x, y, z] = r;
  return 3.0 * (x * x) * y - cubed(y);
};

/// Angular factors of the pure functions with m = 0, 1, -1, 2, -2, 3, -3.
inline constexpr std::tuple f7_factors = {f7_z3r2z, f7_z2xr2x<0>, f7_z2xr2x<1>, f7_x2zy2z,
                                          f7_xyz,   f7_x3y2x,     f7_x2yy3};
static_assert(std::tuple_size_v<decltype(f7_factors)> == shell_function_count(-3));

/// Axis numbers of a Cartesian function (0 x, 1 y, 2 z); untouched for a component out of range.
void ffce_f10_id(const BasisFunction* function, unsigned* a, unsigned* b, unsigned* c);

/// Value of primitive `i` at the point (x, y, z in bohr), bohr^(-3/2); 0.0 for a component out of range.
double ffce_f10(const BasisFunction* function, unsigned i, const double* point);
double ffce_f7(const BasisFunction* function, unsigned i, const double* point);

/// The same with the polynomial of one component. ffce_f7_z2xr2x serves components 1 and 2,
/// ffce_f7_x3y2x 5 and 6; for any other component they give 0.0.
double ffce_f7_z3r2z(const BasisFunction* function, unsigned i, const double* point);
double ffce_f7_z2xr2x(const BasisFunction* function, unsigned i, const double* point);
double ffce_f7_x2zy2z(const BasisFunction* function, unsigned i, const double* point);
double ffce_f7_xyz(const BasisFunction* function, unsigned i, const double* point);
double ffce_f7_x3y2x(const BasisFunction* function, unsigned i, const double* point);
