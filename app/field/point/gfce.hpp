#pragma once

#include "app/field/point/angular.hpp"
#include "app/model/molecule.hpp"

// g shells: fifteen Cartesian or nine pure functions.

inline constexpr auto g9_z4z2r2r4 = [](const auto& r) {
  const auto& [x, y, z] = r;
  const auto xx = x * x, yy = y * y, zz = z * z;
  return 8.0 * (zz * zz) - 24.0 * zz * (xx + yy) + 3.0 * (xx * xx) + 3.0 * (yy * yy) + 6.0 * xx * yy;
};
// xz(4z² - 3x² - 3y²), and the same with y in front.
template <std::size_t Axis>
inline constexpr auto g9_z3xr2xz = [](const auto& r) {
  const auto& [x, y, z] = r;
  return r[Axis] * z * (4.0 * (z * z) - 3.0 * (x * x) - 3.0 * (y * y));
};
inline constexpr auto g9_x2y2z2 = [](const auto& r) {
  const auto& [x, y, z] = r;
  const auto xx = x * x, yy = y * y;
  return yy * yy - xx * xx + 6.0 * (z * z) * (xx - yy);
};
inline constexpr auto g9_xyz2xyr2 = [](const auto& r) {
  const auto& [x, y, z] = r;
  return x * y * (6.0 * (z * z) - x * x - y * y);
};
inline constexpr auto g9_x3zy2xz = [](const auto& r) {
  const auto& [x, y, z] = r;
  return cubed(x) * z - 3.0 * x * (y * y) * z;
};
inline constexpr auto g9_x2yzy3z = [](const auto& r) {
  const auto& [x, y, z] = r;
  return 3.0 * (x * x) * y * z - cubed(y) * z;
};
inline constexpr auto g9_x4y4x2y2 = [](const auto& r) {
  const auto& [x, y, z] = r;
  const auto xx = x * x, yy = y * y;
  return xx * xx + yy * yy - 6.0 * xx * yy;
};
inline constexpr auto g9_x3yy3x = [](const auto& r) {
  const auto& [x, y, z] = r;
  return cubed(x) * y - x * cubed(y);
};

/// Angular factors of the pure functions with m = 0, 1, -1, 2, -2, 3, -3, 4, -4.
inline constexpr std::tuple g9_factors = {g9_z4z2r2r4, g9_z3xr2xz<0>, g9_z3xr2xz<1>, g9_x2y2z2, g9_xyz2xyr2,
                                          g9_x3zy2xz,  g9_x2yzy3z,    g9_x4y4x2y2,   g9_x3yy3x};
static_assert(std::tuple_size_v<decltype(g9_factors)> == shell_function_count(-4));

/// Powers of x, y and z of a Cartesian function; untouched for a component out of range.
void gfce_g15_id(const BasisFunction* function, unsigned* lx, unsigned* ly, unsigned* lz);

/// Value of primitive `i` at the point (x, y, z in bohr), bohr^(-3/2); 0.0 for a component out of range.
double gfce_g15(const BasisFunction* function, unsigned i, const double* point);
double gfce_g9(const BasisFunction* function, unsigned i, const double* point);

/// The same with the polynomial of one component.
double gfce_g9_z4z2r2r4(const BasisFunction* function, unsigned i, const double* point);
double gfce_g9_z3xr2xz(const BasisFunction* function, unsigned i, const double* point);
double gfce_g9_z3yr2yz(const BasisFunction* function, unsigned i, const double* point);
double gfce_g9_x2y2z2(const BasisFunction* function, unsigned i, const double* point);
double gfce_g9_xyz2xyr2(const BasisFunction* function, unsigned i, const double* point);
double gfce_g9_x3zy2xz(const BasisFunction* function, unsigned i, const double* point);
double gfce_g9_x2yzy3z(const BasisFunction* function, unsigned i, const double* point);
double gfce_g9_x4y4x2y2(const BasisFunction* function, unsigned i, const double* point);
double gfce_g9_x3yy3x(const BasisFunction* function, unsigned i, const double* point);
