#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "app/model/cube_definition.hpp"
#include "app/model/field.hpp"
#include "app/model/molecule.hpp"

// The cube files.

// Codes are those of FieldCode.

/// Ends the run if the files of a kind of field cannot be written, whatever the files are: for one orbital or
/// its density, a number outside those of its spin, or a beta orbital of a restricted wavefunction; for all
/// orbitals, more than 16 bits can number; a kernel that is not available.
void cube_check(const Molecule* molecule, std::int16_t code);

/// The names of all files that cube_write writes for a code.
std::vector<std::string> cube_file_names(const Molecule* molecule, std::int16_t code);

/// Writes the cube file or files that the configuration asks for under a code; a code that is no request
/// (field_alpha_orbital, field_beta_orbital or none of the list) does nothing. Progress goes to `report`.
/// Checks with cube_check before a file is opened.
void cube_write(const Molecule* molecule, const CubeDefinition* cube, std::FILE* report, std::int16_t code);

/// Writes one cube file, or two for field_density_and_potential. The code is that of a field of cube_fields;
/// `orbital` is the number of a single orbital. A file that cannot be opened ends the run.
void cube_write_file(const Molecule* molecule, const CubeDefinition* cube, std::FILE* report,
                     const char* name, std::int16_t code, std::int16_t orbital);

/// Writes the atom count (negative for an orbital file), the origin and the three axes.
void cube_print_params(const Molecule* molecule, const CubeDefinition* cube, std::FILE* stream,
                       std::int16_t code);
