#include "app/field/point/ffce.hpp"

#include "app/field/point/component.hpp"

void ffce_f10_id(const BasisFunction* function, unsigned* a, unsigned* b, unsigned* c) {
  angular_select(cartesian_factors<3>, function->component, [&](const AxisProduct<3>& factor) {
    *a = factor.axes[0];
    *b = factor.axes[1];
    *c = factor.axes[2];
  });
}

double ffce_f10(const BasisFunction* function, unsigned i, const double* point) {
  return prim_component(cartesian_factors<3>, function, i, point);
}

double ffce_f7(const BasisFunction* function, unsigned i, const double* point) {
  return prim_component(f7_factors, function, i, point);
}

double ffce_f7_z3r2z(const BasisFunction* function, unsigned i, const double* point) {
  return prim_with(function, i, point, f7_z3r2z);
}

double ffce_f7_z2xr2x(const BasisFunction* function, unsigned i, const double* point) {
  const short component = function->component;
  return component == 1 || component == 2 ? ffce_f7(function, i, point) : 0.0;
}

double ffce_f7_x2zy2z(const BasisFunction* function, unsigned i, const double* point) {
  return prim_with(function, i, point, f7_x2zy2z);
}

double ffce_f7_xyz(const BasisFunction* function, unsigned i, const double* point) {
  return prim_with(function, i, point, f7_xyz);
}

double ffce_f7_x3y2x(const BasisFunction* function, unsigned i, const double* point) {
  const short component = function->component;
  return component == 5 || component == 6 ? ffce_f7(function, i, point) : 0.0;
}
