#include "support.hpp"

#include <limits>
#include <map>
#include <random>

#include "exponential.hpp"
#include "norm.hpp"
#include "prim.hpp"

namespace {

struct Tag;
using Lanes = Pack<Tag, 2>;

// A function of one primitive, with coefficient 1, on an atom of its own.
struct Single {
  Atom atom{};
  double exponent, coefficient = 1.0;
  BasisFunction function{};

  Single(int type, int component, double exponent_, Vector<double> centre = {}) : exponent(exponent_) {
    std::ranges::copy(centre, atom.coord);
    const auto code = static_cast<short>(type);
    function = {code, static_cast<short>(component), code, 1, 0, &exponent, &coefficient, &atom};
  }
  double norm() const { return norm_fce(&function, 0); }
  double at(double x, double y, double z) const { return prim_fce(&function, 0, std::data({x, y, z})); }
  // The value without normalization and exponential.
  double angular(double x, double y, double z) const {
    return at(x, y, z) / (norm() * prim_fce_exp(&function, 0, std::data({x, y, z})));
  }
};

const std::map<int, int> component_counts = {{0, 1},  {1, 3},  {2, 6},  {3, 10},
                                             {4, 15}, {-2, 5}, {-3, 7}, {-4, 9}};

}  // namespace

TEST(Norm, HasItsKnownValuesAndScalesWithTheExponent) {
  const std::tuple<int, int, double> rows[] = {
      {0, 0, 0.712705},  {1, 2, 1.425411},  {2, 2, 1.645923},  {2, 3, 2.850822},  {2, 7, 2.850822},
      {2, -1, 1.645923}, {-2, 0, 0.822961}, {-2, 4, 2.850822}, {-2, 3, 1.425411}, {-2, 5, 0.0},
      {-3, 7, 0.0},      {-4, 9, 0.0},      {-4, -1, 0.0},     {-1, 0, 1.0},      {5, 3, 1.0}};
  for (const auto& [type, component, expected] : rows) {
    EXPECT_NEAR(Single(type, component, 1.0).norm(), expected, 1e-6) << type << ' ' << component;
    const double power = type == -1 || type == 5 ? 0.0 : 0.25 * (2 * std::abs(type) + 3);
    EXPECT_NEAR(Single(type, component, 2.0).norm(), expected * std::pow(2.0, power), 1e-5);
  }
}

// The trapezoidal rule is exact to rounding for a Gaussian that has died out at the border.
TEST(Primitive, SquareOfEveryComponentIntegratesToOne) {
  constexpr double step = 0.4;
  for (const auto& [type, count] : component_counts) {
    for (int component = 0; component < count; ++component) {
      const Single single(type, component, 0.6, {0.1, -0.2, 0.05});
      double integral = 0.0;
      for (int i = 0; i < 31 * 31 * 31; ++i) {
        const double x = step * (i % 31 - 15), y = step * (i / 31 % 31 - 15), z = step * (i / 961 - 15);
        integral += std::pow(single.at(x, y, z), 2) * step * step * step;
      }
      const double others[] = {280.0 / 297.0, 1.0, 1.0, 14.0 / 17.0};
      EXPECT_NEAR(integral, type == -4 && component < 4 ? others[component] : 1.0, 1e-8) << type << component;
    }
  }
}

TEST(Primitive, PurePolynomialsAreHarmonic) {
  // Second derivative, exact for polynomials up to degree 5.
  constexpr double weights[] = {-1.0 / 12, 4.0 / 3, -2.5, 4.0 / 3, -1.0 / 12};
  for (const int type : {-2, -3, -4}) {
    for (int component = 0; component < component_counts.at(type); ++component) {
      const Single single(type, component, 0.01);
      double laplacian = 0.0;
      for (unsigned axis = 0; axis < 3; ++axis) {
        for (int offset = -2; offset <= 2; ++offset) {
          double point[3] = {1.25, -0.75, 1.5};
          point[axis] += 0.5 * offset;
          laplacian += weights[offset + 2] * single.angular(point[0], point[1], point[2]) / 0.25;
        }
      }
      EXPECT_NEAR(laplacian, 0.0, 1e-11) << type << ' ' << component;
    }
  }
}

TEST(Primitive, CartesianComponentsFollowTheTables) {
  const std::map<int, std::vector<std::string>> tables = {
      {1, {"x", "y", "z"}},
      {2, {"xx", "yy", "zz", "xy", "xz", "yz"}},
      {3, {"xxx", "yyy", "zzz", "xyy", "xxy", "xxz", "xzz", "yzz", "yyz", "xyz"}},
      {4,
       {"xxxx", "yyyy", "zzzz", "xxxy", "xxxz", "xyyy", "yyyz", "xzzz", "yzzz", "xxyy", "xxzz", "yyzz",
        "xxyz", "xyyz", "xyzz"}}};
  for (const auto& [type, names] : tables) {
    for (std::size_t component = 0; component < names.size(); ++component) {
      const Single single(type, static_cast<int>(component), 0.5, {1.0, 1.0, 1.0});
      double expected = 1.0;
      for (const char axis : names[component]) {
        expected *= axis == 'x' ? 2.0 : axis == 'y' ? -3.0 : 5.0;
      }
      EXPECT_NEAR(single.angular(3.0, -2.0, 6.0), expected, 1e-12 * std::fabs(expected)) << names[component];
    }
  }
  const Single d(2, 4, 1.0), f(3, 8, 1.0), g(4, 13, 1.0), none(4, 15, 1.0);
  unsigned a = 9, b = 9, c = 9;
  dfce_d6_id(&d.function, &a, &b);
  EXPECT_EQ(std::tie(a, b), std::tuple(0U, 2U));
  ffce_f10_id(&f.function, &a, &b, &c);
  EXPECT_EQ(std::tie(a, b, c), std::tuple(1U, 1U, 2U));
  gfce_g15_id(&g.function, &a, &b, &c), gfce_g15_id(&none.function, &a, &b, &c);
  EXPECT_EQ(std::tie(a, b, c), std::tuple(1U, 2U, 1U)) << "untouched out of range";
}

TEST(Primitive, PureComponentsFollowTheTables) {
  using Evaluator = double (*)(const BasisFunction*, unsigned, const double*);
  const double point[] = {1, 2, 3};
  const std::tuple<int, int, Evaluator, double> rows[] = {
      {-2, 0, dfce_d5_zzrr, 13},     {-2, 1, dfce_d5_xy, 3},
      {-2, 2, dfce_d5_xy, 6},        {-2, 3, dfce_d5_xxyy, -3},
      {-2, 4, dfce_d5_xy, 2},        {-2, 0, dfce_d5_xy, 0},
      {-3, 0, ffce_f7_z3r2z, 9},     {-3, 1, ffce_f7_z2xr2x, 31},
      {-3, 2, ffce_f7_z2xr2x, 62},   {-3, 3, ffce_f7_x2zy2z, -9},
      {-3, 4, ffce_f7_xyz, 6},       {-3, 5, ffce_f7_x3y2x, -11},
      {-3, 6, ffce_f7_x3y2x, -2},    {-3, 4, ffce_f7_x3y2x, 0},
      {-3, 6, ffce_f7_z2xr2x, 0},    {-4, 0, gfce_g9_z4z2r2r4, -357},
      {-4, 1, gfce_g9_z3xr2xz, 63},  {-4, 2, gfce_g9_z3yr2yz, 126},
      {-4, 3, gfce_g9_x2y2z2, -147}, {-4, 4, gfce_g9_xyz2xyr2, 98},
      {-4, 5, gfce_g9_x3zy2xz, -33}, {-4, 6, gfce_g9_x2yzy3z, -6},
      {-4, 7, gfce_g9_x4y4x2y2, -7}, {-4, 8, gfce_g9_x3yy3x, -6},
      {-2, 5, dfce_d5, 0},           {-3, 7, ffce_f7, 0},
      {-4, 9, gfce_g9, 0},           {-1, 0, prim_fce, 0}};
  for (const auto& [type, component, evaluator, factor] : rows) {
    const Single single(type, component, 0.25);
    const double expected = factor * single.norm() * prim_fce_exp(&single.function, 0, point);
    const double value = evaluator(&single.function, 0, point);
    EXPECT_NEAR(value, expected, 1e-13 * std::fabs(expected)) << type << ' ' << component;
    EXPECT_TRUE(factor == 0 || value == single.at(1, 2, 3)) << type << ' ' << component;
  }
}

TEST(Primitive, CubeIsRoundedAsPowDoesAlmostAlways) {
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> number(-20.0, 20.0);
  int different = 0;
  for (int i = 0; i < 100000; ++i) {
    const double v = number(random);
    different += cubed(v) != std::pow(v, 3.0);
    ASSERT_NEAR(cubed(v), std::pow(v, 3.0), 2.3e-16 * std::fabs(v * v * v));
  }
  EXPECT_LT(different, 300);
}

TEST(Exponential, ErrsByLessThanOneUnitInTheLastPlace) {
  std::mt19937_64 random(2);
  for (const double lowest : {-745.2, -709.0, -40.0, -1.0, -1e-8, 709.7}) {
    std::uniform_real_distribution<double> number(std::min(lowest, 0.0), std::max(lowest, 0.0));
    double worst = 0.0;
    for (int i = 0; i < 300000; ++i) {
      const double x = number(random);
      const double value = exponential(x);
      const long double exact = std::exp(static_cast<long double>(x));
      int exponent;
      std::frexp(static_cast<double>(exact), &exponent);
      const double unit = std::ldexp(1.0, std::max(exponent, -1021) - 53);
      worst = std::max(worst, static_cast<double>(std::fabs(value - exact) / unit));
      ASSERT_EQ(bits_of(exponential(Lanes(x)))[1], bits_of(value)) << x;
      if (std::fabs(x) <= 708.0) {
        ASSERT_EQ(bits_of(exponential_normal(Lanes(x)))[1], bits_of(value)) << x;
      }
    }
    EXPECT_LT(worst, 1.0) << lowest;
  }
}

TEST(Exponential, IsExactAtTheEndsOfItsRange) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  const std::pair<double, double> rows[] = {{0.0, 1.0},         {-0.0, 1.0},       {-745.13, 5e-324},
                                            {-745.14, 0.0},     {-1e300, 0.0},     {-infinity, 0.0},
                                            {709.79, infinity}, {1e300, infinity}, {infinity, infinity}};
  for (const auto& [x, expected] : rows) {
    EXPECT_EQ(exponential(x), expected) << x;
  }
  EXPECT_TRUE(std::isnan(exponential(std::numeric_limits<double>::quiet_NaN())));
  EXPECT_LT(exponential(709.78), infinity);
}
