#pragma once

#include "dfce.hpp"
#include "ffce.hpp"
#include "gfce.hpp"
#include "memory.hpp"
#include "norm.hpp"

// Normalised Gaussian primitives: normalization × exp(-α r²) × angular factor, r relative to the centre.

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

inline constexpr std::tuple s_factors = {[]<class Real>(const Vector<Real>&) { return Real(1.0); }};
inline constexpr std::tuple p_factors = {AxisProduct<1>{{0}}, AxisProduct<1>{{1}}, AxisProduct<1>{{2}}};

/// Calls `use` with the tuple of the angular factors of all components of a shell; each is a callable from a
/// Vector<Real> to a Real. Not called for a shell type that does not exist: its functions are 0 everywhere.
template <class Use>
void prim_shell(int type, Use use) {
  switch (type) {
    case 0:
      return use(s_factors);
    case 1:
      return use(p_factors);
    case 2:
      return use(d6_factors);
    case 3:
      return use(f10_factors);
    case 4:
      return use(g15_factors);
    case -2:
      return use(d5_factors);
    case -3:
      return use(f7_factors);
    case -4:
      return use(g9_factors);
    default:
      return;
  }
}

/// Value of primitive `i` of the function at `point` (x, y, z in bohr), bohr^(-3/2).
/// An unknown shell type or component gives 0.0.
double prim_fce(const BasisFunction* function, unsigned i, const double* point);

/// The same with the angular factor that a shell of the given type has for the function's component.
double prim_of_type(int type, const BasisFunction* function, unsigned i, const double* point);

/// exp(-α r²) of primitive `i` at the point.
double prim_fce_exp(const BasisFunction* function, unsigned i, const double* point);

/// Value of a primitive of a p function.
double prim_fce_p(const BasisFunction* function, unsigned i, const double* point);

/// Value of primitive `i` with the given angular factor in place of the function's own.
template <class Angular>
double prim_with(const BasisFunction* function, unsigned i, const double* point, const Angular& angular) {
  const Vector<double> offset = prim_offset<double>({point[0], point[1], point[2]}, function->atom->coord);
  return prim_value(norm_fce(function, i), prim_fce_exp(function, i, point), angular(offset));
}
