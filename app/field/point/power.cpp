#include "app/field/point/power.hpp"

#include <cmath>
#include <limits>

#include "app/field/point/angular.hpp"

namespace {

// A number of twice the precision: the sum of two doubles, of which the first is its value rounded.
struct Twofold {
  double high, low;
};

Twofold times(const Twofold& a, double b) {
  const double product = a.high * b;
  const double error = product_error(a.high, b, product) + a.low * b;
  const double high = product + error;
  return {high, (product - high) + error};
}

// For a base and results that are far from the ends of the range of doubles.
Twofold whole_power(double base, unsigned exponent) {
  Twofold power = {1.0, 0.0};
  for (unsigned i = 0; i < exponent; ++i) {
    power = times(power, base);
  }
  return power;
}

// a · 2^exponent, rounded once.
double scaled(const Twofold& a, int exponent) {
  const double result = std::ldexp(a.high, exponent);
  // Only a subnormal result lacks something. Where that is half its unit, the low part decides.
  const double lost = a.high - std::ldexp(result, -exponent);
  const double smallest = std::numeric_limits<double>::denorm_min();
  const bool is_tie = std::fabs(lost) == std::ldexp(smallest, -exponent - 1);
  return is_tie && lost * a.low > 0.0 ? result + std::copysign(smallest, lost) : result;
}

// One step of Newton's method from a root that is good to a few units in its last place.
double fourth_root(const Twofold& a) {
  const double root = std::sqrt(std::sqrt(a.high));
  const double square = root * root, square_error = product_error(root, root, square);
  const double fourth = square * square;
  const double fourth_error = product_error(square, square, fourth) + 2.0 * square * square_error;
  return root + ((a.high - fourth) - fourth_error + a.low) / (4.0 * square * root);
}

}  // namespace

double power_whole(double base, unsigned exponent) {
  if (!std::isfinite(base)) {
    return base;
  }
  int scale;
  const double fraction = std::frexp(base, &scale);
  return scaled(whole_power(fraction, exponent), scale * static_cast<int>(exponent));
}

double power_quarters(double base, unsigned count) {
  if (base == 0.0 || !std::isfinite(base)) {
    return std::fabs(base);
  }
  int scale;
  const double fraction = std::frexp(base, &scale);
  const int rest = scale & 3;  // the scale is 4·quarter + rest
  const int quarter = (scale - rest) / 4;
  const double root = fourth_root(whole_power(std::ldexp(fraction, rest), count));
  return std::ldexp(root, quarter * static_cast<int>(count));
}
