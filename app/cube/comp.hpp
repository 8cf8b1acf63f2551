#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>

#include "app/model/cube_definition.hpp"
#include "app/model/field.hpp"
#include "app/model/molecule.hpp"

// The sweep over the grid: the data of the cube files.

/// Values of all basis functions at the point or points that were evaluated exactly last. Null but while the
/// data of a file are made; comp_point_value has its caller set it.
extern double* comp_bfce_vec;

/// Writes the data of a field for all points, the third axis fastest, "%13.5e" each, six to a line, every row
/// of the third axis on a new line. Codes as for cube_write_file; `second`, null but for
/// field_density_and_potential, gets the average local ionization potential.
void comp_data(const Molecule* molecule, const CubeDefinition* cube, std::int16_t code, std::int16_t orbital,
               std::FILE* first, std::FILE* second);

/// Room for the data of the cube files of some orbitals.
struct OrbitalTexts {
  std::unique_ptr<char[]> texts;
  unsigned orbital_count;  // for which there is room; 0 if there is none for two
  std::size_t text_size;

  std::span<char> of(std::size_t orbital) const { return {texts.get() + orbital * text_size, text_size}; }
};

/// Room for one of the fewest blocks of nearly equal size that `orbital_count` orbitals of `basis_count`
/// coefficients can be done in with at most 128 MiB; none if that memory is missing or too little for two.
OrbitalTexts comp_orbital_alloc(const CubeDefinition* cube, unsigned orbital_count, unsigned basis_count);

/// Makes the data of `count` orbitals in one sweep, each as comp_data writes it; there must be room for them.
void comp_orbital_texts(const Molecule* molecule, const CubeDefinition* cube, const Orbital* orbitals,
                        unsigned count, OrbitalTexts* result);

/// What all data of cube files must agree with, and tests compare them with; the program itself does not call
/// it.
/// The field of the code at one point (x, y, z in bohr) in `first`; for those of the potential `first` is the
/// total density (bohr^-3) and `second` the average local ionization potential (hartree). Other codes leave
/// `second` as it is. comp_bfce_vec must have room for all basis functions.
void comp_point_value(const Molecule* molecule, const double* point, std::int16_t code, std::int16_t orbital,
                      double* first, double* second);
