#pragma once

#include "app/field/point/angular.hpp"
#include "app/field/point/norm.hpp"
#include "app/model/molecule.hpp"

// One component of a shell at one point: a normalised Gaussian primitive is normalization × exp(-α r²) ×
// angular factor, r relative to the centre. Which factors a shell has is the business of the modules above.

/// The value of a primitive from its parts, multiplied in this order.
template <class Real>
Real prim_value(const Real& norm, const Real& exponential, const Real& angular) {
  return norm * exponential * angular;
}

/// x, y and z of a point relative to a centre, bohr.
template <class Real>
Vector<Real> prim_offset(const Vector<Real>& point, const double* centre) {
  return {point[0] - centre[0], point[1] - centre[1], point[2] - centre[2]};
}

/// Square of the distance, bohr²: accumulated in the order of the axes.
template <class Real>
Real prim_r2(const Vector<Real>& offset) {
  return offset[0] * offset[0] + offset[1] * offset[1] + offset[2] * offset[2];
}

/// exp(-α r²) of primitive `i` at the point.
double prim_fce_exp(const BasisFunction* function, unsigned i, const double* point);

/// Value of primitive `i` with the given angular factor in place of the function's own.
template <class Angular>
double prim_with(const BasisFunction* function, unsigned i, const double* point, const Angular& angular) {
  const Vector<double> offset = prim_offset<double>({point[0], point[1], point[2]}, function->atom->coord);
  return prim_value(norm_fce(function, i), prim_fce_exp(function, i, point), angular(offset));
}

/// The same with the factor of the function's component, as angular_select takes it; 0.0 for a component out
/// of range.
template <class Factors>
double prim_component(const Factors& factors, const BasisFunction* function, unsigned i,
                      const double* point) {
  double value = 0.0;
  angular_select(factors, function->component,
                 [&](const auto& angular) { value = prim_with(function, i, point, angular); });
  return value;
}
