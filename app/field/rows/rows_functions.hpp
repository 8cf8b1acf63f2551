#pragma once

#include <optional>
#include <vector>

#include "app/field/rows/rows_tables.hpp"
#include "app/model/cube_definition.hpp"
#include "app/model/molecule.hpp"

/// What a basis function has of a monomial.
struct RowPart {
  unsigned function, monomial;
  double factor, magnitude;  // of its angular factor, the latter with all that is added up taken positive
};

/// Tabulates the basis functions on the rows of a grid: fills in all of the tables and the plan that has to
/// do with functions, but norms and reach, and the order by reach. Returns nothing if rows cannot do it: see
/// rows_build.
std::optional<std::vector<RowPart>> rows_functions(const Molecule* molecule, const CubeDefinition* cube,
                                                   const RowKernel& kernel, RowTables* tables);
