#pragma once

#include <vector>

#include "surface/mesh.hpp"
#include "surface/shares.hpp"

// The minima and maxima of the potential on the surface.

struct Extremum {
  bool is_maximum;
  double value;                      // hartree
  Point position;                    // bohr
  unsigned atom;                     // to whose share it belongs, from 0
  std::array<double, 2> curvatures;  // along the surface, hartree/bohr^2, the smaller first
};

struct Extrema {
  std::vector<Extremum> list;  // minima, then maxima; each by value, atom and place
  unsigned flat_count;         // vertices from which none was reached
};

/// Goes from every vertex that is lower (higher) than its neighbours downhill (uphill) along the surface, to
/// where the gradient along it is zero and both curvatures are positive (negative).
Extrema extrema_of(const Mesh& mesh, const Owners& owners, Fields* fields, double level);
