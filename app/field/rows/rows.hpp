#pragma once

#include <memory>
#include <span>

#include "app/field/exact/aligned.hpp"
#include "app/field/rows/rows_build.hpp"
#include "app/model/cube_definition.hpp"
#include "app/model/molecule.hpp"
#include "app/model/occupation.hpp"

// Fields at the points of whole rows, cheaper than the exact sweep gives them and with a bound of how far
// they may lie from what it gives. Gaussians are products along the axes, and functions of the same radial
// become one in a row; what is next to nothing is left out.

class RowSweep {
 public:
  /// Null if the exact sweep must do it all: see rows_build; also if there is no memory for rows.
  static std::unique_ptr<RowSweep> make(const Molecule* molecule, const CubeDefinition* cube,
                                        const RowKernel& kernel, FieldKind field,
                                        std::span<const WeightedOrbital> orbitals);

  /// Evaluates the fields in the row of the first two indices, perhaps with some of the next ones. How many
  /// are at hand then; 0 if nothing is known of the row.
  unsigned run(unsigned i, unsigned j);

  /// What the last run found for each point of its row, or of one behind it; numbers as for Sweep::field.
  std::span<double> field(std::size_t number, unsigned row = 0) { return part_of(fields_, number, row); }

  /// How far, relatively, the exact sweep's values may lie from these; infinite or NaN where nothing is
  /// known.
  std::span<const double> tolerances(std::size_t number, unsigned row = 0) {
    return part_of(tolerances_, number, row);
  }

 private:
  RowSweep(std::unique_ptr<RowTables> tables, const RowKernel& kernel, const CubeDefinition* cube);
  void lay_out();
  std::span<double> part_of(AlignedDoubles& values, std::size_t number, unsigned row) {
    return {values.data() + (j_ + row - first_j_) * piece_.row_stride + number * piece_.stride, row_length_};
  }

  std::unique_ptr<RowTables> tables_;
  const RowKernel& kernel_;
  unsigned row_length_, j_count_, together_max_;
  unsigned i_ = 0, j_ = 0, first_j_ = 0, end_j_ = 0;  // the row, and the rows of its i that are evaluated
  RowPiece piece_{};
  std::vector<RowWeighing> weighings_;  // of the pieces, as the last row had them best
  AlignedDoubles fields_, tolerances_, memory_;
  std::vector<RowUse> uses_;
  std::vector<unsigned> functions_;
};
