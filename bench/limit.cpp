// Compiled once for each number of lanes, ORVA_LANES.

#include "limit.hpp"

#include <ctime>

#include "app/field/point/pack.hpp"

namespace {

struct Tag;
using Real = Pack<Tag, ORVA_LANES>;

}  // namespace

template <>
double limit_pairs_per_second<ORVA_LANES>() {
  constexpr unsigned rounds = 4'000'000;
  Real a = 1.0, b = 2.0, c = 3.0, d = 4.0, e = 5.0, f = 6.0, g = 7.0, h = 8.0;
  Real factor = 1.0 + 1e-9, value = 1e-12;
  const std::clock_t start = std::clock();
  for (unsigned i = 0; i < rounds; ++i) {
    // Every product is formed anew.
    const auto add = [&](Real& sum) {
      sum = sum + factor * value;
      asm volatile("" : "+x"(factor.lane));
    };
    add(a), add(b), add(c), add(d), add(e), add(f), add(g), add(h);
  }
  const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
  const volatile double used = lowest(a + b + c + d + e + f + g + h);
  static_cast<void>(used);
  return 1.0 * rounds * 8 * Real::lanes / seconds;
}
