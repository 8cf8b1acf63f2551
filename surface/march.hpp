#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "app/field/fields.hpp"
#include "app/model/progress.hpp"
#include "surface/lattice.hpp"

// Marching tetrahedra: each cube of the lattice is cut into six tetrahedra around one of its diagonals, the
// same in all cubes, so that the facets of neighbours meet and the surface is closed by construction.

/// Three vertices, counter-clockwise as seen from outside.
using Facet = std::array<unsigned, 3>;

/// An edge of the lattice whose ends lie on different sides of the level, and what is known of the fields
/// along it. A place on it is a number from 0 to 1.
struct Cut {
  std::array<unsigned, 3> from;  // indices of its lower end
  unsigned char direction;       // bits 4, 2, 1: whether it goes a step along the first, second, third index
  bool rises;                    // whether its upper end is inside
  double start;                  // where the density may have the level
  double log_slope, potential_slope;  // there, along the edge
};

struct March {
  enum class End { done, lattice_too_small, step_too_large } end;
  std::vector<Cut> cuts;  // the vertices, those that are near each other in runs
  std::vector<Facet> facets;
};

/// Finds the surface of a density (bohr^-3) on a lattice. The step is too large where a nucleus with a
/// density above the level has no point inside beside it. More vertices than fit end the run.
March march(const Molecule* molecule, const Lattice& lattice, Fields* fields, double level,
            Progress* progress);

/// The vector of an edge of the lattice, bohr.
Point march_edge(const Lattice& lattice, unsigned direction);
