#include "app/field/point/norm.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <numbers>

#include "app/field/point/power.hpp"
#include "app/model/shell.hpp"

namespace {

// M, and D·π³ as a double.
struct Norm {
  double m;
  double divisor;
};

constexpr Norm make(double m, double d) {
  constexpr double pi_cubed = std::numbers::pi * std::numbers::pi * std::numbers::pi;
  return {m, d * pi_cubed};
}

// Of the monomial x^lx·y^ly·z^lz, l = lx + ly + lz: M = 2^(4l+3), D = ((2lx-1)!!·(2ly-1)!!·(2lz-1)!!)².
constexpr Norm norm_of_monomial(std::string_view monomial) {
  double root = 1.0;
  for (const char axis : {'x', 'y', 'z'}) {
    for (auto power = std::ranges::count(monomial, axis); power > 0; --power) {
      root *= static_cast<double>(2 * power - 1);
    }
  }
  return make(static_cast<double>(1U << (4 * monomial.size() + 3)), root * root);
}

template <unsigned L>
constexpr auto cartesian_norms = [] {
  std::array<Norm, shell_function_count(L)> norms{};
  for (unsigned component = 0; component < norms.size(); ++component) {
    norms[component] = norm_of_monomial(shell_monomial(L, component));
  }
  return norms;
}();

constexpr std::array d5_norms = {make(128, 9), make(2048, 1), make(2048, 1), make(128, 1), make(2048, 1)};
constexpr std::array f7_norms = {make(2048, 225), make(512, 25), make(512, 25), make(2048, 1),
                                 make(32768, 1),  make(512, 9),  make(512, 9)};
// The squares of components 0 and 3 integrate to 280/297 and 14/17, those of all others to 1.
constexpr std::array g9_norms = {make(8192, 793881), make(8192, 441),  make(8192, 441),
                                 make(8192, 2601),   make(32768, 441), make(8192, 9),
                                 make(8192, 9),      make(128, 9),     make(32768, 9)};
static_assert(d5_norms.size() == shell_function_count(-2) && f7_norms.size() == shell_function_count(-3) &&
              g9_norms.size() == shell_function_count(-4));

// To the last bit, in every compiler.
constexpr bool is(const Norm& norm, double m, double divisor) {
  return norm.m == m && norm.divisor == divisor;
}
static_assert(is(cartesian_norms<1>[2], 128, 31.006276680299816) &&
              is(cartesian_norms<2>[0], 2048, 279.05649012269834) &&
              is(cartesian_norms<2>[5], 2048, 31.006276680299816) &&
              is(cartesian_norms<3>[2], 32768, 6976.412253067459) &&
              is(cartesian_norms<3>[8], 32768, 279.05649012269834) &&
              is(cartesian_norms<3>[9], 32768, 31.006276680299816) &&
              is(cartesian_norms<4>[2], 524288, 341844.20040030545) &&
              is(cartesian_norms<4>[8], 524288, 6976.412253067459) &&
              is(cartesian_norms<4>[11], 524288, 2511.508411104285) &&
              is(cartesian_norms<4>[14], 524288, 279.05649012269834) &&
              is(g9_norms[0], 8192, 24615293.937233098) && is(g9_norms[3], 8192, 80647.32564545982));

double norm_of(const Norm& norm, unsigned l, double exponent) {
  return power_quarters(norm.m * power_whole(exponent, 2 * l + 3) / norm.divisor, 1);
}

template <unsigned L>
double cartesian(int component, double exponent) {
  constexpr const auto& norms = cartesian_norms<L>;
  const int nearest = std::clamp(component, 0, static_cast<int>(norms.size()) - 1);
  return norm_of(norms[static_cast<std::size_t>(nearest)], L, exponent);
}

template <std::size_t Count>
double pure(const std::array<Norm, Count>& norms, int component, double exponent) {
  if (component < 0 || component >= static_cast<int>(Count)) {
    return 0.0;
  }
  return norm_of(norms[static_cast<std::size_t>(component)], (Count - 1) / 2, exponent);
}

}  // namespace

double norm_fce_s(double exponent) { return power_quarters((exponent + exponent) / std::numbers::pi, 3); }
double norm_fce_p(double exponent) { return cartesian<1>(0, exponent); }
double norm_fce_d6(int component, double exponent) { return cartesian<2>(component, exponent); }
double norm_fce_d5(int component, double exponent) { return pure(d5_norms, component, exponent); }
double norm_fce_f10(int component, double exponent) { return cartesian<3>(component, exponent); }
double norm_fce_f7(int component, double exponent) { return pure(f7_norms, component, exponent); }
double norm_fce_g15(int component, double exponent) { return cartesian<4>(component, exponent); }
double norm_fce_g9(int component, double exponent) { return pure(g9_norms, component, exponent); }

double norm_fce(const BasisFunction* function, unsigned i) {
  const double exponent = function->exponents[i];
  const int component = function->component;
  switch (function->type) {
    case 0:
      return norm_fce_s(exponent);
    case 1:
      return norm_fce_p(exponent);
    case 2:
      return norm_fce_d6(component, exponent);
    case 3:
      return norm_fce_f10(component, exponent);
    case 4:
      return norm_fce_g15(component, exponent);
    case -2:
      return norm_fce_d5(component, exponent);
    case -3:
      return norm_fce_f7(component, exponent);
    case -4:
      return norm_fce_g9(component, exponent);
    default:
      return 1.0;
  }
}
