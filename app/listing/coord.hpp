#pragma once

#include <cstdio>

#include "app/model/molecule.hpp"

/// Lists the atoms in their order: symbol, x, y, z in ångström.
void coord_print(const Molecule* molecule, std::FILE* stream);
