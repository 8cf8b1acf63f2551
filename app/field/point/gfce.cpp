#include "app/field/point/gfce.hpp"

#include <algorithm>

#include "app/field/point/component.hpp"

void gfce_g15_id(const BasisFunction* function, unsigned* lx, unsigned* ly, unsigned* lz) {
  angular_select(cartesian_factors<4>, function->component, [&](const AxisProduct<4>& factor) {
    const auto power = [&](int axis) { return static_cast<unsigned>(std::ranges::count(factor.axes, axis)); };
    *lx = power(0);
    *ly = power(1);
    *lz = power(2);
  });
}

double gfce_g15(const BasisFunction* function, unsigned i, const double* point) {
  return prim_component(cartesian_factors<4>, function, i, point);
}

double gfce_g9(const BasisFunction* function, unsigned i, const double* point) {
  return prim_component(g9_factors, function, i, point);
}

double gfce_g9_z4z2r2r4(const BasisFunction* function, unsigned i, const double* point) {
  return prim_with(function, i, point, g9_z4z2r2r4);
}

double gfce_g9_z3xr2xz(const BasisFunction* function, unsigned i, const double* point) {
  return prim_with(function, i, point, g9_z3xr2xz<0>);
}

double gfce_g9_z3yr2yz(const BasisFunction* function, unsigned i, const double* point) {
  return prim_with(function, i, point, g9_z3xr2xz<1>);
}

double gfce_g9_x2y2z2(const BasisFunction* function, unsigned i, const double* point) {
  return prim_with(function, i, point, g9_x2y2z2);
}

double gfce_g9_xyz2xyr2(const BasisFunction* function, unsigned i, const double* point) {
  return prim_with(function, i, point, g9_xyz2xyr2);
}

double gfce_g9_x3zy2xz(const BasisFunction* function, unsigned i, const double* point) {
  return prim_with(function, i, point, g9_x3zy2xz);
}

double gfce_g9_x2yzy3z(const BasisFunction* function, unsigned i, const double* point) {
  return prim_with(function, i, point, g9_x2yzy3z);
}

double gfce_g9_x4y4x2y2(const BasisFunction* function, unsigned i, const double* point) {
  return prim_with(function, i, point, g9_x4y4x2y2);
}

double gfce_g9_x3yy3x(const BasisFunction* function, unsigned i, const double* point) {
  return prim_with(function, i, point, g9_x3yy3x);
}
