#pragma once

#include <cstdio>

#include "app/model/molecule.hpp"

/// Writes the symbol of a shell type, such as "SP" or "F10", into `symbol`, 4 bytes; "X" for a type without
/// one. Returns `symbol`.
char* basis_shell_sym(char* symbol, short type);

/// Lists the contracted shells: atom, type, and exponent (bohr^-2) and coefficient of every primitive; for an
/// sp shell the coefficients of s and p.
void basis_print_shell(const Molecule* molecule, std::FILE* stream);

/// Lists every basis function: atom, type, and exponent (bohr^-2) and coefficient of every primitive.
void basis_print(const Molecule* molecule, std::FILE* stream);
