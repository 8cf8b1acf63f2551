#pragma once

#include "angular.hpp"
#include "memory.hpp"

// g shells: fifteen Cartesian or nine pure functions.

/// Powers of x, y and z of the Cartesian components.
struct Powers {
  unsigned char x, y, z;
};
inline constexpr std::array g15_powers = {Powers{4, 0, 0}, Powers{0, 4, 0}, Powers{0, 0, 4}, Powers{3, 1, 0},
                                          Powers{3, 0, 1}, Powers{1, 3, 0}, Powers{0, 3, 1}, Powers{1, 0, 3},
                                          Powers{0, 1, 3}, Powers{2, 2, 0}, Powers{2, 0, 2}, Powers{0, 2, 2},
                                          Powers{2, 1, 1}, Powers{1, 2, 1}, Powers{1, 1, 2}};
static_assert(g15_powers.size() == 15);

inline constexpr auto g9_z4z2r2r4 = [](const auto& r) {
  const auto& [x, y, z] = r;
  const auto xx = x * x, yy = y * y, zz = z * z;
  return 8.0 * (zz * zz) - 24.0 * zz * (xx + yy) + 3.0 * (xx * xx) + 3.0 * (yy * yy) + 6.0 * xx * yy;
};
inline constexpr auto g9_z3xr2xz = [](const auto& r) {
  const auto& [x, y, z] = r;
  return x * z * (4.0 * (z * z) - 3.0 * (x * x) - 3.0 * (y * y));
};
inline constexpr auto g9_z3yr2yz = [](const auto& r) {
  const auto& [x, y, z] = r;
  return y * z * (4.0 * (z * z) - 3.0 * (x * x) - 3.0 * (y * y));
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

/// The product of four coordinates that the powers stand for: all x first, then y, then z.
constexpr AxisProduct<4> g15_product(const Powers& powers) {
  AxisProduct<4> product{};
  for (unsigned i = 0; i < 4; ++i) {
    product.axes[i] = i < powers.x ? 0 : (i < powers.x + powers.y ? 1 : 2);
  }
  return product;
}

/// Angular factors in the order of the components: Cartesian as in g15_powers, and pure with
/// m = 0, 1, -1, 2, -2, 3, -3, 4, -4.
inline constexpr auto g15_factors =
    std::apply([](const auto&... powers) { return std::tuple{g15_product(powers)...}; }, g15_powers);
inline constexpr std::tuple g9_factors = {g9_z4z2r2r4, g9_z3xr2xz, g9_z3yr2yz,  g9_x2y2z2, g9_xyz2xyr2,
                                          g9_x3zy2xz,  g9_x2yzy3z, g9_x4y4x2y2, g9_x3yy3x};
static_assert(std::tuple_size_v<decltype(g15_factors)> == 15 && std::tuple_size_v<decltype(g9_factors)> == 9);

/// Powers of a Cartesian g function; untouched for a component out of range.
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
