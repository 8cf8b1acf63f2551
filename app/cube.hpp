#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "memory.hpp"

// The grid of the cube files, and the files.

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

/// Ends the run if the files of a kind of field cannot be written, whatever the files are: for the codes 31
/// and 42, an orbital's number outside 1 to basis_count, or a beta orbital of a restricted wavefunction; for
/// code 21, more orbitals than 16 bits can number; a kernel that is not available.
void cube_check(const Molecule* molecule, std::int16_t code);

/// The names of all files that cube_write writes for a code.
std::vector<std::string> cube_file_names(const Molecule* molecule, std::int16_t code);

/// Writes the cube file or files of a kind of field: 10 total density, 21 all orbitals, 31 one orbital,
/// 42 density of one orbital, 50 local ionization potential and total density, 63 local ionization
/// potential; other codes do nothing. Progress goes to `report`. Checks with cube_check before a file is
/// opened.
void cube_write(const Molecule* molecule, const CubeDefinition* cube, std::FILE* report, std::int16_t code);

/// Writes one cube file, or two for code 50. Codes: 10, 42, 50, 63, and 101 (alpha) or 201 (beta) for the
/// orbital of the given number. A file that cannot be opened ends the run.
void cube_write_file(const Molecule* molecule, const CubeDefinition* cube, std::FILE* report,
                     const char* name, std::int16_t code, std::int16_t orbital);

/// Writes the atom count (negative for an orbital file), the origin and the three axes.
void cube_print_params(const Molecule* molecule, const CubeDefinition* cube, std::FILE* stream,
                       std::int16_t code);
