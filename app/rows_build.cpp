#include "rows_build.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

#include "angular_polynomial.hpp"
#include "eval.hpp"
#include "exponential.hpp"
#include "norm.hpp"
#include "prim.hpp"
#include "rows_bound.hpp"

namespace {

constexpr unsigned row_length_min = 16;  // below, a row's own work is not worth while
constexpr double table_room = 64.0 * 1024 * 1024 / sizeof(double);
constexpr unsigned chunk_orbitals = 96;

// What keeps all products of a sweep within the range of doubles, with room for what underflows.
constexpr double offset_max = 1e5;  // bohr
constexpr double number_max = 1e30;
constexpr double exponent_min = 1e-8, exponent_max = 1e10;
constexpr double norm_square_min = 1e-280;

bool is_ordinary(double number) { return std::fabs(number) <= number_max; }

bool is_ordinary_exponent(double exponent) { return exponent >= exponent_min && exponent <= exponent_max; }

// Powers along, along the first axis across, and along the second.
using Powers = std::array<unsigned char, 3>;

// What a function has of a monomial.
struct Part {
  unsigned function, radial;
  Powers powers;
  double factor, magnitude;
};

struct Radial {
  const double* exponents;
  std::vector<double> weights;
  unsigned function_count;
  std::map<Powers, unsigned> monomials;  // their numbers, in the order of the power along
};

class Builder {
 public:
  Builder(const Molecule* molecule, const CubeDefinition* cube, const RowKernel& kernel,
          std::span<const Orbital* const> orbitals, RowTables* tables)
      : molecule_(molecule), cube_(cube), kernel_(kernel), orbitals_(orbitals), tables_(*tables) {}

  bool build(SweepField field) {
    if (orbitals_.empty() || cube_->npoints[2] < row_length_min || !find_axes() || !fit_tables()) {
      return false;
    }
    RowPlan& plan = tables_.plan;
    plan.field = field;
    std::vector<std::vector<unsigned>> of_atom(molecule_->atom_count);
    for (unsigned b = 0; b < molecule_->basis_count; ++b) {
      of_atom[molecule_->basis[b].atom_index].push_back(b);
    }
    for (unsigned a = 0; a < molecule_->atom_count; ++a) {
      if (!add_atom(molecule_->atoms[a], of_atom[a])) {
        return false;
      }
    }
    if (!add_orbitals()) {
      return false;
    }
    add_coefficients();
    set_bound();
    plan.atom_count = molecule_->atom_count;
    plan.radial_count = static_cast<unsigned>(tables_.radials.size());
    plan.atoms = tables_.atoms.data();
    plan.radials = tables_.radials.data();
    plan.terms = tables_.terms.data();
    plan.monomials = tables_.monomials.data();
    return true;
  }

 private:
  // One coordinate must change along a row only, and each of the others with one of the first two indices
  // only.
  bool find_axes() {
    const auto moves = [&](unsigned index, unsigned c) { return cube_->vectors[index][c] != 0.0; };
    unsigned along_count = 0, across_count = 0;
    for (unsigned c = 0; c < 3; ++c) {
      if (moves(2, c)) {
        axis_[2] = c;
        ++along_count;
      } else if (across_count < 2) {
        axis_[across_count] = c;
        tables_.index[across_count++] = moves(1, c) ? 1 : 0;
      }
      if (moves(0, c) + moves(1, c) + moves(2, c) > 1) {
        return false;
      }
    }
    return along_count == 1;
  }

  // Whether there is room for the factors of all Gaussians.
  bool fit_tables() {
    tile_count_ = (cube_->npoints[2] + kernel_.tile_points - 1) / kernel_.tile_points;
    tables_.plan.tile_room = tile_count_ + kernel_.piece_tiles;
    double primitive_count = molecule_->atom_count;
    for (const BasisFunction& function : std::span(molecule_->basis, molecule_->basis_count)) {
      primitive_count += function.primitive_count;
    }
    return primitive_count * static_cast<double>(table_size()) <= table_room;
  }

  // Of the factors of a Gaussian.
  std::size_t table_size() const {
    std::size_t size =
        std::size_t{tile_count_} * kernel_.tile_points + std::size_t{row_powers} * tables_.plan.tile_room;
    for (const unsigned index : tables_.index) {
      size += cube_->npoints[index];
    }
    return size;
  }

  bool add_atom(const Atom& atom, std::span<const unsigned> functions) {
    std::vector<Radial> radials;
    std::map<double, RowTerm> gaussians;  // by their exponent
    const std::size_t first_part = parts_.size();
    for (const unsigned f : functions) {
      if (!add_function(f, &radials)) {
        return false;
      }
      for (const double exponent :
           std::span(molecule_->basis[f].exponents, molecule_->basis[f].primitive_count)) {
        gaussians[exponent] = {};
      }
    }
    RowAtom row_atom = {
        {}, nullptr, static_cast<unsigned>(tables_.radials.size()), static_cast<unsigned>(radials.size()), 0};
    if (!tabulate(atom, &row_atom, &gaussians)) {
      return false;
    }
    for (Radial& radial : radials) {
      add_radial(&radial, gaussians, &row_atom);
    }
    for (Part& part : std::span(parts_).subspan(first_part)) {
      part_monomials_.push_back(radials[part.radial].monomials.at(part.powers));
    }
    tables_.atoms.push_back(row_atom);
    return true;
  }

  // Adds a function to a radial of which it is a multiple, or to a new one.
  bool add_function(unsigned number, std::vector<Radial>* radials) {
    const BasisFunction* function = &molecule_->basis[number];
    const unsigned count = function->primitive_count;
    std::vector<double> weights(count);
    std::size_t largest = 0;
    for (unsigned i = 0; i < count; ++i) {
      weights[i] = function->coefficients[i] * norm_fce(function, i);
      if (!is_ordinary_exponent(function->exponents[i]) || !is_ordinary(function->coefficients[i]) ||
          !is_ordinary(weights[i])) {
        return false;
      }
      largest = std::fabs(weights[i]) > std::fabs(weights[largest]) ? i : largest;
    }
    if (count == 0 || weights[largest] == 0.0) {
      return true;  // next to nothing everywhere
    }
    const auto same = std::ranges::find_if(*radials, [&](const Radial& radial) {
      if (radial.weights.size() != count ||
          !std::equal(weights.begin(), weights.end(), radial.weights.begin(),
                      [](double a, double b) { return (a == 0.0) == (b == 0.0); }) ||
          !std::equal(radial.exponents, radial.exponents + count, function->exponents)) {
        return false;
      }
      const double ratio = weights[largest] / radial.weights[largest];
      return is_ordinary(ratio) && std::ranges::equal(weights, radial.weights, [&](double a, double b) {
               return std::fabs(a - ratio * b) <= rows_multiple * std::fabs(a);
             });
    });
    const auto place = static_cast<std::size_t>(same - radials->begin());
    if (same == radials->end()) {
      radials->push_back({function->exponents, weights, 0, {}});
    }
    Radial& radial = (*radials)[place];
    function_max_ = std::max(function_max_, ++radial.function_count);
    term_max_ = std::max(term_max_, count);
    const double ratio = weights[largest] / radial.weights[largest];
    prim_shell(function->type, [&](const auto& factors) {
      angular_select(factors, function->component, [&](const auto& factor) {
        const AngularPolynomial polynomial = factor(AngularPolynomial::coordinates());
        for (const auto& [powers, coefficient, magnitude] : polynomial.terms()) {
          const Powers ordered = {powers[axis_[2]], powers[axis_[0]], powers[axis_[1]]};
          radial.monomials[ordered] = 0;
          parts_.push_back({number, static_cast<unsigned>(place), ordered, ratio * coefficient,
                            std::fabs(ratio) * magnitude});
        }
      });
    });
    return true;
  }

  // The factors of all Gaussians of an atom, and the offsets from it.
  bool tabulate(const Atom& atom, RowAtom* row_atom, std::map<double, RowTerm>* gaussians) {
    AlignedDoubles& factors = tables_.factors.emplace_back(table_size() * (gaussians->size() + 1));
    double* room = factors.data();
    const auto take = [&](std::size_t size) { return std::exchange(room, room + size); };
    const unsigned points = tile_count_ * kernel_.tile_points;
    double* const along = take(points);
    for (unsigned k = 0; k < points; ++k) {
      const unsigned last = cube_->npoints[2] - 1;
      along[k] = cube_coordinate(cube_, 0, 0, std::min(k, last), axis_[2]) - atom.coord[axis_[2]];
    }
    row_atom->along = along;
    for (unsigned c = 0; c < 2; ++c) {
      const unsigned index = tables_.index[c], count = cube_->npoints[index];
      double* const across = take(count);
      for (unsigned n = 0; n < count; ++n) {
        across[n] = cube_coordinate(cube_, index == 0 ? n : 0, index == 1 ? n : 0, 0, axis_[c]) -
                    atom.coord[axis_[c]];
      }
      row_atom->across[c] = across;
    }
    if (!std::ranges::all_of(std::span(along, room),
                             [](double offset) { return std::fabs(offset) <= offset_max; })) {
      return false;
    }
    const auto tabulate_factors = [&](double exponent, const double* offsets, std::size_t count) {
      double* const to = take(count);
      std::transform(offsets, offsets + count, to,
                     [&](double d) { return exponential(-(exponent * (d * d))); });
      return to;
    };
    for (auto& [exponent, term] : *gaussians) {
      term.along = tabulate_factors(exponent, along, points);
      for (unsigned c = 0; c < 2; ++c) {
        term.across[c] = tabulate_factors(exponent, row_atom->across[c], cube_->npoints[tables_.index[c]]);
      }
      double* const peaks = take(std::size_t{row_powers} * tables_.plan.tile_room);
      term.peaks = peaks;
      for (unsigned k = 0; k < points; ++k) {
        double value = term.along[k];
        for (unsigned power = 0; power < row_powers; ++power) {
          double& peak = peaks[power * tables_.plan.tile_room + k / kernel_.tile_points];
          peak = std::max(peak, value);
          value *= std::fabs(along[k]);
        }
      }
    }
    return true;
  }

  void add_radial(Radial* radial, const std::map<double, RowTerm>& gaussians, RowAtom* atom) {
    RowRadial row = {static_cast<unsigned>(tables_.atoms.size()),
                     static_cast<unsigned>(radial->weights.size()),
                     static_cast<unsigned>(tables_.terms.size()),
                     0,
                     radial->function_count,
                     tables_.plan.function_count,
                     {}};
    for (unsigned t = 0; t < row.term_count; ++t) {
      RowTerm& term = tables_.terms.emplace_back(gaussians.at(radial->exponents[t]));
      term.exponent = radial->exponents[t];
      term.weight = radial->weights[t];
    }
    std::ranges::fill(row.monomials, static_cast<unsigned>(tables_.monomials.size()));
    for (auto& [powers, number] : radial->monomials) {
      const auto [along, first, second] = powers;
      number = static_cast<unsigned>(tables_.monomials.size());
      tables_.monomials.push_back({first * row_powers + second, {}});
      row.power_max = std::max<unsigned>(row.power_max, along);
      std::fill(row.monomials + along + 1, row.monomials + row_powers + 1, number + 1);
      atom->power_max = std::max<unsigned>(atom->power_max, first + second);
    }
    tables_.plan.function_count += row.power_max + 1;
    tables_.radials.push_back(row);
  }

  // Chunks of nearly equal size, and groups in them.
  bool add_orbitals() {
    const auto count = static_cast<unsigned>(orbitals_.size());
    RowPlan& plan = tables_.plan;
    plan.orbital_count = count;
    plan.chunk_count = (count + chunk_orbitals - 1) / chunk_orbitals;
    const unsigned chunk_max = (count + plan.chunk_count - 1) / plan.chunk_count;
    plan.stride = (chunk_max + kernel_.lanes - 1) / kernel_.lanes * kernel_.lanes;
    const std::size_t size = tables_.monomials.size() * plan.stride;
    tables_.coefficients.resize(size * plan.chunk_count);
    const bool has_bounds = plan.field != SweepField::density_and_potential && count > 1;
    tables_.magnitudes.resize(has_bounds ? tables_.coefficients.size() : 0);
    for (const Orbital* orbital : orbitals_) {
      if (!is_ordinary(orbital->energy) ||
          !std::ranges::all_of(std::span(orbital->coefficients, molecule_->basis_count), is_ordinary)) {
        return false;
      }
      tables_.energy_magnitudes.push_back(eval_weight(orbital));
    }
    for (unsigned c = 0; c < plan.chunk_count; ++c) {
      const unsigned first = c * count / plan.chunk_count, end = (c + 1) * count / plan.chunk_count;
      tables_.chunks.push_back({end - first,
                                (end - first + kernel_.tile_orbitals - 1) / kernel_.tile_orbitals,
                                tables_.coefficients.data() + c * size,
                                has_bounds ? tables_.magnitudes.data() + c * size : nullptr,
                                tables_.energy_magnitudes.data() + first});
    }
    plan.chunks = tables_.chunks.data();
    return true;
  }

  // The orbitals' coefficients of monomials, from those of functions.
  void add_coefficients() {
    const RowPlan& plan = tables_.plan;
    for (std::size_t n = 0; n < parts_.size(); ++n) {
      const Part& part = parts_[n];
      const unsigned monomial = part_monomials_[n];
      const std::size_t size = tables_.monomials.size() * plan.stride;
      std::size_t o = 0;
      for (unsigned c = 0; c < plan.chunk_count; ++c) {
        const std::size_t at = c * size + monomial * std::size_t{plan.stride};
        for (unsigned k = 0; k < tables_.chunks[c].count; ++k, ++o) {
          const double coefficient = orbitals_[o]->coefficients[part.function];
          tables_.coefficients[at + k] += part.factor * coefficient;
          if (!tables_.magnitudes.empty()) {
            tables_.magnitudes[at + k] += part.magnitude * std::fabs(coefficient);
          }
        }
      }
      double norms[2];
      find_norms(part.function, norms);
      for (unsigned norm = 0; norm < 2; ++norm) {
        tables_.monomials[monomial].norms[norm] += part.magnitude * norms[norm];
      }
    }
  }

  // Of a function's coefficients: the length of their vector over all orbitals, without and with the weights
  // of the potential; for orbitals of their own, the largest magnitude and nothing.
  void find_norms(unsigned function, double (&norms)[2]) const {
    double largest = 0.0, squares = norm_square_min, weighted_squares = norm_square_min;
    for (std::size_t o = 0; o < orbitals_.size(); ++o) {
      const double coefficient = orbitals_[o]->coefficients[function];
      largest = std::max(largest, std::fabs(coefficient));
      squares += coefficient * coefficient;
      weighted_squares += tables_.energy_magnitudes[o] * (coefficient * coefficient);
    }
    const bool is_density = tables_.plan.field == SweepField::density_and_potential;
    norms[0] = is_density ? std::sqrt(squares) : largest;
    norms[1] = is_density ? std::sqrt(weighted_squares) : 0.0;
  }

  void set_bound() {
    RowPlan& plan = tables_.plan;
    plan.rounding = rows_rounding(term_max_, function_max_);
    plan.cut = (tables_.magnitudes.empty() ? 0.5 : 0x1p-20) * plan.rounding;
    for (const RowRadial& radial : tables_.radials) {
      const std::span terms(tables_.terms.data() + radial.first_term, radial.term_count);
      for (RowTerm& term : terms) {
        const double far = std::sqrt(rows_argument_max / term.exponent);
        const double smallness = rows_tail * std::exp(-rows_argument_max);
        for (unsigned norm = 0; norm < 2; ++norm) {
          plan.tail[norm] += smallness * magnitude(radial, term, far, far, norm) + rows_negligible;
        }
        term.reach = find_reach(radial, term);
      }
      std::ranges::sort(terms, {}, &RowTerm::reach);
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
               std::pow(across, monomial.across / row_powers + monomial.across % row_powers) *
               std::pow(along, power);
      }
    }
    return std::fabs(term.weight) * sum;
  }

  // The square of the distance across from which on a term comes to less than rows_negligible.
  double find_reach(const RowRadial& radial, const RowTerm& term) const {
    // The largest |d|^n exp(-α d²) is (n / 2eα)^(n/2), not above sqrt(0.75 / α)^n or 1.
    const double along = std::sqrt(0.75 / term.exponent);
    const auto share = [&](double distance2) {
      const double across = std::sqrt(distance2);
      return std::exp(-term.exponent * distance2) *
             std::max(magnitude(radial, term, across, along, 0), magnitude(radial, term, across, along, 1));
    };
    // From an argument of 4 on it falls.
    double distance2 = 4.0 / term.exponent;
    for (int step = 0; step < 50 && share(distance2) > rows_negligible; ++step) {
      distance2 *= 1.1;
    }
    return share(distance2) <= rows_negligible ? distance2 : std::numeric_limits<double>::infinity();
  }

  const Molecule* molecule_;
  const CubeDefinition* cube_;
  const RowKernel& kernel_;
  std::span<const Orbital* const> orbitals_;
  RowTables& tables_;
  unsigned axis_[3] = {};  // the coordinates across and along
  unsigned tile_count_ = 0;
  unsigned term_max_ = 0, function_max_ = 0;
  std::vector<Part> parts_;
  std::vector<unsigned> part_monomials_;
};

}  // namespace

std::unique_ptr<RowTables> rows_build(const Molecule* molecule, const CubeDefinition* cube,
                                      const RowKernel& kernel, SweepField field,
                                      std::span<const Orbital* const> orbitals) {
  auto tables = std::make_unique<RowTables>();
  const bool is_built = Builder(molecule, cube, kernel, orbitals, tables.get()).build(field);
  return is_built ? std::move(tables) : nullptr;
}
