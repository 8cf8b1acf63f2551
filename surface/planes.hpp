#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <vector>

#include "app/field/fields.hpp"
#include "surface/lattice.hpp"

// Density and potential on the planes of the lattice, four of them at a time. What is asked of a point is the
// same whatever kernel gives its values: on which side of the level it lies, and its values in whole quanta.

/// A point of a plane that is held.
struct PlanePoint {
  unsigned plane;
  std::size_t at;  // j · npoints[2] + k
};

/// What start values are made of. Its numbers are multiples of a quantum.
struct RoundedValues {
  double log;        // of the density over the level
  double potential;  // hartree
};

class Planes {
 public:
  /// All must stay. `level` in bohr^-3.
  Planes(const Lattice* lattice, Fields* fields, double level);

  /// Evaluates plane `i`, after plane i - 1; plane i - 4 is lost. False if the surface goes through a row
  /// beyond which none is evaluated, or through an end of one: the lattice is too small.
  bool fill(unsigned i);

  /// Whether the density is above the level, by rows of npoints[2] points; false where no row is evaluated.
  const unsigned char* sides(unsigned plane) const { return held(plane).is_inside.data(); }

  /// Asks for the values of a point on a row of the lattice: `get` may be called after `settle`. The
  /// potential is NaN where there is no density.
  void want(PlanePoint point);
  void settle();
  const RoundedValues& get(PlanePoint point) const { return held(point.plane).rounded[point.at]; }

 private:
  enum class State : unsigned char { as_it_came, wanted, known };
  struct Held {
    std::vector<unsigned char> is_inside;
    std::array<std::vector<double>, 2> values, tolerances;  // relative
    std::vector<State> states;
    std::vector<RoundedValues> rounded;  // where they are known
  };
  const Held& held(unsigned plane) const { return held_[plane % held_.size()]; }
  Held& held(unsigned plane) { return held_[plane % held_.size()]; }
  bool fill_row(unsigned i, unsigned j);
  RoundedValues rounded_values(PlanePoint point) const;
  bool is_in_doubt(PlanePoint point) const;

  const Lattice* lattice_;
  Fields* fields_;
  double level_;
  std::array<Held, 4> held_;
  std::vector<unsigned char> in_doubt_;
  std::vector<PlanePoint> wanted_;
  std::vector<Point> points_;
  std::vector<double> exact_;
};
