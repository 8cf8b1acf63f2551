#pragma once

#include <memory>
#include <span>

#include "app/field/rows/rows_tables.hpp"
#include "app/model/cube_definition.hpp"
#include "app/model/molecule.hpp"
#include "app/model/occupation.hpp"

/// Makes the plan. Null if the exact sweep must do it all: the steps of the grid do not lie along the axes,
/// its rows are short or so long that the tables of their Gaussians would fill the memory, there are no
/// orbitals, or a number is too large, too small or undefined for the bound to hold.
std::unique_ptr<RowTables> rows_build(const Molecule* molecule, const CubeDefinition* cube,
                                      const RowKernel& kernel, FieldKind field,
                                      std::span<const WeightedOrbital> orbitals);
