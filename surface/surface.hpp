#pragma once

#include "surface/extrema.hpp"
#include "surface/shares.hpp"

// The surface on which the density has a level, and the average local ionization potential on it.

struct SurfaceSettings {
  double level = 0.001;  // bohr^-3
  double step = 0.5;     // bohr, of the lattice
};

struct Surface {
  Shares shares;  // with the extrema in its ranges
  Extrema extrema;
  Mesh mesh;
  double step;       // bohr: as asked, or halved until no piece is small
  bool is_resolved;  // whether that was reached
};

/// Computes all of it, and shows its progress. Ends the run with one line where the density nowhere reaches
/// the level, or the surface does not close.
Surface surface_of(const Molecule* molecule, const SurfaceSettings& settings, const Owners& owners);
