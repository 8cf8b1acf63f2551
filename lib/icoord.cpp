#include "icoord.hpp"

#include <array>
#include <numbers>

#include "distance.hpp"
#include "vec_oper.hpp"

namespace {

double to_degrees(double radians) { return radians * 180.0 / std::numbers::pi; }

std::array<double, 3> arrow(const double* from, const double* to) {
  std::array<double, 3> components;
  vec_fsub(components.data(), to, from, 3);
  return components;
}

}  // namespace

double icoord_bond(const double* a, const double* b) { return dist_r(a, b, 3); }

double icoord_angle(const double* a, const double* b, const double* c) {
  return to_degrees(vec_fangle(arrow(b, a).data(), arrow(b, c).data(), 3));
}

double icoord_dihedral(const double* a, const double* b, const double* c, const double* d) {
  const auto axis = arrow(b, c);
  double p[3];  // normal of the plane a, b, c
  double q[3];  // normal of the plane b, c, d
  vec_fprod_vector(arrow(b, a).data(), axis.data(), p);
  vec_fprod_vector(arrow(c, b).data(), arrow(c, d).data(), q);
  const double sign = vec_fprod_mixed(axis.data(), p, q) < 0.0 ? -1.0 : 1.0;
  return to_degrees(sign * vec_fangle(p, q, 3));
}
