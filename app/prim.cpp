#include "prim.hpp"

#include "exponential.hpp"

double prim_fce_exp(const BasisFunction* function, unsigned i, const double* point) {
  const Vector<double> offset = prim_offset<double>({point[0], point[1], point[2]}, function->atom->coord);
  return exponential(prim_r2(offset) * -function->exponents[i]);
}

double prim_of_type(int type, const BasisFunction* function, unsigned i, const double* point) {
  double value = 0.0;
  prim_shell(type, [&](const auto& factors) {
    angular_select(factors, type == 0 ? 0 : function->component,
                   [&](const auto& angular) { value = prim_with(function, i, point, angular); });
  });
  return value;
}

double prim_fce(const BasisFunction* function, unsigned i, const double* point) {
  return prim_of_type(function->type, function, i, point);
}

double prim_fce_p(const BasisFunction* function, unsigned i, const double* point) {
  return prim_of_type(1, function, i, point);
}
