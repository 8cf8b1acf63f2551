#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <unordered_map>
#include <vector>

#include "memory.hpp"

// Fields at many points at once: packs of points through the formulas of the point-by-point functions, in
// the same order, with the same bits. What does not depend on the point is worked out once, in the plan.
//
// Kernels are compiled once for each instruction set. What they read is plain memory, so that no function
// compiled for a wide set can stand in for one of the rest of the program.

/// A primitive of a shell.
struct SweepTerm {
  double reach;          // bohr²: from this r² on, the sum may start behind this primitive
  unsigned exponential;  // position among those of the atom
};

/// Functions that follow each other and differ in nothing but the component: a whole shell, or one function.
struct SweepShell {
  short type, component;  // component of a single function
  bool is_whole;
  unsigned number;       // among all shells, in the order of the basis functions
  unsigned basis_index;  // of the first function
  unsigned term_count;
  const SweepTerm* terms;
  const double* norms;         // norm_fce, [primitive][function]
  const double* coefficients;  // [primitive]
};

/// exp(-exponent·r²), shared by all primitives of an atom that have the exponent.
struct SweepExponential {
  double exponent;      // bohr^-2
  double reach;         // bohr²: from this r² on, no shell needs it
  double normal_reach;  // bohr²: up to this r², its argument is one of exponential_normal
};

/// A centre with all that belongs to it.
struct SweepAtom {
  const double* coord;  // bohr
  unsigned exponential_count, shell_count;
  const SweepExponential* exponentials;
  const SweepShell* shells;
};

/// A few orbitals that are summed together.
struct SweepOrbitals {
  unsigned count;
  const double* coefficients;       // [basis function][orbital]
  const double* energy_magnitudes;  // |ε|, hartree
};

enum class SweepField { density_and_potential, orbital, orbital_density };

struct SweepPlan {
  SweepField field;
  unsigned basis_count, shell_count, atom_count, group_count;
  const unsigned* shell_starts;  // first basis function of each shell, by its number, and basis_count
  const SweepAtom* atoms;
  const SweepOrbitals* groups;
  bool restricted, no_pairs;  // of the density
  bool may_skip_primitives;   // all coordinates are so small that no product of them is infinite
  bool may_skip_functions;    // all orbital coefficients are finite: 0 times each of them is 0
};

/// One unit of work. Point counts are multiples of the kernel's tile.
struct SweepBlock {
  unsigned point_count;
  const double *x, *y, *z;  // bohr
  double* fields;           // density and potential, or orbitals, `stride` values apart
  std::size_t stride;
  // Working memory; the values and exponentials on 64-byte boundaries.
  double* values;         // [tile][basis function][point of the tile]
  double* exponentials;   // [exponential of an atom][point, in packs, those nearest to the atom first]
  unsigned char* active;  // [shell][tile]: whether some point is within its reach
  unsigned* active_list;  // [basis function]
};

inline constexpr unsigned sweep_packs_max = 32;  // of points, in a block

/// A kernel for one instruction set.
struct SweepKernel {
  const char* name;
  bool (*is_supported)();     // by the processor at hand
  unsigned tile_points;       // points whose orbital sums are formed together
  unsigned tile_orbitals;     // at most so many orbitals together
  unsigned block_points_max;  // at most so many points in a block
  void (*run)(const SweepPlan& plan, const SweepBlock& block);
};

/// All kernels of the program, the widest first; the last runs everywhere.
std::span<const SweepKernel* const> sweep_kernels();

/// The widest kernel that the processor has, or the one named by the environment variable ORVA_KERNEL.
/// A name that is unknown or not for this processor ends the run with "kernel \"%s\" is not available, only
/// ...", which lists those that are.
const SweepKernel& sweep_choose_kernel();

/// The plan of a sweep, with all that it points to, and its working memory.
class Sweep {
 public:
  /// Orbitals are summed in the order given. `extent`: no coordinate of a point is larger in magnitude, bohr.
  Sweep(const Molecule* molecule, const SweepKernel& kernel, SweepField field,
        std::span<const Orbital* const> orbitals, double extent);

  /// Points of a block at most: a multiple of the kernel's tile, so many that the basis function values stay
  /// in the second-level cache.
  unsigned block_points() const { return block_points_; }

  /// Number of basis function values of a block, and what it takes to put them on a 64-byte boundary.
  unsigned value_count() const { return molecule_->basis_count * block_points_ + 8; }

  /// Evaluates the fields at `count` points, at most block_points(). `points` holds x, y and z in runs of
  /// block_points() and is padded behind the last point up to a whole tile. `values` takes value_count()
  /// values of basis functions.
  void run(unsigned count, double* points, double* values);

  /// What the last run found: the total density (0) and the average local ionization potential (1), or the
  /// orbitals in their order; block_points() values.
  const double* field(std::size_t number) const { return fields_.data() + number * block_points_; }

 private:
  void plan_atoms();
  std::size_t shell_size(std::span<const unsigned> functions) const;
  void number_shells();
  unsigned position_of(double exponent);
  void plan_shell(std::span<const unsigned> functions, std::size_t first_exponential);
  void plan_orbitals(std::span<const Orbital* const> orbitals);

  const Molecule* molecule_;
  const SweepKernel& kernel_;
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
  std::vector<double> coefficients_, energies_;
  std::vector<double> exponential_values_, fields_;
  std::vector<unsigned char> active_;
  std::vector<unsigned> active_list_;
};
