#pragma once

#include <array>
#include <cstddef>
#include <string_view>
#include <tuple>
#include <utility>

#include "app/model/shell.hpp"

// What the angular factors of all shells are made of. A factor is a function of the point relative to the
// centre (x, y, z in bohr), written once over a number type: one double or a pack, polynomials
// (angular_polynomial.hpp) or counts of roundings (angular_rounding.hpp).

template <class Real>
using Vector = std::array<Real, 3>;

/// Product of coordinates, one for each axis number given (0 x, 1 y, 2 z), from the left; 1 if there is none.
template <std::size_t Degree>
struct AxisProduct {
  std::array<unsigned char, Degree> axes;

  template <class Real>
  constexpr Real operator()(const Vector<Real>& r) const {
    if constexpr (Degree == 0) {
      return 1.0;
    } else {
      Real product = r[axes[0]];
      for (std::size_t i = 1; i < Degree; ++i) {
        product = product * r[axes[i]];
      }
      return product;
    }
  }
};

/// The product that a monomial such as "xxz" names.
template <std::size_t Degree>
constexpr AxisProduct<Degree> axis_product(std::string_view monomial) {
  AxisProduct<Degree> product{};
  for (std::size_t i = 0; i < Degree; ++i) {
    product.axes[i] = static_cast<unsigned char>(monomial[i] - 'x');
  }
  return product;
}

/// The angular factors of the Cartesian shell of angular momentum L, in the order of its components.
template <unsigned L>
inline constexpr auto cartesian_factors = [] {
  std::array<AxisProduct<L>, shell_function_count(L)> factors{};
  for (unsigned component = 0; component < factors.size(); ++component) {
    factors[component] = axis_product<L>(shell_monomial(L, component));
  }
  return factors;
}();

/// What the rounded product a·b lacks, exactly (T. J. Dekker, Numer. Math. 18, 224, 1971).
template <class Real>
Real product_error(const Real& a, const Real& b, const Real& product) {
  const auto high_half = [](const Real& v) {
    const Real scaled = 134217729.0 * v;  // 2^27 + 1
    return scaled - (scaled - v);
  };
  const Real a_high = high_half(a), b_high = high_half(b);
  const Real a_low = a - a_high, b_low = b - b_high;
  return ((a_high * b_high - product) + a_high * b_low + a_low * b_high) + a_low * b_low;
}

/// v³ rounded once, as pow(v, 3.0) gives it.
template <class Real>
Real cubed(const Real& v) {
  const Real square = v * v;
  const Real square_error = product_error(v, v, square);
  const Real cube = square * v;
  return cube + (product_error(square, v, cube) + square_error * v);
}

/// Calls `use` with the factor of a component out of a tuple or array of all components' factors; not at all
/// for a component out of range. The one factor of an s shell is taken for whatever component.
template <class Factors, class Use>
constexpr void angular_select(const Factors& factors, int component, Use use) {
  if constexpr (std::tuple_size_v<Factors> == 1) {
    component = 0;
  }
  [&]<std::size_t... I>(std::index_sequence<I...>) {
    ((component == static_cast<int>(I) ? use(std::get<I>(factors)) : void()), ...);
  }
  (std::make_index_sequence<std::tuple_size_v<Factors>>{});
}
