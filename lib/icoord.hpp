#pragma once

// Internal coordinates of points in space (x, y, z).

/// Distance of a and b, in their unit.
double icoord_bond(const double* a, const double* b);

/// Angle a–b–c at b, degrees.
double icoord_angle(const double* a, const double* b, const double* c);

/// Dihedral angle of the chain a–b–c–d about b–c, degrees, −180 to 180: positive if, looking from b to c, a
/// must turn clockwise to cover d. NaN if three neighbours lie on a line.
double icoord_dihedral(const double* a, const double* b, const double* c, const double* d);
