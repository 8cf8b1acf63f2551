#pragma once

#include <span>
#include <vector>

#include "app/field/fields.hpp"
#include "app/model/molecule.hpp"

// How the surface is shared among the atoms: a place belongs to the atom with the largest 1 - |r - R| /
// radius, or to the nearest nucleus.

/// Owners of places on the surface.
class Owners {
 public:
  /// The molecule must stay. `radii`: of each atom, bohr; none for the nearest nucleus.
  Owners(const Molecule* molecule, std::vector<double> radii);

  /// Owners of points, most quickly where neighbours are in runs. Of equals the first atom.
  std::vector<unsigned> of(std::span<const Point> points) const;

  /// The first atom whose weight is at most so much below the largest.
  unsigned of(const Point& point, double slack = 0.0) const;

  /// What is largest for the owner of a place.
  double weight(const Point& place, unsigned atom) const;

 private:
  std::vector<Point> places_;
  std::vector<double> radii_;
};

/// Bondi's van der Waals radii of the atoms, bohr. Those without one are told.
std::vector<double> owners_radii(const Molecule* molecule);
