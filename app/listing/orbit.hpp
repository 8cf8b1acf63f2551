#pragma once

#include <cstdint>
#include <cstdio>

#include "app/model/molecule.hpp"

// Spin codes.
inline constexpr std::int16_t orbit_alpha = 1;
inline constexpr std::int16_t orbit_beta = 2;

/// Prints the orbital coefficients of a spin, a row for each orbital, in blocks of `width` basis functions
/// (at least 1). Any other spin code ends the run with "invalid code in function orbit_print_mo".
void orbit_print_mo(const Molecule* molecule, std::FILE* stream, std::int16_t spin, unsigned width);
