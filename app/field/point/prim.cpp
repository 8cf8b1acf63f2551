#include "app/field/point/prim.hpp"

double prim_fce(const BasisFunction* function, unsigned i, const double* point) {
  double value = 0.0;
  prim_shell(function->type,
             [&](const auto& factors) { value = prim_component(factors, function, i, point); });
  return value;
}

double prim_fce_p(const BasisFunction* function, unsigned i, const double* point) {
  return prim_component(cartesian_factors<1>, function, i, point);
}
