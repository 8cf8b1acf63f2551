#pragma once

#include "app/model/molecule.hpp"

// Normalization constants of Gaussian primitives, bohr^(-3/2 - l) for angular momentum l.
// N = (M·α^(2l+3) / (D·π³))^(1/4), for s N = (2α/π)^(3/4).

/// Constant of primitive `i` of the function, by its type and component; 1.0 for an unknown shell type.
double norm_fce(const BasisFunction* function, unsigned i);

/// Constants of each kind of shell for an exponent in bohr^-2. A component out of range gets the constant
/// of the nearest one in a Cartesian shell and 0.0 in a pure one.
double norm_fce_s(double exponent);
double norm_fce_p(double exponent);
double norm_fce_d6(int component, double exponent);
double norm_fce_d5(int component, double exponent);
double norm_fce_f10(int component, double exponent);
double norm_fce_f7(int component, double exponent);
double norm_fce_g15(int component, double exponent);
double norm_fce_g9(int component, double exponent);
