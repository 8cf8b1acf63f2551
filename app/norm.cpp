#include "norm.hpp"

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <span>

namespace {

constexpr double pi = 3.141592653589793;
constexpr double pi_cubed = 31.006276680299816;

// M, and D·π³ as a double.
struct Norm {
  double m;
  double divisor;
};

constexpr Norm make(double m, double d) { return {m, d * pi_cubed}; }

// The classes of a Cartesian shell follow each other: a class holds the components up to its last.
struct NormClass {
  int last;
  Norm norm;
};

constexpr int all = std::numeric_limits<int>::max();

constexpr std::array d6_classes = {NormClass{2, make(2048, 9)}, NormClass{all, make(2048, 1)}};
constexpr std::array f10_classes = {NormClass{2, make(32768, 225)}, NormClass{8, make(32768, 9)},
                                    NormClass{all, make(32768, 1)}};
constexpr std::array g15_classes = {NormClass{2, make(524288, 11025)}, NormClass{8, make(524288, 225)},
                                    NormClass{11, make(524288, 81)}, NormClass{all, make(524288, 9)}};

constexpr std::array d5_norms = {make(128, 9), make(2048, 1), make(2048, 1), make(128, 1), make(2048, 1)};
constexpr std::array f7_norms = {make(2048, 225), make(512, 25), make(512, 25), make(2048, 1),
                                 make(32768, 1),  make(512, 9),  make(512, 9)};
// The squares of components 0 and 3 integrate to 280/297 and 14/17, those of all others to 1.
constexpr std::array g9_norms = {make(8192, 793881), make(8192, 441),  make(8192, 441),
                                 make(8192, 2601),   make(32768, 441), make(8192, 9),
                                 make(8192, 9),      make(128, 9),     make(32768, 9)};
static_assert(d5_norms.size() == 5 && f7_norms.size() == 7 && g9_norms.size() == 9);
static_assert(g9_norms[0].divisor == 24615293.937233098 && g9_norms[3].divisor == 80647.32564545982 &&
              g15_classes[0].norm.divisor == 341844.20040030545 && f7_norms[0].divisor == 6976.412253067459);

double norm_of(const Norm& norm, double power, double exponent) {
  return std::pow(norm.m * std::pow(exponent, power) / norm.divisor, 0.25);
}

double cartesian(std::span<const NormClass> classes, int component, double power, double exponent) {
  std::size_t at = 0;
  while (component > classes[at].last) {
    ++at;
  }
  return norm_of(classes[at].norm, power, exponent);
}

double pure(std::span<const Norm> norms, int component, double power, double exponent) {
  if (component < 0 || component >= static_cast<int>(norms.size())) {
    return 0.0;
  }
  return norm_of(norms[static_cast<std::size_t>(component)], power, exponent);
}

}  // namespace

double norm_fce_s(double exponent) { return std::pow((exponent + exponent) / pi, 0.75); }
double norm_fce_p(double exponent) { return norm_of(make(128, 1), 5.0, exponent); }
double norm_fce_d6(int component, double exponent) { return cartesian(d6_classes, component, 7.0, exponent); }
double norm_fce_d5(int component, double exponent) { return pure(d5_norms, component, 7.0, exponent); }
double norm_fce_f10(int component, double exponent) {
  return cartesian(f10_classes, component, 9.0, exponent);
}
double norm_fce_f7(int component, double exponent) { return pure(f7_norms, component, 9.0, exponent); }
double norm_fce_g15(int component, double exponent) {
  return cartesian(g15_classes, component, 11.0, exponent);
}
double norm_fce_g9(int component, double exponent) { return pure(g9_norms, component, 11.0, exponent); }

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
