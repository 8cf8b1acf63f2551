#pragma once

#include <span>
#include <vector>

#include "app/field/fields.hpp"
#include "app/model/progress.hpp"
#include "surface/march.hpp"

// The surface as facets between points that lie on it, by exact values of the fields.

/// Facets, and their quarters: each facet cut in four at the middles of its edges, which lie on the surface,
/// too.
struct Mesh {
  std::vector<Point> points;      // bohr: the vertices, then the middles of edges
  std::vector<double> potential;  // there, hartree
  std::size_t vertex_count;
  std::vector<std::array<unsigned, 2>> edges;  // the ends of each, in the order of their middles
  std::vector<Facet> facets;
  std::vector<Facet> middles;  // of each facet's edges: from its first vertex to its second, and on
  bool is_resolved;  // false if many middles are far from the surface: facets span a gap of the density

  /// Those at the vertices, and the one between the middles.
  std::array<Facet, 4> quarters(std::size_t facet) const {
    const auto& [a, b, c] = facets[facet];
    const auto& [ab, bc, ca] = middles[facet];
    return {{{a, ab, ca}, {b, bc, ab}, {c, ca, bc}, {ab, bc, ca}}};
  }
};

/// Moves each cut along its edge until the density is within 10^-5 of the level, relatively, then makes the
/// quarters. A cut that cannot be brought there ends the run: the density jumps.
Mesh mesh_make(const Lattice& lattice, March march, Fields* fields, double level, Progress* progress);
