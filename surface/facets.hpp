#pragma once

#include <array>
#include <vector>

#include "surface/owners.hpp"
#include "surface/vectors.hpp"

// Integrals over one facet, and over the parts of its owners.

/// Of 1, and of the potential's difference to a reference value and its square.
struct Integrals {
  double area = 0.0, first = 0.0, second = 0.0;  // bohr^2, times hartree, times hartree^2
};

/// A curved facet by its vertices and the middles of its edges behind them, each across the vertex of its
/// number: places and values are quadratic between these.
struct Patch {
  std::array<Point, 6> points;
};

/// A flat facet.
struct FacetPlace {
  std::array<Point, 3> vertices;
  std::array<double, 3> values;  // of the potential to the reference value, linear between the vertices
  std::array<unsigned, 3> owners;
};

/// What one owner has of a facet, with the values at corners that lie on its border to others.
struct FacetPart {
  unsigned owner;
  Integrals integrals;
  unsigned border_count;
  std::array<double, 5> border_values;
};

inline void add(const Integrals& part, Integrals* sum) {
  sum->area += part.area;
  sum->first += part.first;
  sum->second += part.second;
}

/// Over a triangle with linear values at its corners.
inline Integrals integrals_of(double area, double a, double b, double c) {
  const double sum = a + b + c;
  return {area, area * sum / 3.0, area * (sum * sum + a * a + b * b + c * c) / 12.0};
}

/// A vector across the facet, outward, as long as twice its area.
inline Point facet_twice_area(const std::array<Point, 3>& vertices) {
  return cross(vertices[1] - vertices[0], vertices[2] - vertices[0]);
}

/// Adds the parts of all owners of a quarter of a patch: 0 to 2 at that vertex, 3
/// between the middles. The border is where the patch is in doubt, not the flat facet.
void facet_share(const FacetPlace& facet, const Patch& patch, unsigned quarter, const Owners& owners,
                 std::vector<FacetPart>* parts);
