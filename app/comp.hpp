#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>

#include "field.hpp"
#include "grid.hpp"
#include "memory.hpp"

// The sweep over the grid: the data of the cube files.

/// Values of all basis functions at the point or points at hand. Exists during a sweep only.
extern double* comp_bfce_vec;

/// Writes the data of a field for all points, the third axis fastest, "%13.5e" each, six to a line, every row
/// of the third axis on a new line. Codes as for cube_write_file; `second`, null but for
/// field_density_and_potential, gets the
/// average local ionization potential.
void comp_data(const Molecule* molecule, const CubeDefinition* cube, std::int16_t code, std::int16_t orbital,
               std::FILE* first, std::FILE* second);

/// Room for the values of some orbitals at all grid points, bohr^(-3/2).
struct OrbitalValues {
  std::unique_ptr<double[]> values;
  unsigned orbital_count;  // for which there is room; 0 if there is none for two
  std::size_t point_count;

  std::span<double> of(std::size_t orbital) const {
    return {values.get() + orbital * point_count, point_count};
  }
};

/// Room for `orbital_count` orbitals of `basis_count` coefficients, or for as many as 64 MiB and the memory
/// at hand allow.
OrbitalValues comp_orbital_alloc(const CubeDefinition* cube, unsigned orbital_count, unsigned basis_count);

/// Evaluates `count` orbitals at all grid points in one sweep; there must be room for them.
void comp_orbital_values(const Molecule* molecule, const CubeDefinition* cube, const Orbital* orbitals,
                         unsigned count, OrbitalValues* result);

/// Writes values of all grid points as comp_data does.
void comp_write_values(const CubeDefinition* cube, std::span<const double> values, std::FILE* stream);

/// The field of the code at one point (x, y, z in bohr) in `first`; for those of the potential `first` is the
/// total density (bohr^-3) and `second` the average local ionization potential (hartree). Other codes leave
/// `second` as it is. comp_bfce_vec must have room for all basis functions.
void comp_point_value(const Molecule* molecule, const double* point, std::int16_t code, std::int16_t orbital,
                      double* first, double* second);
