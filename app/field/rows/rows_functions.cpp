#include "app/field/rows/rows_functions.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <span>
#include <utility>

#include "app/field/point/angular_polynomial.hpp"
#include "app/field/point/exponential.hpp"
#include "app/field/point/norm.hpp"
#include "app/field/point/prim.hpp"
#include "app/field/point/radial.hpp"
#include "app/field/rows/angular_rounding.hpp"
#include "app/field/rows/rows_bound.hpp"

static_assert(angular_rounding_max() <= rows_angular, "raise rows_angular, of which the bound is made");

namespace {

// A row's own work is not worth while below, nor where most of it is out of sight, for which there would be
// memory too.
constexpr unsigned row_length_min = 16;
constexpr double sight_argument = 320.0;  // of the exponential that falls least: below 1e-138
constexpr double table_room = 64.0 * 1024 * 1024 / sizeof(double);

// What keeps all products of a sweep within the range of doubles, with room for what underflows.
constexpr double offset_max = 1e5;  // bohr
constexpr double exponent_min = 1e-8, exponent_max = 1e10;
static_assert(shell_max <= 8, "squares of 1e90 offset_max^shell_max, times 1e30: lower offset_max");

bool is_ordinary_exponent(double exponent) { return exponent >= exponent_min && exponent <= exponent_max; }

// Powers along, along the first axis across, and along the second.
using Powers = std::array<unsigned char, 3>;

// What a function of an atom has of one of its monomials.
struct Part {
  unsigned function;
  std::size_t radial;
  Powers powers;
  double factor, magnitude;
};

struct Radial {
  unsigned number;  // of radials_of
  const double* exponents;
  std::vector<double> weights;
  unsigned function_count;
  std::map<Powers, unsigned> monomials;  // their numbers, in the order of the power along
};

class FunctionBuilder {
 public:
  FunctionBuilder(const Molecule* molecule, const CubeDefinition* cube, const RowKernel& kernel,
                  RowTables* tables)
      : molecule_(molecule),
        cube_(cube),
        kernel_(kernel),
        tables_(*tables),
        radial_numbers_(radials_of(molecule)) {}

  bool build() {
    if (!find_axes() || !find_points() || !fit_tables()) {
      return false;
    }
    std::vector<std::vector<unsigned>> of_atom(molecule_->atom_count);
    for (unsigned b = 0; b < molecule_->basis_count; ++b) {
      of_atom[molecule_->basis[b].atom_index].push_back(b);
    }
    for (unsigned a = 0; a < molecule_->atom_count; ++a) {
      if (!add_atom(molecule_->atoms[a], of_atom[a])) {
        return false;
      }
    }
    return true;
  }

  std::vector<RowPart> take_parts() { return std::move(parts_); }

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

  // Of a row, the points where anything may be known, unless coefficients are huge: from the first to the
  // last, and up to a whole tile.
  bool find_points() {
    double exponent = HUGE_VAL, low = HUGE_VAL, high = -HUGE_VAL;
    for (const BasisFunction& function : std::span(molecule_->basis, molecule_->basis_count)) {
      for (const double each : std::span(function.exponents, function.primitive_count)) {
        exponent = std::min(exponent, each);
      }
    }
    for (const Atom& atom : std::span(molecule_->atoms, molecule_->atom_count)) {
      low = std::min(low, atom.coord[axis_[2]]);
      high = std::max(high, atom.coord[axis_[2]]);
    }
    const double far = std::sqrt(sight_argument / exponent);
    const auto is_in_sight = [&](unsigned k) {
      const double coordinate = cube_coordinate(cube_, 0, 0, k, axis_[2]);
      return coordinate >= low - far && coordinate <= high + far;
    };
    const unsigned length = cube_->npoints[2];
    unsigned first = 0, end = length;
    while (first < end && !is_in_sight(first)) {
      ++first;
    }
    while (first < end && !is_in_sight(end - 1)) {
      --end;
    }
    tile_count_ = (end - first + kernel_.tile_points - 1) / kernel_.tile_points;
    tables_.plan.first_point = first;
    tables_.plan.point_count = std::min(tile_count_ * kernel_.tile_points, length - first);
    return tables_.plan.point_count >= row_length_min && 2 * tables_.plan.point_count >= length;
  }

  // Whether there is room for the factors of all Gaussians.
  bool fit_tables() {
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
    std::vector<Part> parts;
    for (const unsigned f : functions) {
      if (!add_function(f, &radials, &parts)) {
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
    for (const Part& part : parts) {
      parts_.push_back(
          {part.function, radials[part.radial].monomials.at(part.powers), part.factor, part.magnitude});
    }
    tables_.atoms.push_back(row_atom);
    return true;
  }

  // Adds a function to a radial of which it is a multiple, or to a new one.
  bool add_function(unsigned number, std::vector<Radial>* radials, std::vector<Part>* parts) {
    const BasisFunction* function = &molecule_->basis[number];
    const unsigned count = function->primitive_count;
    std::vector<double> weights(count);
    std::size_t largest = 0;
    for (unsigned i = 0; i < count; ++i) {
      weights[i] = function->coefficients[i] * norm_fce(function, i);
      if (!is_ordinary_exponent(function->exponents[i]) || !rows_is_ordinary(function->coefficients[i]) ||
          !rows_is_ordinary(weights[i])) {
        return false;
      }
      largest = std::fabs(weights[i]) > std::fabs(weights[largest]) ? i : largest;
    }
    if (count == 0 || weights[largest] == 0.0) {
      return true;  // next to nothing everywhere
    }
    const auto same = std::ranges::find(*radials, radial_numbers_[number], &Radial::number);
    const auto place = static_cast<std::size_t>(same - radials->begin());
    if (same == radials->end()) {
      radials->push_back({radial_numbers_[number], function->exponents, weights, 0, {}});
    }
    Radial& radial = (*radials)[place];
    ++radial.function_count;
    const double ratio = weights[largest] / radial.weights[largest];
    // But for the roundings of norms it is a multiple.
    if (!rows_is_ordinary(ratio) || !std::ranges::equal(weights, radial.weights, [&](double a, double b) {
          return std::fabs(a - ratio * b) <= rows_multiple * std::fabs(a);
        })) {
      return false;
    }
    prim_shell(function->type, [&](const auto& factors) {
      angular_select(factors, function->component, [&](const auto& factor) {
        const AngularPolynomial polynomial = factor(AngularPolynomial::coordinates());
        for (const auto& [powers, coefficient, magnitude] : polynomial.terms()) {
          const Powers ordered = {powers[axis_[2]], powers[axis_[0]], powers[axis_[1]]};
          radial.monomials[ordered] = 0;
          parts->push_back({number, place, ordered, ratio * coefficient, std::fabs(ratio) * magnitude});
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
      const unsigned at = tables_.plan.first_point + std::min(k, tables_.plan.point_count - 1);
      along[k] = cube_coordinate(cube_, 0, 0, at, axis_[2]) - atom.coord[axis_[2]];
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
      std::fill(peaks, room, 0.0);
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

  const Molecule* molecule_;
  const CubeDefinition* cube_;
  const RowKernel& kernel_;
  RowTables& tables_;
  std::vector<unsigned> radial_numbers_;  // of the basis functions
  unsigned axis_[3] = {};                 // the coordinates across and along
  unsigned tile_count_ = 0;
  std::vector<RowPart> parts_;
};

}  // namespace

std::optional<std::vector<RowPart>> rows_functions(const Molecule* molecule, const CubeDefinition* cube,
                                                   const RowKernel& kernel, RowTables* tables) {
  FunctionBuilder builder(molecule, cube, kernel, tables);
  return builder.build() ? std::optional(builder.take_parts()) : std::nullopt;
}
