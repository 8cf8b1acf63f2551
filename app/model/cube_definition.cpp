#include "app/model/cube_definition.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "app/model/setup.hpp"
#include "lib/atom.hpp"
#include "lib/distance.hpp"
#include "lib/message.hpp"

namespace {

constexpr double default_radius = 4.3;  // bohr

struct AtomRadius {
  unsigned atomic_number;
  double radius;  // bohr
};

constexpr std::array atom_radii = {AtomRadius{1, 2.9},
                                   AtomRadius{6, 4.2},
                                   AtomRadius{7, 3.0},
                                   AtomRadius{8, 3.8},
                                   AtomRadius{9, 3.0},
                                   AtomRadius{17, default_radius},
                                   AtomRadius{44, default_radius},
                                   AtomRadius{78, default_radius}};

// Corners of the automatic box as multiples of the half extent: the path A-B-C-D along x, y and z.
constexpr double corner_signs[4][3] = {{-1, -1, -1}, {1, -1, -1}, {1, 1, -1}, {1, 1, 1}};

constexpr double points_per_bohr = 8.0;
constexpr unsigned points_max = 80;  // along an axis

}  // namespace

double cube_extent(const CubeDefinition* cube) {
  double extent = 0.0;
  for (unsigned c = 0; c < 3; ++c) {
    double reach = std::fabs(cube->points[0][c]);
    for (unsigned axis = 0; axis < 3; ++axis) {
      reach += cube->npoints[axis] * std::fabs(cube->vectors[axis][c]);
    }
    extent += reach;  // an upper bound, and NaN stays NaN
  }
  return extent;
}

void cube_define(const Molecule* molecule, CubeDefinition* cube) {
  if (conf_cube_def == 2) {
    cube_comp_vectors(cube);
  } else if (conf_cube_def == 0) {
    cube_comp_params(molecule, cube);
  }
}

void cube_comp_params(const Molecule* molecule, CubeDefinition* cube) {
  double centre[3];
  double half[3];
  cube_dimensions(molecule, centre, half);
  for (unsigned p = 0; p < 4; ++p) {
    for (unsigned c = 0; c < 3; ++c) {
      cube->points[p][c] = corner_signs[p][c] * half[c] + centre[c];
    }
  }
  for (unsigned axis = 0; axis < 3; ++axis) {
    const double count = dist_r(cube->points[axis + 1], cube->points[axis], 3) * points_per_bohr;
    cube->npoints[axis] = count < points_max ? static_cast<unsigned>(count) : points_max;
  }
  cube_comp_vectors(cube);
}

void cube_comp_vectors(CubeDefinition* cube) {
  for (unsigned axis = 0; axis < 3; ++axis) {
    for (unsigned c = 0; c < 3; ++c) {
      cube->vectors[axis][c] = (cube->points[axis + 1][c] - cube->points[axis][c]) / cube->npoints[axis];
    }
  }
}

void cube_dimensions(const Molecule* molecule, double* centre, double* half) {
  for (unsigned axis = 0; axis < 3; ++axis) {
    double min;
    double max;
    cube_coord_extrem(molecule, &min, &max, axis);
    centre[axis] = (min + max) * 0.5;
    half[axis] = centre[axis] - min;
  }
}

void cube_coord_extrem(const Molecule* molecule, double* min, double* max, unsigned axis) {
  *min = 1e10;
  *max = -1e10;
  for (unsigned i = 0; i < molecule->atom_count; ++i) {
    const Atom& atom = molecule->atoms[i];
    const double radius = cube_atom_radius(atom.atomic_number);
    *min = std::min(*min, atom.coord[axis] - radius);
    *max = std::max(*max, atom.coord[axis] + radius);
  }
}

double cube_atom_radius(unsigned atomic_number) {
  for (const AtomRadius& entry : atom_radii) {
    if (entry.atomic_number == atomic_number) {
      return entry.radius;
    }
  }
  if (arg_warning != 0 && arg_quiet == 0) {
    char name[3];
    char text[msg_text_size];
    atom_name(name, static_cast<int>(atomic_number));
    std::snprintf(text, sizeof text, "unknown radius of atom %s, using default value 4.3 A", name);
    msg_warn(text);
  }
  return default_radius;
}
