#pragma once

#include "app/model/molecule.hpp"

// The grid on which fields are sampled: given by the user, or a box around the molecule.

/// A regular grid, in bohr. Point (i, j, k) lies at points[0] + i·vectors[0] + j·vectors[1] + k·vectors[2].
struct CubeDefinition {
  unsigned npoints[3];
  double points[4][3];   // A (the origin), B, C, D
  double vectors[3][3];  // steps along the three axes
};

/// Coordinate `c` (0 x, 1 y, 2 z) of a grid point, bohr, summed in this order.
inline double cube_coordinate(const CubeDefinition* cube, unsigned i, unsigned j, unsigned k, unsigned c) {
  return cube->points[0][c] + i * cube->vectors[0][c] + j * cube->vectors[1][c] + k * cube->vectors[2][c];
}

/// No coordinate of a grid point is larger in magnitude, bohr; NaN if one is undefined.
double cube_extent(const CubeDefinition* cube);

/// Completes the grid as conf_cube_def tells: made around the molecule (0), kept as read (1), or step
/// vectors from the four points (2).
void cube_define(const Molecule* molecule, CubeDefinition* cube);

/// The automatic grid: a box around all atoms, 8 points per bohr, at most 80 along an axis.
void cube_comp_params(const Molecule* molecule, CubeDefinition* cube);

/// Step vectors of a path A-B-C-D of points: edge divided by the number of points.
void cube_comp_vectors(CubeDefinition* cube);

/// Centre and half extent (x, y, z, bohr) of the box around all atoms and their radii.
void cube_dimensions(const Molecule* molecule, double* centre, double* half);

/// Extremes of coordinate minus and plus radius along an axis (0 x, 1 y, 2 z), bohr.
void cube_coord_extrem(const Molecule* molecule, double* min, double* max, unsigned axis);

/// Radius of an atom in the automatic box, bohr; 4.3 for an element without one of its own, with a warning
/// if warnings are on and the run is not quiet.
double cube_atom_radius(unsigned atomic_number);
