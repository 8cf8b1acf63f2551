#pragma once

#include <span>
#include <vector>

#include "app/field/fields.hpp"
#include "app/model/progress.hpp"
#include "surface/march.hpp"

// The surface as facets between points that lie on it, by exact values of the fields.

struct Mesh {
  std::vector<Point> points;      // bohr
  std::vector<double> potential;  // there, hartree
  std::vector<Facet> facets;
};

/// A mesh, and its quarters: each facet cut in four at the middles of its edges, which are put on the
/// surface. Its first points are those of the coarse mesh.
struct Meshes {
  Mesh coarse, fine;
  std::vector<std::array<unsigned, 2>> middles;  // ends of the edges whose middles are the other points
  bool is_resolved;  // false if one of them is far from the surface: facets span a gap of the density
};

/// Moves each cut along its edge until the density is within 10^-5 of the level, relatively, then makes the
/// quarters. A cut that cannot be brought there ends the run: the density jumps.
Meshes mesh_make(const Lattice& lattice, March march, Fields* fields, double level, Progress* progress);
