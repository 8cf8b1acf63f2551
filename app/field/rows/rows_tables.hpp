#pragma once

#include <array>
#include <vector>

#include "app/field/exact/aligned.hpp"
#include "app/field/rows/rows_plan.hpp"

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
  std::vector<double> weights, energy_weights;
};
