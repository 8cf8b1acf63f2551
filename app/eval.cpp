#include "eval.hpp"

#include <cmath>

#include "prim.hpp"
#include "setup.hpp"

Occupation eval_occupation(const Molecule* molecule) {
  if (inp_rest_scf != 0) {
    return {true, {{molecule->alpha_orbitals, molecule->electron_count / 2}, {nullptr, 0}}};
  }
  return {false,
          {{molecule->alpha_orbitals, molecule->alpha_electron_count},
           {molecule->beta_orbitals, molecule->beta_electron_count}}};
}

void eval_bfce_vec(const Molecule* molecule, const double* point, double* values) {
  for (unsigned b = 0; b < molecule->basis_count; ++b) {
    const BasisFunction* function = &molecule->basis[b];
    double sum[1];
    eval_contractions(
        function->coefficients, function->primitive_count,
        [&](unsigned i, std::size_t) { return prim_fce(function, i, point); }, sum);
    values[b] = sum[0];
  }
}

double eval_mo(const Orbital* orbital, const double* values, unsigned n) {
  double sums[1][1];
  eval_orbitals(
      orbital->coefficients, n, [](unsigned k) { return k; },
      [&](std::size_t b, unsigned) { return values[b]; }, sums);
  return sums[0][0];
}

double eval_mo_den(const Orbital* orbital, const double* values, unsigned n) {
  return eval_square(eval_mo(orbital, values, n));
}

namespace {

OccupiedSums<double> occupied_sums(const Molecule* molecule, const double* values,
                                   const Occupation& occupation) {
  OccupiedSums<double> sums;
  for (const OccupiedOrbitals& spin : occupation.spin) {
    for (unsigned i = 0; i < spin.count; ++i) {
      const Orbital* orbital = &spin.orbitals[i];
      sums.add(eval_mo(orbital, values, molecule->basis_count), std::fabs(orbital->energy));
    }
  }
  return sums;
}

}  // namespace

double eval_den(const Molecule* molecule, const double* values) {
  const Occupation occupation = eval_occupation(molecule);
  return eval_total(occupied_sums(molecule, values, occupation), occupation.restricted);
}

void eval_orva(const Molecule* molecule, const double* values, double* density, double* orva) {
  const Occupation occupation = eval_occupation(molecule);
  const OccupiedSums<double> sums = occupied_sums(molecule, values, occupation);
  *density = eval_total(sums, occupation.restricted);
  *orva = eval_potential(sums, occupation.no_pairs());
}
