#include "app/field/point/component.hpp"

#include "app/field/point/exponential.hpp"

double prim_fce_exp(const BasisFunction* function, unsigned i, const double* point) {
  const Vector<double> offset = prim_offset<double>({point[0], point[1], point[2]}, function->atom->coord);
  return exponential(prim_r2(offset) * -function->exponents[i]);
}
