#pragma once

#include <cstddef>

#include "app/model/field.hpp"
#include "app/model/shell.hpp"

// What the sweep by rows hands to its kernels; as for the exact sweep, plain memory. Further words:
//
//   row           the points that differ in the third index only: one coordinate, "along", changes
//   across        the two other coordinates; they belong to the row
//   piece         so much of a row as a kernel takes at once
//   radial        a sum of Gaussians of a centre, Σ w exp(-α r²), for all functions that are multiples of it
//   monomial      what these functions are made of: the radial times powers of the three offsets
//   power         of the offset along the row
//   row function  a radial times a power
//   collapsed     in a row each orbital is a sum over row functions; the coefficient of each is the sum of
//                 those of all monomials of its power, times their powers of the offsets across

inline constexpr unsigned row_powers = shell_max + 1;  // from 0 on

/// A Gaussian exp(-α r²) is the product of its factors exp(-α d²) along the three axes.
struct RowTerm {
  double exponent;          // bohr^-2
  double weight;            // contraction coefficient times normalization constant
  double reach[2];          // bohr²: from this square of the distance on, it adds next to nothing
  const double* across[2];  // factors, by the index of the coordinate
  const double* along;      // factors, by the point of the row
  const double* peaks;      // [power][tile]: the largest |d|^power · factor of a tile
};

struct RowMonomial {
  unsigned across;  // first power · row_powers + second power
  double norms[2];  // for all orbitals together, what RowPlan's bound takes in place of their coefficients
};

/// How the radials of a piece are weighed: by what they come to at most in each tile; or, where a tile spans
/// many orders of magnitude or all is small, with more work, by what they come to at each point. Numbers that
/// depend on it are in this order. Of what is out of sight nothing can be known.
enum RowWeighing : unsigned { row_by_tiles, row_by_points, row_out_of_sight };

/// Of the bound, for each weighing; rows_bound.hpp explains them.
struct RowBound {
  double rounding, tail[2], cut;
};

/// Terms are in the order of their reach, either way.
struct RowRadial {
  unsigned atom, term_count, first_term, power_max;
  unsigned basis_count;                // basis functions that are multiples of it
  unsigned first_function;             // its row functions, by their power, follow each other
  unsigned monomials[row_powers + 1];  // those of a power: from its number on up to the next
};

/// Offsets of the points from a centre, bohr.
struct RowAtom {
  const double* across[2];
  const double* along;
  unsigned first_radial, radial_count, power_max;
};

/// Orbitals whose collapsed coefficients fit in the second-level cache.
struct RowOrbitals {
  unsigned count, group_count;
  const double* coefficients;    // [monomial][RowPlan::stride]
  const double* magnitudes;      // likewise, with all that is added up taken positive; or null
  const double* weights;         // n, in sums over orbitals
  const double* energy_weights;  // n|ε|, hartree
};

struct RowPlan {
  FieldKind field;
  bool is_restricted, has_energies;  // of the density, and that not all are 0
  unsigned atom_count, radial_count, function_count, chunk_count, orbital_count;
  unsigned first_point, point_count;  // what of a row may be in sight; tiles start there
  unsigned tile_room;                 // tiles of that, rounded up to whole pieces
  unsigned stride;                    // of orbitals in a chunk
  const RowAtom* atoms;
  const RowRadial* radials;
  const RowTerm* terms;
  const RowMonomial* monomials;
  const RowOrbitals* chunks;
  RowBound bounds[2];
};

/// A radial in a piece: its terms from `first_term` on, in the tiles from `first_tile` up to `end_tile`.
struct RowUse {
  unsigned radial, first_term, first_tile, end_tile;
};

/// One unit of work: a piece of a row, or of neighbouring rows that are weighed together.
struct RowPiece {
  unsigned across[2];          // indices of the coordinates across
  unsigned row_count, moving;  // the coordinate across whose index is one more from row to row
  unsigned first_tile, tile_count;
  RowWeighing weighing;
  // The fields of the plan and their relative tolerances, `stride` values apart.
  double *fields, *tolerances;
  std::size_t stride, row_stride;
  // Working memory, on 64-byte boundaries.
  double* weights;       // [term]: times the factors across
  double* products;      // [atom][first power][second power]: of the offsets across
  double* peaks;         // [row function][tile]: no value of the function is larger in magnitude
  double* norms;         // [row function][norm]: of its collapsed coefficients
  double* shares;        // [radial][norm][tile]: at most so much comes from the radial
  double* point_shares;  // [radial][norm][point]: likewise in the tile at hand
  RowUse* uses;          // [radial]
  unsigned* functions;   // [tile][...]: the row functions that are not left out; at last those used in any
  double* values;        // [tile][row function][point of the tile]
  double *coefficients, *magnitudes;  // [row function][orbital]: collapsed
};

/// A kernel for one instruction set.
struct RowKernel {
  unsigned lanes, tile_points;
  unsigned tile_orbitals;  // at most so many orbitals together
  unsigned piece_tiles;    // at most so many tiles in a piece
  // Returns how the next piece thereabouts is weighed best; where it is out of sight, there are no values.
  RowWeighing (*run)(const RowPlan& plan, const RowPiece& piece);
};

// The kernels, each from the source that is compiled for its instruction set.
extern const RowKernel rows_plain;
#if defined(__x86_64__)
extern const RowKernel rows_avx2;
extern const RowKernel rows_avx512;
#endif
