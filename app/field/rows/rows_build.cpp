#include "app/field/rows/rows_build.hpp"

#include <algorithm>
#include <cmath>

#include "app/field/point/eval.hpp"
#include "app/field/rows/rows_bound.hpp"
#include "app/field/rows/rows_functions.hpp"

namespace {

// The collapsed coefficients of so many orbitals fit in a second-level cache: 300 KiB for the 400 row
// functions that reach a row of 216 water molecules. Fewer would have the values of row functions read more
// often.
constexpr unsigned chunk_orbitals = 96;

double power_of(double base, unsigned exponent) {
  double power = 1.0;
  for (unsigned i = 0; i < exponent; ++i) {
    power *= base;
  }
  return power;
}

// Keeps the products of norms and their factors within the range of doubles, with room for what underflows.
constexpr double norm_square_min = 1e-280;

class OrbitalBuilder {
 public:
  OrbitalBuilder(const Molecule* molecule, const RowKernel& kernel, std::span<const WeightedOrbital> orbitals,
                 RowTables* tables)
      : molecule_(molecule), kernel_(kernel), orbitals_(orbitals), tables_(*tables) {}

  bool build(std::span<const RowPart> parts) {
    if (!add_orbitals()) {
      return false;
    }
    add_coefficients(parts);
    set_bound();
    return true;
  }

 private:
  // Chunks of nearly equal size, and groups in them.
  bool add_orbitals() {
    const auto count = static_cast<unsigned>(orbitals_.size());
    RowPlan& plan = tables_.plan;
    plan.orbital_count = count;
    plan.chunk_count = (count + chunk_orbitals - 1) / chunk_orbitals;
    const unsigned chunk_max = (count + plan.chunk_count - 1) / plan.chunk_count;
    plan.stride = (chunk_max + kernel_.lanes - 1) / kernel_.lanes * kernel_.lanes;
    const std::size_t size = tables_.monomials.size() * plan.stride;
    tables_.coefficients.resize(size * plan.chunk_count, 0.0);
    const bool has_bounds = plan.field != FieldKind::density_and_potential && count > 1;
    tables_.magnitudes.resize(has_bounds ? tables_.coefficients.size() : 0, 0.0);
    for (const WeightedOrbital& entry : orbitals_) {
      const auto& [orbital, weight] = entry;
      // Of sums with negative terms nothing is known relative to the sum.
      if (!(weight >= 0.0) || !rows_is_ordinary(weight) || !rows_is_ordinary(orbital->energy) ||
          !std::ranges::all_of(std::span(orbital->coefficients, molecule_->basis_count), rows_is_ordinary)) {
        return false;
      }
      tables_.weights.push_back(weight);
      tables_.energy_weights.push_back(eval_energy_weight(entry));
    }
    plan.has_energies =
        std::ranges::any_of(tables_.energy_weights, [](double weight) { return weight != 0.0; });
    for (unsigned c = 0; c < plan.chunk_count; ++c) {
      const auto start_of = [&](std::size_t chunk) {
        return static_cast<unsigned>(chunk * count / plan.chunk_count);
      };
      const unsigned first = start_of(c), end = start_of(c + 1);
      tables_.chunks.push_back({end - first,
                                (end - first + kernel_.tile_orbitals - 1) / kernel_.tile_orbitals,
                                tables_.coefficients.data() + c * size,
                                has_bounds ? tables_.magnitudes.data() + c * size : nullptr,
                                tables_.weights.data() + first, tables_.energy_weights.data() + first});
    }
    plan.chunks = tables_.chunks.data();
    return true;
  }

  // The orbitals' coefficients of monomials, from those of functions.
  void add_coefficients(std::span<const RowPart> parts) {
    const RowPlan& plan = tables_.plan;
    const std::size_t size = tables_.monomials.size() * plan.stride;
    for (const RowPart& part : parts) {
      std::size_t o = 0;
      for (unsigned c = 0; c < plan.chunk_count; ++c) {
        const std::size_t at = c * size + part.monomial * std::size_t{plan.stride};
        for (unsigned k = 0; k < tables_.chunks[c].count; ++k, ++o) {
          const double coefficient = orbitals_[o].orbital->coefficients[part.function];
          tables_.coefficients[at + k] += part.factor * coefficient;
          if (!tables_.magnitudes.empty()) {
            tables_.magnitudes[at + k] += part.magnitude * std::fabs(coefficient);
          }
        }
      }
      double norms[2];
      find_norms(part.function, norms);
      for (unsigned norm = 0; norm < 2; ++norm) {
        tables_.monomials[part.monomial].norms[norm] += part.magnitude * norms[norm];
      }
    }
  }

  // Of a function's coefficients: the length of their vector over all orbitals, with the weights of the
  // density and of the potential; for orbitals of their own, the largest magnitude and nothing.
  void find_norms(unsigned function, double (&norms)[2]) const {
    // A square that underflows is below what the sums start with.
    const auto square_of = [](double weight, double coefficient) {
      const double root = std::sqrt(weight) * coefficient;
      return root * root;
    };
    double largest = 0.0, squares = norm_square_min, weighted_squares = norm_square_min;
    for (std::size_t o = 0; o < orbitals_.size(); ++o) {
      const double coefficient = orbitals_[o].orbital->coefficients[function];
      largest = std::max(largest, std::fabs(coefficient));
      squares += square_of(tables_.weights[o], coefficient);
      weighted_squares += square_of(tables_.energy_weights[o], coefficient);
    }
    const bool is_density = tables_.plan.field == FieldKind::density_and_potential;
    norms[0] = is_density ? std::sqrt(squares) : largest;
    norms[1] = is_density ? std::sqrt(weighted_squares) : 0.0;
  }

  void set_bound() {
    RowPlan& plan = tables_.plan;
    unsigned term_max = 0, function_max = 0;
    for (const RowRadial& radial : tables_.radials) {
      term_max = std::max(term_max, radial.term_count);
      function_max = std::max(function_max, radial.basis_count);
    }
    for (const RowWeighing way : {row_by_tiles, row_by_points}) {
      RowBound& bound = plan.bounds[way];
      bound.rounding = rows_rounding(rows_argument_max[way], term_max, function_max);
      bound.cut = (tables_.magnitudes.empty() ? rows_cut : rows_cut_of_many) * bound.rounding;
    }
    for (const RowRadial& radial : tables_.radials) {
      const std::span terms(tables_.terms.data() + radial.first_term, radial.term_count);
      for (RowTerm& term : terms) {
        const auto of_norm = [&](unsigned norm) {
          return
              [&, norm](double across, double along) { return magnitude(radial, term, across, along, norm); };
        };
        for (const RowWeighing way : {row_by_tiles, row_by_points}) {
          for (unsigned norm = 0; norm < 2; ++norm) {
            plan.bounds[way].tail[norm] += rows_tail_of(way, term.exponent, of_norm(norm));
          }
          term.reach[way] = rows_reach(way, term.exponent, [&](double across, double along) {
            return std::max(of_norm(0)(across, along), of_norm(1)(across, along));
          });
        }
      }
      std::ranges::sort(terms, {}, [](const RowTerm& term) { return term.reach[row_by_points]; });
      for (unsigned t = 1; t < radial.term_count; ++t) {
        terms[t].reach[row_by_tiles] =
            std::max(terms[t].reach[row_by_tiles], terms[t - 1].reach[row_by_tiles]);
      }
    }
  }

  // What a term comes to at most, its exponential aside, where the offsets are at most so large.
  double magnitude(const RowRadial& radial, const RowTerm& term, double across, double along,
                   unsigned norm) const {
    double sum = 0.0;
    for (unsigned power = 0; power <= radial.power_max; ++power) {
      for (unsigned m = radial.monomials[power]; m < radial.monomials[power + 1]; ++m) {
        const RowMonomial& monomial = tables_.monomials[m];
        sum += monomial.norms[norm] *
               power_of(across, monomial.across / row_powers + monomial.across % row_powers) *
               power_of(along, power);
      }
    }
    return std::fabs(term.weight) * sum;
  }

  const Molecule* molecule_;
  const RowKernel& kernel_;
  std::span<const WeightedOrbital> orbitals_;
  RowTables& tables_;
};

}  // namespace

std::unique_ptr<RowTables> rows_build(const Molecule* molecule, const CubeDefinition* cube,
                                      const RowKernel& kernel, FieldKind field,
                                      std::span<const WeightedOrbital> orbitals) {
  if (orbitals.empty()) {
    return nullptr;
  }
  auto tables = std::make_unique<RowTables>();
  RowPlan& plan = tables->plan;
  plan.field = field;
  const auto parts = rows_functions(molecule, cube, kernel, tables.get());
  if (!parts || !OrbitalBuilder(molecule, kernel, orbitals, tables.get()).build(*parts)) {
    return nullptr;
  }
  plan.atom_count = molecule->atom_count;
  plan.radial_count = static_cast<unsigned>(tables->radials.size());
  plan.atoms = tables->atoms.data();
  plan.radials = tables->radials.data();
  plan.terms = tables->terms.data();
  plan.monomials = tables->monomials.data();
  return tables;
}
