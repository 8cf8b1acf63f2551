#pragma once

#include <algorithm>

#include "app/field/point/prim.hpp"

/// Roundings one after the other. As the number type of the angular factors it turns a formula into how often
/// a term of it is rounded at most on its way to the result. Products with constants count, even exact ones.
struct AngularRounding {
  unsigned count = 0;

  constexpr AngularRounding() = default;
  constexpr AngularRounding(double /*constant*/) {}

  static constexpr AngularRounding of(unsigned count) {
    AngularRounding rounding;
    rounding.count = count;
    return rounding;
  }
  friend constexpr AngularRounding operator+(AngularRounding a, AngularRounding b) {
    return of(std::max(a.count, b.count) + 1);
  }
  friend constexpr AngularRounding operator-(AngularRounding a, AngularRounding b) { return a + b; }
  friend constexpr AngularRounding operator*(AngularRounding a, AngularRounding b) {
    return of(a.count + b.count + 1);
  }
  friend constexpr AngularRounding cubed(AngularRounding a) { return of(3 * a.count + 1); }
};

/// Of the factor that has most, over all shells.
constexpr unsigned angular_rounding_max() {
  unsigned most = 0;
  for (int type = -shell_max; type <= shell_max; ++type) {
    for (unsigned component = 0; component < shell_function_count(type); ++component) {
      prim_shell(type, [&](const auto& factors) {
        angular_select(factors, static_cast<int>(component), [&](const auto& factor) {
          most = std::max(most, factor(Vector<AngularRounding>{}).count);
        });
      });
    }
  }
  return most;
}
