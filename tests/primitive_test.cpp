#include "support.hpp"

#include <map>

#include "app/field/point/exponential.hpp"
#include "app/field/point/norm.hpp"
#include "app/field/point/power.hpp"
#include "app/field/point/prim.hpp"

namespace {

using Evaluator = double (*)(const BasisFunction*, unsigned, const double*);

struct Tag;
using Lanes = Pack<Tag, 2>;

// How far a value is from the exact one, in units of its last place.
double units_off(double value, long double exact) {
  int exponent;
  std::frexp(static_cast<double>(exact), &exponent);
  return static_cast<double>(std::fabs(value - exact) / std::ldexp(1.0L, std::max(exponent, -1021) - 53));
}

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
  double at(const double* point) const { return prim_fce(&function, 0, point); }
  // The value without normalization and exponential.
  double angular(const double* point) const {
    return at(point) / (norm() * prim_fce_exp(&function, 0, point));
  }
};

// Axes, or powers of g functions.
using Id = std::array<unsigned, 3>;
constexpr Id no_id = {9, 9, 9};

Id id_of(const BasisFunction& function) {
  Id id = no_id;
  auto& [a, b, c] = id;
  function.type == 1   ? void(a = static_cast<unsigned>(function.component))
  : function.type == 2 ? dfce_d6_id(&function, &a, &b)
  : function.type == 3 ? ffce_f10_id(&function, &a, &b, &c)
                       : gfce_g15_id(&function, &a, &b, &c);
  return id;
}

std::string name_of(int type, int component) {
  return formatted("shell type %d, ", type) + formatted("component %d", component);
}

const std::map<int, int> component_counts = {{0, 1},  {1, 3},  {2, 6},  {3, 10},
                                             {4, 15}, {-2, 5}, {-3, 7}, {-4, 9}};

}  // namespace

TEST(Power, IsRoundedOnce) {
  std::mt19937_64 random(3);
  for (int i = 0; i < 100000; ++i) {
    const double base = std::ldexp(from_bits(random() >> 12 | bits_of(1.0), 0.0),
                                   static_cast<int>(random() % 300) - 200);  // some results are subnormal
    const auto exact = [&](double exponent) { return std::pow(static_cast<long double>(base), exponent); };
    const unsigned whole = 5 + 2 * static_cast<unsigned>(i % 4),
                   quarters = 1 + 2 * static_cast<unsigned>(i % 2);
    if (exact(whole) < std::numeric_limits<double>::max()) {
      ASSERT_LT(units_off(power_whole(base, whole), exact(whole)), 0.501)
          << formatted("%a", base) << " to the power " << whole;
    }
    ASSERT_LT(units_off(cubed(base), exact(3.0)), 0.501) << formatted("%a", base);
    ASSERT_LT(units_off(power_quarters(base, quarters), exact(0.25 * quarters)), 0.501)
        << formatted("%a", base) << " to the power of quarters " << quarters;
  }
  EXPECT_EQ(power_whole(-2.0, 5), -32.0);
  EXPECT_TRUE(std::isnan(power_quarters(-2.0, 3)) && std::isinf(power_whole(-HUGE_VAL, 5)));
}

// Of exponents whose fifth power, or the fourth root after it, the C library rounds wrongly with or without
// fused operations. By 80 digits.
TEST(Norm, HasThePowersRoundedOnce) {
  EXPECT_EQ(norm_fce_p(302.280288), 1796.6040404440726);
  EXPECT_EQ(norm_fce_p(20.231616), 61.16152487382995);
  EXPECT_EQ(norm_fce_p(51.992014), 199.00357988272506);
}

TEST(Norm, OfComponentsAndShellsThatDoNotExist) {
  const std::tuple<int, int, double> rows[] = {
      // of d: xx and xy
      {2, 7, 2.850822}, {2, -1, 1.645923}, {-2, 5, 0.0}, {-2, -1, 0.0}, {-3, 7, 0.0},
      {-4, 9, 0.0},     {-4, -1, 0.0},     {-1, 0, 1.0}, {5, 3, 1.0},   {-5, 0, 1.0}};
  for (const auto& [type, component, expected] : rows) {
    EXPECT_NEAR(Single(type, component, 1.0).norm(), expected, 1e-6) << name_of(type, component);
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
        const int x = i % 31 - 15, y = i / 31 % 31 - 15, z = i / 961 - 15;
        const double point[] = {step * x, step * y, step * z};
        integral += std::pow(single.at(point), 2) * step * step * step;
      }
      const double others[] = {280.0 / 297.0, 1.0, 1.0, 14.0 / 17.0};
      EXPECT_NEAR(integral, type == -4 && component < 4 ? others[component] : 1.0, 1e-8)
          << name_of(type, component);
    }
  }
}

TEST(Primitive, CartesianComponentsFollowTheTables) {
  const std::tuple<int, Evaluator, std::vector<std::string>> tables[] = {
      {1, prim_fce_p, {"x", "y", "z"}},
      {2, dfce_d6, {"xx", "yy", "zz", "xy", "xz", "yz"}},
      {3, ffce_f10, {"xxx", "yyy", "zzz", "xyy", "xxy", "xxz", "xzz", "yzz", "yyz", "xyz"}},
      {4,
       gfce_g15,
       {"xxxx", "yyyy", "zzzz", "xxxy", "xxxz", "xyyy", "yyyz", "xzzz", "yzzz", "xxyy", "xxzz", "yyzz",
        "xxyz", "xyyz", "xyzz"}}};
  const double point[] = {3.0, -2.0, 6.0};
  for (const auto& [type, evaluate, names] : tables) {
    for (std::size_t component = 0; component < names.size(); ++component) {
      const Single single(type, static_cast<int>(component), 0.5, {1.0, 1.0, 1.0});
      double factor = 1.0;
      Id axes = no_id, powers = {};
      for (std::size_t i = 0; i < names[component].size(); ++i) {
        const auto axis = static_cast<unsigned>(names[component][i] - 'x');
        factor *= std::array{2.0, -3.0, 5.0}.at(axis);
        ++powers.at(axis);
        axes[i % 3] = axis;
      }
      EXPECT_EQ(id_of(single.function), type == 4 ? powers : axes) << names[component];
      EXPECT_NEAR(single.angular(point), factor, 1e-12 * std::fabs(factor)) << names[component];
      EXPECT_EQ(evaluate(&single.function, 0, point), single.at(point)) << names[component];
    }
    for (const int component : {-1, static_cast<int>(names.size())}) {
      const Single none(type, component, 0.5);
      EXPECT_EQ(evaluate(&none.function, 0, point), 0.0) << name_of(type, component);
      EXPECT_TRUE(type == 1 || id_of(none.function) == no_id) << name_of(type, component);
    }
  }
}

TEST(Primitive, PureComponentsFollowTheTables) {
  const double point[] = {1, 2, 3};
  const std::tuple<int, int, Evaluator, double> rows[] = {
      {-2, 0, dfce_d5_zzrr, 13},       {-2, 1, dfce_d5_xy, 3},        {-2, 2, dfce_d5_xy, 6},
      {-2, 3, dfce_d5_xxyy, -3},       {-2, 4, dfce_d5_xy, 2},        {-3, 0, ffce_f7_z3r2z, 9},
      {-3, 1, ffce_f7_z2xr2x, 31},     {-3, 2, ffce_f7_z2xr2x, 62},   {-3, 3, ffce_f7_x2zy2z, -9},
      {-3, 4, ffce_f7_xyz, 6},         {-3, 5, ffce_f7_x3y2x, -11},   {-3, 6, ffce_f7_x3y2x, -2},
      {-4, 0, gfce_g9_z4z2r2r4, -357}, {-4, 1, gfce_g9_z3xr2xz, 63},  {-4, 2, gfce_g9_z3yr2yz, 126},
      {-4, 3, gfce_g9_x2y2z2, -147},   {-4, 4, gfce_g9_xyz2xyr2, 98}, {-4, 5, gfce_g9_x3zy2xz, -33},
      {-4, 6, gfce_g9_x2yzy3z, -6},    {-4, 7, gfce_g9_x4y4x2y2, -7}, {-4, 8, gfce_g9_x3yy3x, -6}};
  for (const auto& [type, component, evaluate, factor] : rows) {
    const Single single(type, component, 0.25);
    EXPECT_NEAR(single.angular(point), factor, 1e-13 * std::fabs(factor)) << name_of(type, component);
    EXPECT_EQ(evaluate(&single.function, 0, point), single.at(point)) << name_of(type, component);
  }
  const std::tuple<int, int, Evaluator> zeros[] = {
      {-2, 0, dfce_d5_xy},    {-2, 3, dfce_d5_xy},    {-3, 0, ffce_f7_z2xr2x}, {-3, 3, ffce_f7_z2xr2x},
      {-3, 4, ffce_f7_x3y2x}, {-3, 7, ffce_f7_x3y2x}, {-2, 5, dfce_d5},        {-3, 7, ffce_f7},
      {-4, 9, gfce_g9},       {-4, -1, gfce_g9},      {-1, 0, prim_fce},       {5, 0, prim_fce}};
  for (const auto& [type, component, evaluate] : zeros) {
    const Single single(type, component, 0.25);
    EXPECT_EQ(evaluate(&single.function, 0, point), 0.0) << name_of(type, component);
  }
}

// Where another order would give another number.
TEST(Primitive, ProductsAndSumsAreRoundedFromTheLeft) {
  const Single p(1, 0, 0.25);
  const double x[] = {54.58, 0.0,
                      0.0};  // the exponential is the smallest number, its product with the norm 0
  EXPECT_GT(prim_fce_exp(&p.function, 0, x), 0.0);
  EXPECT_EQ(p.at(x), 0.0);
  constexpr double small = 0.66 * 0x1p-26, smaller = 0.64 * 0x1p-26;  // of both squares only the sum counts
  const Single s(0, 0, 1.0);
  const auto radial = [&](std::array<double, 3> point) { return prim_fce_exp(&s.function, 0, point.data()); };
  EXPECT_EQ(radial({1.0, small, smaller}), exponential(-1.0));
  EXPECT_EQ(radial({small, 1.0, smaller}), exponential(-1.0));
  EXPECT_EQ(radial({small, smaller, 1.0}), exponential(-1.0 - 0x1p-52));
  EXPECT_LT(exponential(-1.0 - 0x1p-52), exponential(-1.0));
}

TEST(Exponential, ErrsByLessThanOneUnitInTheLastPlace) {
  std::mt19937_64 random(2);
  for (const double lowest : {-745.2, -709.0, -40.0, -1.0, -1e-8, 709.7}) {
    std::uniform_real_distribution<double> number(std::min(lowest, 0.0), std::max(lowest, 0.0));
    double worst = 0.0;
    for (int i = 0; i < 300000; ++i) {
      const double x = number(random);
      const double value = exponential(x);
      worst = std::max(worst, units_off(value, std::exp(static_cast<long double>(x))));
      ASSERT_EQ(bits_of(exponential(Lanes(x)))[1], bits_of(value)) << x;
      if (std::fabs(x) <= 708.0) {
        ASSERT_EQ(bits_of(exponential_normal(Lanes(x)))[1], bits_of(value)) << x;
      }
    }
    EXPECT_LT(worst, 1.0) << "from " << lowest << " on";
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
