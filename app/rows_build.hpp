#pragma once

#include <array>
#include <memory>
#include <span>
#include <vector>

#include "aligned.hpp"
#include "grid.hpp"
#include "memory.hpp"
#include "rows_plan.hpp"

/// A plan of the sweep by rows and all that it points to.
struct RowTables {
  RowPlan plan{};
  std::array<unsigned, 2> index{};  // which of a row's two indices gives each coordinate across
  std::vector<RowAtom> atoms;
  std::vector<RowRadial> radials;
  std::vector<RowTerm> terms;
  std::vector<RowMonomial> monomials;
  std::vector<RowOrbitals> chunks;
  std::vector<AlignedDoubles> factors;  // of the Gaussians and offsets, an atom each
  AlignedDoubles coefficients, magnitudes;
  std::vector<double> energy_magnitudes;
};

/// Makes the plan. Null if the exact sweep must do it all: the steps of the grid do not lie along the axes,
/// its rows are short or so long that the tables of their Gaussians would fill the memory, there are no
/// orbitals, or a number is too large, too small or undefined for the bound to hold.
std::unique_ptr<RowTables> rows_build(const Molecule* molecule, const CubeDefinition* cube,
                                      const RowKernel& kernel, SweepField field,
                                      std::span<const Orbital* const> orbitals);
