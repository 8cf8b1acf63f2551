#pragma once

#include <cmath>
#include <cstddef>
#include <limits>

#include "app/model/molecule.hpp"
#include "app/model/occupation.hpp"

// Fields from the wavefunction at a point. The formulas are templates over the number type: one double here,
// packs of points in both sweeps. The functions for one point are the definition of the fields: the sweeps
// are compared with them, and the program has no other use for them.

/// Sums over primitives, from 0.0 in index order, for functions that share their contraction coefficients:
/// sums[f] = Σ coefficients[i] · primitive(i, f) for i < count.
template <std::size_t Functions, class Real, class Primitive>
inline void eval_contractions(const double* coefficients, unsigned count, Primitive primitive,
                              Real (&sums)[Functions]) {
  for (Real& sum : sums) {
    sum = 0.0;
  }
  for (unsigned i = 0; i < count; ++i) {
    const Real coefficient = coefficients[i];
    for (std::size_t f = 0; f < Functions; ++f) {
      sums[f] = sums[f] + coefficient * primitive(i, f);
    }
  }
}

/// Sums over basis functions, from 0.0 in the order given, for a few orbitals at a few points at once:
/// sums[o][p] = Σ_k coefficients[stride·f + o] · value(f, p) with f = function(k), k < count.
template <unsigned Orbitals, unsigned Points, class Real, class Stride, class Function, class Value>
inline void eval_orbitals(const double* coefficients, Stride stride, unsigned count, Function function,
                          Value value, Real (&sums)[Orbitals][Points]) {
  Real sum[Orbitals][Points];  // of its own, so that it stays in registers
  for (unsigned o = 0; o < Orbitals; ++o) {
    for (unsigned p = 0; p < Points; ++p) {
      sum[o][p] = 0.0;
    }
  }
  for (unsigned k = 0; k < count; ++k) {
    const std::size_t f = function(k);
    for (unsigned o = 0; o < Orbitals; ++o) {
      const Real coefficient = coefficients[stride * f + o];
      for (unsigned p = 0; p < Points; ++p) {
        sum[o][p] = sum[o][p] + coefficient * value(f, p);
      }
    }
  }
  for (unsigned o = 0; o < Orbitals; ++o) {
    for (unsigned p = 0; p < Points; ++p) {
      sums[o][p] = sum[o][p];
    }
  }
}

/// Density of an orbital with the given value.
template <class Real>
Real eval_square(const Real& value) {
  return value * value;
}

/// Sums over the occupied orbitals, in order: Σ n|φ|² and Σ n|ε||φ|², n the weight of each.
template <class Real>
struct OccupiedSums {
  Real density = 0.0;
  Real weighted = 0.0;

  void add(const Real& value, double weight, double energy_weight) {
    const Real orbital_density = eval_square(value);
    density = density + weight * orbital_density;
    weighted = weighted + energy_weight * orbital_density;
  }
};

/// How an orbital weighs in the average local ionization potential: n|ε|, hartree.
inline double eval_energy_weight(const WeightedOrbital& occupied) {
  return occupied.weight * std::fabs(occupied.orbital->energy);
}

/// Total density of the sums: those over pairs count twice.
template <class Real>
Real eval_total(const OccupiedSums<Real>& sums, bool is_restricted) {
  return is_restricted ? sums.density + sums.density : sums.density;
}

/// Where nothing is occupied: a NaN without a sign, which that of 0/0 may have.
inline constexpr double eval_undefined = std::numeric_limits<double>::quiet_NaN();

/// Average local ionization potential Σ n|ε||φ|² / Σ n|φ|², hartree (P. Sjoberg, J. S. Murray, T. Brinck,
/// P. Politzer, Can. J. Chem. 68, 1440, 1990). NaN where the density is 0.
template <class Real>
Real eval_potential(const OccupiedSums<Real>& sums, bool has_no_pairs) {
  return has_no_pairs ? Real(eval_undefined) : sums.weighted / sums.density;
}

/// Values of all basis functions at `point` (x, y, z in bohr) into `values` (basis_count doubles).
void eval_bfce_vec(const Molecule* molecule, const double* point, double* values);

/// Value of an orbital from the `n` basis function values, bohr^(-3/2); 0.0 if n is 0.
double eval_mo(const Orbital* orbital, const double* values, unsigned n);

/// Density of an orbital: its value squared, bohr^-3.
double eval_mo_den(const Orbital* orbital, const double* values, unsigned n);

/// Total electron density, bohr^-3.
double eval_den(const Molecule* molecule, const double* values);

/// Total electron density (bohr^-3) and average local ionization potential (hartree); the potential is NaN
/// where the density is 0.
void eval_orva(const Molecule* molecule, const double* values, double* density, double* orva);
