#pragma once

#include <string>

#include "surface/options.hpp"

/// A number with so many decimals; zeros have no sign.
std::string quantity_text(double value, int decimals);

/// What the numbers of a run are multiplied by, and the names of their units.
struct Quantities {
  explicit Quantities(const SurfaceOptions& options);
  const char* potential_unit;
  const char* length_unit;
  double potential, length;  // of a hartree, of a bohr
  double area() const { return length * length; }
  double volume() const { return length * length * length; }
  double curvature() const { return potential / (length * length); }
};
