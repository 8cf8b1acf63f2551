#include "app/input/overlap.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numbers>

#include "app/field/point/angular_polynomial.hpp"
#include "app/field/point/norm.hpp"
#include "app/field/point/prim.hpp"
#include "app/field/point/radial.hpp"

namespace {

constexpr double work_max = 3e8;       // in products of numbers, about
constexpr double argument_max = 25.0;  // exp(-25) is 1e-11

using Powers = std::array<unsigned char, 3>;

// Functions of a centre that share their primitives, written out in monomials. All of them have the same
// normalization constants but for a factor.
struct Group {
  const double* centre;
  unsigned primitive_count;
  const double* exponents;
  std::vector<double> weights;  // contraction coefficient times normalization constant
  double exponent_min;
  unsigned power_max = 0;
  std::vector<Powers> powers;
  std::vector<double> coefficients;  // of the orbitals, [monomial][orbital]
};

Group group_of(const BasisFunction& function) {
  const unsigned n = function.primitive_count;
  Group group = {.centre = function.atom->coord,
                 .primitive_count = n,
                 .exponents = function.exponents,
                 .weights = {},
                 .exponent_min = *std::min_element(function.exponents, function.exponents + n),
                 .powers = {},
                 .coefficients = {}};
  for (unsigned i = 0; i < n; ++i) {
    group.weights.push_back(function.coefficients[i] * norm_fce(&function, i));
  }
  return group;
}

void add_function(const BasisFunction& function, unsigned number, double ratio,
                  std::span<const Orbital> orbitals, Group* group) {
  prim_shell(function.type, [&](const auto& factors) {
    angular_select(factors, function.component, [&](const auto& factor) {
      const AngularPolynomial polynomial = factor(AngularPolynomial::coordinates());
      for (const auto& [powers, coefficient, magnitude] : polynomial.terms()) {
        const auto same = std::ranges::find(group->powers, powers);
        const auto place = static_cast<std::size_t>(same - group->powers.begin()) * orbitals.size();
        if (same == group->powers.end()) {
          group->powers.push_back(powers);
          group->power_max = std::max<unsigned>(group->power_max, *std::ranges::max_element(powers));
          group->coefficients.resize(place + orbitals.size());
        }
        for (std::size_t o = 0; o < orbitals.size(); ++o) {
          group->coefficients[place + o] += ratio * coefficient * orbitals[o].coefficients[number];
        }
      }
    });
  });
}

std::vector<Group> make_groups(const Molecule* molecule, std::span<const Orbital> orbitals) {
  const std::vector<unsigned> radials = radials_of(molecule);
  std::vector<Group> groups;
  std::vector<const BasisFunction*> firsts;  // functions, of each group
  std::map<unsigned, std::size_t> places;    // of the groups, by their radials
  for (unsigned b = 0; b < molecule->basis_count; ++b) {
    const BasisFunction& function = molecule->basis[b];
    if (function.primitive_count == 0) {
      continue;
    }
    const auto [place, is_new] = places.try_emplace(radials[b], groups.size());
    if (is_new) {
      groups.push_back(group_of(function));
      firsts.push_back(&function);
    }
    const std::size_t group = place->second;
    const double ratio = norm_fce(&function, 0) / norm_fce(firsts[group], 0);
    add_function(function, b, ratio, orbitals, &groups[group]);
  }
  return groups;
}

// Integrals over one axis of (x - A)^i (x - B)^j exp(-p (x - P)²), but for the factor √(π/p): the recurrence
// of S. Obara and A. Saika, J. Chem. Phys. 84, 3963, 1986.
using AxisTable = std::array<std::array<double, shell_max + 1>, shell_max + 1>;

void fill_axis(double p, double to_a, double to_b, unsigned i_max, unsigned j_max, AxisTable& table) {
  const double half = 0.5 / p;
  table[0][0] = 1.0;
  for (unsigned j = 0; j < j_max; ++j) {
    table[0][j + 1] = to_b * table[0][j] + (j > 0 ? j * half * table[0][j - 1] : 0.0);
  }
  for (unsigned i = 0; i < i_max; ++i) {
    for (unsigned j = 0; j <= j_max; ++j) {
      table[i + 1][j] = to_a * table[i][j] + (i > 0 ? i * half * table[i - 1][j] : 0.0) +
                        (j > 0 ? j * half * table[i][j - 1] : 0.0);
    }
  }
}

class NormSums {
 public:
  explicit NormSums(std::size_t orbital_count) : sums_(orbital_count), row_(orbital_count) {}

  // `times` is 2 for a pair that stands for itself and its mirror.
  void add(const Group& a, const Group& b, double times) {
    double distance2 = 0.0;
    work_ += 4.0;
    for (unsigned c = 0; c < 3; ++c) {
      distance2 += (a.centre[c] - b.centre[c]) * (a.centre[c] - b.centre[c]);
    }
    const auto is_far = [&](double alpha, double beta) {
      return alpha * beta * distance2 > argument_max * (alpha + beta);
    };
    if (is_far(a.exponent_min, b.exponent_min)) {
      return;
    }
    const double integral_count = static_cast<double>(a.powers.size() * b.powers.size());
    work_ += 1.0 * a.primitive_count * b.primitive_count * (20.0 + 3.0 * integral_count) +
             integral_count * static_cast<double>(sums_.size());
    if (is_too_much()) {
      return;
    }
    integrals_.assign(a.powers.size() * b.powers.size(), 0.0);
    for (unsigned i = 0; i < a.primitive_count; ++i) {
      for (unsigned j = 0; j < b.primitive_count; ++j) {
        if (!is_far(a.exponents[i], b.exponents[j])) {
          add_primitives(a, i, b, j, distance2);
        }
      }
    }
    contract(a, b, times);
  }

  bool is_too_much() const { return work_ > work_max; }

  const std::vector<double>& sums() const { return sums_; }

 private:
  void add_primitives(const Group& a, unsigned i, const Group& b, unsigned j, double distance2) {
    const double alpha = a.exponents[i], beta = b.exponents[j], p = alpha + beta;
    AxisTable axes[3];
    for (unsigned c = 0; c < 3; ++c) {
      const double distance = a.centre[c] - b.centre[c];
      fill_axis(p, -beta / p * distance, alpha / p * distance, a.power_max, b.power_max, axes[c]);
    }
    const double factor = a.weights[i] * b.weights[j] * std::sqrt(std::numbers::pi / p) *
                          (std::numbers::pi / p) * std::exp(-alpha * beta / p * distance2);
    double* integral = integrals_.data();
    for (const auto& [ax, ay, az] : a.powers) {
      for (const auto& [bx, by, bz] : b.powers) {
        *integral++ += factor * axes[0][ax][bx] * axes[1][ay][by] * axes[2][az][bz];
      }
    }
  }

  void contract(const Group& a, const Group& b, double times) {
    const std::size_t n = sums_.size();
    const double* integral = integrals_.data();
    for (std::size_t s = 0; s < a.powers.size(); ++s) {
      std::ranges::fill(row_, 0.0);
      for (std::size_t t = 0; t < b.powers.size(); ++t, ++integral) {
        for (std::size_t o = 0; o < n; ++o) {
          row_[o] += *integral * b.coefficients[t * n + o];
        }
      }
      for (std::size_t o = 0; o < n; ++o) {
        sums_[o] += times * a.coefficients[s * n + o] * row_[o];
      }
    }
  }

  std::vector<double> sums_, row_, integrals_;
  double work_ = 0.0;
};

}  // namespace

std::optional<std::vector<double>> overlap_norms(const Molecule* molecule,
                                                 std::span<const Orbital> orbitals) {
  const std::vector<Group> groups = make_groups(molecule, orbitals);
  NormSums norms(orbitals.size());
  for (std::size_t a = 0; a < groups.size(); ++a) {
    norms.add(groups[a], groups[a], 1.0);
    for (std::size_t b = 0; b < a; ++b) {
      norms.add(groups[a], groups[b], 2.0);
    }
    if (norms.is_too_much()) {
      return std::nullopt;
    }
  }
  return norms.sums();
}
