#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <unordered_map>
#include <vector>

#include "app/field/exact/aligned.hpp"
#include "app/field/exact/sweep_plan.hpp"
#include "app/model/molecule.hpp"
#include "app/model/occupation.hpp"

// Fields at many points at once: packs of points through the formulas of the point-by-point functions, in
// the same order, with the same bits. What does not depend on the point is worked out once, in the plan.

/// The plan of a sweep, with all that it points to, and its working memory.
class Sweep {
 public:
  /// Orbitals are summed in the order given. `extent`: no coordinate of a point is larger in magnitude, bohr.
  Sweep(const Molecule* molecule, const SweepKernel& kernel, FieldKind field,
        std::span<const WeightedOrbital> orbitals, double extent);

  /// Points of a block at most: a multiple of the kernel's tile, so many that the basis function values stay
  /// in the second-level cache.
  unsigned block_points() const { return block_points_; }

  /// Evaluates the fields at `count` points, at most block_points(). `points` holds x, y and z in runs of
  /// block_points() and is padded behind the last point up to a whole tile.
  void run(unsigned count, double* points);

  /// The values of all basis functions at the points of the last run, in the order of the kernel.
  double* values() { return values_.data(); }

  /// What the last run found: the total density (0) and the average local ionization potential (1), or the
  /// orbitals in their order; block_points() values.
  const double* field(std::size_t number) const { return fields_.data() + number * block_points_; }

 private:
  void plan_atoms();
  std::size_t shell_size(std::span<const unsigned> functions) const;
  void number_shells();
  unsigned position_of(double exponent);
  void plan_shell(std::span<const unsigned> functions, std::size_t first_exponential);
  void plan_orbitals(std::span<const WeightedOrbital> orbitals);

  const Molecule* molecule_;
  const SweepKernel& kernel_;
  std::vector<unsigned> radials_;  // of the basis functions
  unsigned block_points_;
  SweepPlan plan_{};
  std::vector<SweepAtom> atoms_;
  std::vector<SweepShell> shells_;
  std::vector<unsigned> shell_starts_;
  std::vector<SweepTerm> terms_;
  std::vector<double> norms_;
  std::vector<SweepExponential> exponentials_;
  std::unordered_map<std::uint64_t, unsigned> exponential_positions_;  // of the atom at hand, by its bits
  std::vector<SweepOrbitals> groups_;
  std::vector<double> coefficients_, weights_, energy_weights_;
  std::vector<double> fields_;
  AlignedDoubles values_, exponential_values_;
  std::vector<unsigned char> active_;
  std::vector<unsigned> active_list_;
};
