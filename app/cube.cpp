#include "cube.hpp"

#include <algorithm>
#include <array>
#include <limits>
#include <span>

#include "atom.hpp"
#include "comp.hpp"
#include "distance.hpp"
#include "file.hpp"
#include "message.hpp"
#include "setup.hpp"
#include "sweep.hpp"

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

// Second lines of the cube files, by code mod 10.
constexpr std::array titles = {"Total density", "Molecular orbital", "Molecular orbital density",
                               "Averaged local ionization potential"};
constexpr unsigned potential_title = 3;

bool is_orbital_file(std::int16_t code) { return code % 10 == 1 || code % 10 == 2; }

void write_header(const Molecule* molecule, const CubeDefinition* cube, std::FILE* stream, const char* title,
                  std::int16_t code, std::int16_t orbital) {
  std::fprintf(stream, " %s\n %s\n", molecule->title, title);
  cube_print_params(molecule, cube, stream, code);
  for (unsigned i = 0; i < molecule->atom_count; ++i) {
    const Atom& atom = molecule->atoms[i];
    std::fprintf(stream, "%5d%12.6f%12.6f%12.6f%12.6f\n", static_cast<int>(atom.atomic_number),
                 static_cast<double>(atom.atomic_number), atom.coord[0], atom.coord[1], atom.coord[2]);
  }
  if (is_orbital_file(code)) {
    std::fprintf(stream, "%5d%5d\n", 1, orbital);
  }
}

// One file, or two for code 50; `write_data` gets the open streams (the second null if there is none).
template <class WriteData>
void write_file(const Molecule* molecule, const CubeDefinition* cube, std::FILE* report, const char* name,
                std::int16_t code, std::int16_t orbital, WriteData write_data) {
  std::FILE* const first = file_open(name, "w");
  if (arg_quiet == 0) {
    std::fprintf(report, "  Writing file %s...", name);
    std::fflush(report);
  }
  std::FILE* const second = code == 50 ? file_open(glob_cube_file_orva, "w") : nullptr;
  write_header(molecule, cube, first, titles[static_cast<unsigned>(code % 10)], code, orbital);
  if (second != nullptr) {
    write_header(molecule, cube, second, titles[potential_title], code, orbital);
  }
  write_data(first, second);
  file_close(first);
  if (second != nullptr) {
    file_close(second);
  }
  if (arg_quiet == 0) {
    std::fputs("  OK\n", report);
  }
}

std::string orbital_file_name(std::int16_t code, unsigned number) {
  return std::string(glob_cube_file_orb) + '.' + std::to_string(number) + (code == 201 ? 'b' : 'a');
}

// The codes of the orbitals' files: alpha, and beta of an unrestricted wavefunction.
std::span<const std::int16_t> orbital_codes() {
  static constexpr std::array<std::int16_t, 2> codes = {101, 201};
  return std::span(codes).first(inp_rest_scf != 0 ? 1 : 2);
}

std::string moden_file_name() {
  return std::string(glob_cube_file_mod) + '.' + std::to_string(conf_cube_moden) + 'a';
}

// One file per orbital of a spin. Where memory allows, the orbitals are evaluated in blocks, so that the
// basis functions are evaluated once for many files. The first file of a block is open by then: a name that
// cannot be opened need not wait for the block.
void write_all_orbitals(const Molecule* molecule, const CubeDefinition* cube, std::FILE* report,
                        std::int16_t code) {
  const unsigned orbital_count = molecule->basis_count;
  const Orbital* const orbitals = code == 201 ? molecule->beta_orbitals : molecule->alpha_orbitals;
  OrbitalValues block = comp_orbital_alloc(cube, orbital_count, molecule->basis_count);
  for (unsigned i = 0; i < orbital_count; ++i) {
    const std::string name = orbital_file_name(code, i + 1);
    const auto number = static_cast<std::int16_t>(i + 1);
    if (block.orbital_count == 0) {
      cube_write_file(molecule, cube, report, name.c_str(), code, number);
      continue;
    }
    const unsigned place = i % block.orbital_count;
    write_file(molecule, cube, report, name.c_str(), code, number, [&](std::FILE* stream, std::FILE*) {
      if (place == 0) {
        comp_orbital_values(molecule, cube, orbitals + i, std::min(block.orbital_count, orbital_count - i),
                            &block);
      }
      comp_write_values(cube, block.of(place), stream);
    });
  }
}

}  // namespace

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
    char text[1024];
    atom_name(name, static_cast<int>(atomic_number));
    std::snprintf(text, sizeof text, "unknown radius of atom %s, using default value 4.3 A", name);
    msg_warn(text);
  }
  return default_radius;
}

void cube_print_params(const Molecule* molecule, const CubeDefinition* cube, std::FILE* stream,
                       std::int16_t code) {
  const auto print_line = [&](int count, const double* vector) {
    std::fprintf(stream, "%5d%12.6f%12.6f%12.6f\n", count, vector[0], vector[1], vector[2]);
  };
  const int atom_count = static_cast<int>(molecule->atom_count);
  print_line(is_orbital_file(code) ? -atom_count : atom_count, cube->points[0]);
  for (unsigned axis = 0; axis < 3; ++axis) {
    print_line(static_cast<int>(cube->npoints[axis]), cube->vectors[axis]);
  }
}

void cube_check(const Molecule* molecule, std::int16_t code) {
  constexpr std::int16_t number_max = std::numeric_limits<std::int16_t>::max();
  if (code == 21 && molecule->basis_count > unsigned{number_max}) {
    msg_fatal_format("invalid value in config file - at most %d orbitals can be written one file each",
                     number_max);
  }
  if (code == 31 || code == 42) {
    const std::int16_t orbital = code == 31 ? conf_cube_onesp : conf_cube_moden;
    if (orbital < 1 || static_cast<unsigned>(orbital) > molecule->basis_count) {
      msg_fatal_format("invalid value in config file - number of orbital from 1 to %u expected",
                       molecule->basis_count);
    }
  }
  if (code == 31 && conf_cube_onety != 0 && inp_rest_scf != 0) {
    msg_fatal("invalid value in config file - no beta orbitals in restricted wavefunction");
  }
  sweep_choose_kernel();
}

std::vector<std::string> cube_file_names(const Molecule* molecule, std::int16_t code) {
  std::vector<std::string> names;
  switch (code) {
    case 10:
      return {glob_cube_file_tot};
    case 21:
      for (const std::int16_t spin : orbital_codes()) {
        for (unsigned n = 1; n <= molecule->basis_count; ++n) {
          names.push_back(orbital_file_name(spin, n));
        }
      }
      return names;
    case 31:
      return {glob_cube_file_orb};
    case 42:
      return {moden_file_name()};
    case 50:
      return {glob_cube_file_tot, glob_cube_file_orva};
    case 63:
      return {glob_cube_file_orva};
    default:
      return names;
  }
}

void cube_write_file(const Molecule* molecule, const CubeDefinition* cube, std::FILE* report,
                     const char* name, std::int16_t code, std::int16_t orbital) {
  write_file(molecule, cube, report, name, code, orbital, [&](std::FILE* first, std::FILE* second) {
    comp_data(molecule, cube, code, orbital, first, second);
  });
}

void cube_write(const Molecule* molecule, const CubeDefinition* cube, std::FILE* report, std::int16_t code) {
  cube_check(molecule, code);
  switch (code) {
    case 10:
    case 50:
      cube_write_file(molecule, cube, report, glob_cube_file_tot, code, 0);
      break;
    case 21:
      for (const std::int16_t spin : orbital_codes()) {
        write_all_orbitals(molecule, cube, report, spin);
      }
      break;
    case 31:
      cube_write_file(molecule, cube, report, glob_cube_file_orb, conf_cube_onety != 0 ? 201 : 101,
                      conf_cube_onesp);
      break;
    case 42:
      cube_write_file(molecule, cube, report, moden_file_name().c_str(), code, conf_cube_moden);
      break;
    case 63:
      cube_write_file(molecule, cube, report, glob_cube_file_orva, code, 0);
      break;
    default:
      break;
  }
}
