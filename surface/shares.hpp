#pragma once

#include <limits>
#include <vector>

#include "surface/facets.hpp"
#include "surface/mesh.hpp"
#include "surface/owners.hpp"

// Areas, volumes and means over the surface, its pieces and its atoms' shares.

struct Statistics {
  double area = 0.0, mean = 0.0, deviation = 0.0;  // bohr^2, hartree
};

struct Range {
  double lowest = std::numeric_limits<double>::infinity();
  double highest = -std::numeric_limits<double>::infinity();
  void take(double value) {
    lowest = value < lowest ? value : lowest;
    highest = value > highest ? value : highest;
  }
};

/// A closed piece; of a cavity the volume is negative.
struct Piece {
  double area, volume;  // bohr^2, bohr^3
  long euler;           // vertices - edges + facets: 2 for a ball, 0 for a ring
  double coarseness;    // part of the fine mesh's area that the coarse one lacks
};

struct Share {
  Statistics statistics;
  bool is_empty;
  Range within, at_border;  // of the potential, hartree
};

struct Shares {
  Statistics whole;
  double volume;  // bohr^3
  Range range;
  std::vector<Piece> pieces;  // the largest volume first
  std::vector<Share> atoms;
};

/// Adds up the facets and their quarters, and extrapolates to facets without size, as errors go with their
/// size squared.
Shares shares_of(const Mesh& mesh, const Owners& owners, unsigned atom_count);
