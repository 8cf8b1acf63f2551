#pragma once

#include <array>
#include <vector>

#include "surface/owners.hpp"

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

Integrals facet_integrals(const FacetPlace& facet);

/// Of the pyramid over the facet with its tip at the origin, negative if that looks at its outer side,
/// bohr^3.
double facet_volume(const FacetPlace& facet, const Point& origin);

/// Adds the parts of all owners, those of the vertices, of a quarter of a patch: 0 to 2 at that vertex, 3
/// between the middles. The border is where the patch is in doubt, not the flat facet.
void facet_share(const FacetPlace& facet, const Patch& patch, unsigned quarter, const Owners& owners,
                 std::vector<FacetPart>* parts);
