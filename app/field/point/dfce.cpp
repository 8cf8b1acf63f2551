#include "app/field/point/dfce.hpp"

#include "app/field/point/component.hpp"

void dfce_d6_id(const BasisFunction* function, unsigned* a, unsigned* b) {
  angular_select(cartesian_factors<2>, function->component, [&](const AxisProduct<2>& factor) {
    *a = factor.axes[0];
    *b = factor.axes[1];
  });
}

double dfce_d6(const BasisFunction* function, unsigned i, const double* point) {
  return prim_component(cartesian_factors<2>, function, i, point);
}

double dfce_d5(const BasisFunction* function, unsigned i, const double* point) {
  return prim_component(d5_factors, function, i, point);
}

double dfce_d5_zzrr(const BasisFunction* function, unsigned i, const double* point) {
  return prim_with(function, i, point, d5_zzrr);
}

double dfce_d5_xy(const BasisFunction* function, unsigned i, const double* point) {
  const short component = function->component;
  return component == 1 || component == 2 || component == 4 ? dfce_d5(function, i, point) : 0.0;
}

double dfce_d5_xxyy(const BasisFunction* function, unsigned i, const double* point) {
  return prim_with(function, i, point, d5_xxyy);
}
