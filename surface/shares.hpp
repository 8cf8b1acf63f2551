#pragma once

#include <limits>
#include <span>
#include <vector>

#include "app/model/memory.hpp"
#include "surface/mesh.hpp"

// Areas, volumes and means over the surface, its pieces and its atoms' shares.

/// How the surface is shared among the atoms.
enum class Partition {
  radii,   // to the atom with the largest 1 - |r - R| / radius
  nearest  // to the nearest nucleus
};

/// Integrals over a part of a mesh: of 1, and of the potential's difference to a reference value and its
/// square.
struct Integrals {
  double area = 0.0, first = 0.0, second = 0.0;  // bohr^2, times hartree, times hartree^2
};

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

/// Owners of places on the surface.
class Owners {
 public:
  /// The molecule must stay. `radii`: of each atom, bohr; none for the nearest nucleus.
  Owners(const Molecule* molecule, std::vector<double> radii);

  /// Owners of points, most quickly where neighbours are in runs. Of equals the first atom.
  std::vector<unsigned> of(std::span<const Point> points) const;

  /// What is largest for the owner of a place.
  double weight(const Point& place, unsigned atom) const;

 private:
  std::vector<Point> places_;
  std::vector<double> radii_;
};

/// Adds up both meshes and extrapolates to facets without size, as errors go with their size squared.
Shares shares_of(const Meshes& meshes, const Owners& owners, unsigned atom_count);

/// Bondi's van der Waals radii of the atoms, bohr. Those without one are told.
std::vector<double> shares_radii(const Molecule* molecule);
