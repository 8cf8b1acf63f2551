#include "app/field/exact/sweep.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

#include "app/field/point/eval.hpp"
#include "app/field/point/exponential.hpp"
#include "app/field/point/norm.hpp"
#include "app/field/point/radial.hpp"
#include "app/model/shell.hpp"

namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();

// A head of a contraction is left out where each of its terms is so small against the next primitive's that
// all of them together round away: 2^-60, where 2^-54 would do, covers the rounding of the products.
const double head_margin = 60.0 * std::log(2.0);

// r² beyond which exp(-exponent·r²) is 0.0.
double zero_reach(double exponent) { return exponential_zero_limit / exponent; }

// r² beyond which the terms in front of `next` round away against it; infinite if that is not certain.
// All terms share the angular factor, so they compare as weight·exp(-exponent·r²), weight = |c·N|.
// `lowest`: the smallest exponent in front of `next`. Its ratio of 1.25 to the next exponent makes the head
// exactly 0.0 before the next term comes near the subnormal numbers; the bound on the coefficients keeps
// their products clear of them as well.
double head_reach(const BasisFunction* function, const double* norms, unsigned next, double lowest) {
  // Few exponents of a long contraction are so far below all before them, so what follows is done for few.
  if (!(lowest / function->exponents[next] >= 1.25)) {
    return infinite;
  }
  const auto magnitude = [&](unsigned i) { return std::fabs(function->coefficients[i]); };
  double reach = 0.0;
  for (unsigned i = 0; i < next; ++i) {
    const double weight_ratio = magnitude(i) * norms[i] / (magnitude(next) * norms[next]);
    if (!(magnitude(i) < 0x1p20 && magnitude(next) < 0x1p20 && weight_ratio < infinite)) {
      return infinite;
    }
    const double difference = function->exponents[i] - function->exponents[next];
    reach = std::max(reach, (head_margin + std::log(next * weight_ratio)) / difference);
  }
  return reach;
}

// `norms` has one constant per primitive: those of a shell's functions have the same ratios.
bool is_ordinary(const BasisFunction* function, const double* norms) {
  for (unsigned i = 0; i < function->primitive_count; ++i) {
    const double exponent = function->exponents[i];
    if (!(exponent > 1e-30 && exponent < 1e30 && std::isfinite(function->coefficients[i]) &&
          std::isfinite(norms[i]))) {
      return false;
    }
  }
  return true;
}

// The reach of each term: the smallest r² from which the sum may start at any later term, or be left out.
void find_reach(const BasisFunction* function, const double* norms, std::span<SweepTerm> terms) {
  if (!is_ordinary(function, norms)) {
    return;
  }
  std::vector<double> lowest;  // of the exponents up to each
  for (unsigned i = 0; i < terms.size(); ++i) {
    lowest.push_back(std::min(function->exponents[i], i > 0 ? lowest.back() : infinite));
  }
  double reach = infinite;
  for (auto i = static_cast<unsigned>(terms.size()); i-- > 0;) {
    reach = std::min(reach, zero_reach(lowest[i]));
    terms[i].reach = reach;
    if (i > 0) {
      reach = std::min(reach, head_reach(function, norms, i, lowest[i - 1]));
    }
  }
}

// As many points as keep the values of all basis functions within the second-level cache.
unsigned choose_block_points(unsigned basis_count, const SweepKernel& kernel) {
  constexpr unsigned cache_values = 192 * (1024 / sizeof(double));
  const unsigned fitting = cache_values / std::max(basis_count, 1U) / kernel.tile_points * kernel.tile_points;
  return std::clamp(fitting, kernel.tile_points, kernel.block_points_max);
}

}  // namespace

Sweep::Sweep(const Molecule* molecule, const SweepKernel& kernel, FieldKind field,
             std::span<const WeightedOrbital> orbitals, double extent)
    : molecule_(molecule),
      kernel_(kernel),
      radials_(radials_of(molecule)),
      block_points_(choose_block_points(molecule->basis_count, kernel)) {
  const Occupation occupation = occupation_of(molecule);
  plan_.field = field;
  plan_.basis_count = molecule->basis_count;
  plan_.is_restricted = occupation.is_restricted;
  plan_.has_no_pairs = occupation.has_no_pairs();
  plan_.may_skip_primitives = extent < 1e30;
  for (unsigned a = 0; a < molecule->atom_count; ++a) {
    for (const double coordinate : molecule->atoms[a].coord) {
      plan_.may_skip_primitives = plan_.may_skip_primitives && std::fabs(coordinate) < 1e30;
    }
  }
  plan_atoms();
  plan_orbitals(orbitals);
  // One more, so that there is some memory even without shells.
  active_.resize(std::size_t{kernel.block_points_max / kernel.tile_points} * plan_.shell_count + 1);
  active_list_.resize(plan_.basis_count);
  values_.resize(std::size_t{plan_.basis_count} * block_points_);
  fields_.resize(block_points_ * std::max<std::size_t>(orbitals.size(), 2));
}

void Sweep::plan_atoms() {
  const std::span basis(molecule_->basis, molecule_->basis_count);
  std::size_t term_total = 0;
  std::vector<std::vector<unsigned>> of_atom(molecule_->atom_count);
  for (unsigned b = 0; b < basis.size(); ++b) {
    of_atom[basis[b].atom_index].push_back(b);
    term_total += basis[b].primitive_count;
  }
  // The plan points into these; they never grow beyond what is reserved.
  shells_.reserve(basis.size());
  terms_.reserve(term_total);
  norms_.reserve(term_total);
  exponentials_.reserve(term_total);
  std::size_t exponential_max = 0;
  for (unsigned a = 0; a < molecule_->atom_count; ++a) {
    const std::size_t first_shell = shells_.size();
    const std::size_t first_exponential = exponentials_.size();
    exponential_positions_ = {};
    std::span<const unsigned> functions = of_atom[a];
    while (!functions.empty()) {
      const std::size_t count = shell_size(functions);
      plan_shell(functions.first(count), first_exponential);
      functions = functions.subspan(count);
    }
    const std::size_t exponential_count = exponentials_.size() - first_exponential;
    atoms_.push_back({.coord = molecule_->atoms[a].coord,
                      .exponential_count = static_cast<unsigned>(exponential_count),
                      .shell_count = static_cast<unsigned>(shells_.size() - first_shell),
                      .exponentials = exponentials_.data() + first_exponential,
                      .shells = shells_.data() + first_shell});
    exponential_max = std::max(exponential_max, exponential_count);
  }
  plan_.atom_count = molecule_->atom_count;
  plan_.atoms = atoms_.data();
  exponential_values_.resize(exponential_max * kernel_.block_points_max);
  number_shells();
}

void Sweep::number_shells() {
  for (const SweepShell& shell : shells_) {
    shell_starts_.push_back(shell.basis_index);
  }
  std::ranges::sort(shell_starts_);
  for (SweepShell& shell : shells_) {
    shell.number = static_cast<unsigned>(std::ranges::lower_bound(shell_starts_, shell.basis_index) -
                                         shell_starts_.begin());
  }
  shell_starts_.push_back(plan_.basis_count);
  plan_.shell_count = static_cast<unsigned>(shells_.size());
  plan_.shell_starts = shell_starts_.data();
}

// How many of the functions, from the first on, are a whole shell; 1 if they are not.
std::size_t Sweep::shell_size(std::span<const unsigned> functions) const {
  const BasisFunction* const basis = molecule_->basis;
  const BasisFunction& first = basis[functions[0]];
  const auto whole = std::size_t{shell_function_count(first.type)};
  if (first.component != 0 || functions.size() < whole) {
    return 1;
  }
  for (unsigned i = 1; i < whole; ++i) {
    const unsigned b = functions[i];
    if (b != functions[0] + i || basis[b].type != first.type || basis[b].component != static_cast<short>(i) ||
        radials_[b] != radials_[functions[0]]) {
      return 1;
    }
  }
  return whole;
}

// The position of an exponential among those of the atom at hand. Exponents are the same if their bits are.
unsigned Sweep::position_of(double exponent) {
  const auto next = static_cast<unsigned>(exponential_positions_.size());
  const auto [entry, is_new] = exponential_positions_.emplace(std::bit_cast<std::uint64_t>(exponent), next);
  if (is_new) {
    exponentials_.push_back({exponent, 0.0, exponent > 0.0 ? exponential_normal_limit / exponent : 0.0});
  }
  return entry->second;
}

void Sweep::plan_shell(std::span<const unsigned> functions, std::size_t first_exponential) {
  const BasisFunction* const function = &molecule_->basis[functions[0]];
  const std::size_t first_term = terms_.size();
  const std::size_t first_norm = norms_.size();
  std::vector<double> norms;  // of the first function
  for (unsigned i = 0; i < function->primitive_count; ++i) {
    terms_.push_back({infinite, position_of(function->exponents[i])});
    for (const unsigned b : functions) {
      norms_.push_back(norm_fce(&molecule_->basis[b], i));
    }
    norms.push_back(norms_[first_norm + i * functions.size()]);
  }
  const std::span terms(terms_.data() + first_term, function->primitive_count);
  if (plan_.may_skip_primitives) {
    find_reach(function, norms.data(), terms);
  }
  for (const SweepTerm& term : terms) {
    double& reach = exponentials_[first_exponential + term.exponential].reach;
    reach = std::max(reach, term.reach);
  }
  shells_.push_back({.type = function->type,
                     .component = function->component,
                     .is_whole = functions.size() == shell_function_count(function->type),
                     .number = 0,  // number_shells gives it
                     .basis_index = functions[0],
                     .term_count = function->primitive_count,
                     .terms = terms.data(),
                     .norms = norms_.data() + first_norm,
                     .coefficients = function->coefficients});
}

void Sweep::plan_orbitals(std::span<const WeightedOrbital> orbitals) {
  const std::size_t basis_count = molecule_->basis_count;
  coefficients_.resize(basis_count * orbitals.size());
  weights_.reserve(orbitals.size());
  energy_weights_.reserve(orbitals.size());
  plan_.may_skip_functions = true;
  // Groups of nearly equal size: a small last one would leave the processor waiting.
  const std::size_t group_count = (orbitals.size() + kernel_.tile_orbitals - 1) / kernel_.tile_orbitals;
  for (std::size_t g = 0; g < group_count; ++g) {
    const std::size_t first = g * orbitals.size() / group_count;
    const std::size_t end = (g + 1) * orbitals.size() / group_count;
    groups_.push_back({static_cast<unsigned>(end - first), coefficients_.data() + first * basis_count,
                       weights_.data() + first, energy_weights_.data() + first});
    for (std::size_t o = first; o < end; ++o) {
      weights_.push_back(orbitals[o].weight);
      energy_weights_.push_back(eval_energy_weight(orbitals[o]));
      const std::span coefficients(orbitals[o].orbital->coefficients, basis_count);
      for (std::size_t b = 0; b < basis_count; ++b) {
        coefficients_[first * basis_count + b * (end - first) + (o - first)] = coefficients[b];
      }
      plan_.may_skip_functions = plan_.may_skip_functions &&
                                 std::ranges::all_of(coefficients, [](double c) { return std::isfinite(c); });
    }
  }
  plan_.group_count = static_cast<unsigned>(group_count);
  plan_.groups = groups_.data();
}

void Sweep::run(unsigned count, double* points) {
  const unsigned padded = (count + kernel_.tile_points - 1) / kernel_.tile_points * kernel_.tile_points;
  double* const axes[3] = {points, points + block_points_, points + 2 * std::size_t{block_points_}};
  for (double* axis : axes) {
    std::fill(axis + count, axis + padded, axis[count - 1]);
  }
  kernel_.run(plan_, {.point_count = padded,
                      .x = axes[0],
                      .y = axes[1],
                      .z = axes[2],
                      .fields = fields_.data(),
                      .stride = block_points_,
                      .values = values_.data(),
                      .exponentials = exponential_values_.data(),
                      .active = active_.data(),
                      .active_list = active_list_.data()});
}
