#include "app/field/point/eval.hpp"

#include "app/field/point/prim.hpp"

namespace {

OccupiedSums<double> occupied_sums(const Molecule* molecule, const double* values,
                                   const Occupation& occupation) {
  OccupiedSums<double> sums;
  for (const WeightedOrbital& occupied : occupation.orbitals) {
    sums.add(eval_mo(occupied.orbital, values, molecule->basis_count), occupied.weight,
             eval_energy_weight(occupied));
  }
  return sums;
}

}  // namespace

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
      orbital->coefficients, 1U, n, [](unsigned k) { return k; },
      [&](std::size_t b, unsigned) { return values[b]; }, sums);
  return sums[0][0];
}

double eval_mo_den(const Orbital* orbital, const double* values, unsigned n) {
  return eval_square(eval_mo(orbital, values, n));
}

double eval_den(const Molecule* molecule, const double* values) {
  const Occupation occupation = occupation_of(molecule);
  return eval_total(occupied_sums(molecule, values, occupation), occupation.is_restricted);
}

void eval_orva(const Molecule* molecule, const double* values, double* density, double* orva) {
  const Occupation occupation = occupation_of(molecule);
  const OccupiedSums<double> sums = occupied_sums(molecule, values, occupation);
  *density = eval_total(sums, occupation.is_restricted);
  *orva = eval_potential(sums, occupation.has_no_pairs());
}
