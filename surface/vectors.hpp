#pragma once

#include <cmath>

#include "app/field/fields.hpp"

// Points and vectors in space, bohr.

inline Point operator+(const Point& a, const Point& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
inline Point operator-(const Point& a, const Point& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
inline Point operator*(double s, const Point& a) { return {s * a[0], s * a[1], s * a[2]}; }

inline double dot(const Point& a, const Point& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
inline Point cross(const Point& a, const Point& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
inline double length(const Point& a) { return std::sqrt(dot(a, a)); }
inline double distance(const Point& a, const Point& b) { return length(a - b); }

/// A vector of length 1 in the direction of `a`, or of `otherwise` where `a` has no length.
inline Point unit(const Point& a, const Point& otherwise) {
  const double size = length(a);
  return size > 0.0 ? (1.0 / size) * a : otherwise;
}
