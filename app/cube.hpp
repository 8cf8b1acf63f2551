#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "field.hpp"
#include "grid.hpp"
#include "memory.hpp"

// The cube files.

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
