#pragma once

#include <cstddef>

#include "app/model/field.hpp"

// What the sweep hands to its kernels. They are compiled once for each instruction set; what they read is
// plain memory, so that no function compiled for a wide set can stand in for one of the rest of the program.
//
//   pack   as many points as a register has lanes
//   tile   a few packs, whose orbital sums are formed together
//   block  the points of one unit of work: their basis function values stay in the second-level cache
//   group  a few orbitals that are summed together
//   term   a primitive in a contraction; terms that share atom and exponent share an exponential
//   reach  r² from which on something adds nothing: a term because it is 0.0, or because it rounds away
//   head   the first terms of a contraction, which round away against the next from some r² on

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
  const double* coefficients;    // [basis function][orbital]
  const double* weights;         // n, in sums over orbitals
  const double* energy_weights;  // n|ε|, hartree
};

struct SweepPlan {
  FieldKind field;
  unsigned basis_count, shell_count, atom_count, group_count;
  const unsigned* shell_starts;  // first basis function of each shell, by its number, and basis_count
  const SweepAtom* atoms;
  const SweepOrbitals* groups;
  bool is_restricted, has_no_pairs;  // of the density
  bool may_skip_primitives;          // all coordinates are so small that no product of them is infinite
  bool may_skip_functions;           // all orbital coefficients are finite: 0 times each of them is 0
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
  unsigned lanes;             // doubles in a register
  unsigned tile_points;       // points whose orbital sums are formed together
  unsigned tile_orbitals;     // at most so many orbitals together
  unsigned block_points_max;  // at most so many points in a block
  void (*run)(const SweepPlan& plan, const SweepBlock& block);
};

// The kernels, each from the source that is compiled for its instruction set.
extern const SweepKernel sweep_plain;
#if defined(__x86_64__)
extern const SweepKernel sweep_avx2;
extern const SweepKernel sweep_avx512;
#endif
