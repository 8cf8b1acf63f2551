#pragma once

#include "app/field/point/component.hpp"
#include "app/field/point/dfce.hpp"
#include "app/field/point/ffce.hpp"
#include "app/field/point/gfce.hpp"
#include "app/model/molecule.hpp"

// Primitives of any shell: which angular factors a shell type has, for both sweeps. The functions for one
// point are part of the definition of the fields, as those of eval.hpp.

/// Calls `use` with the tuple or array of the angular factors of all components of a shell; each is a
/// callable from a Vector<Real> to a Real. Not called for a shell type that does not exist: its functions are
/// 0 everywhere.
template <class Use>
constexpr void prim_shell(int type, Use use) {
  switch (type) {
    case 0:
      return use(cartesian_factors<0>);
    case 1:
      return use(cartesian_factors<1>);
    case 2:
      return use(cartesian_factors<2>);
    case 3:
      return use(cartesian_factors<3>);
    case 4:
      return use(cartesian_factors<4>);
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
/// An unknown shell type or component gives 0.0; an s shell has one function for every component.
double prim_fce(const BasisFunction* function, unsigned i, const double* point);

/// Value of a primitive of a p function.
double prim_fce_p(const BasisFunction* function, unsigned i, const double* point);
