#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <span>

#include "app/model/cube_definition.hpp"
#include "app/model/field.hpp"
#include "app/model/molecule.hpp"

// The one door to the values of fields. Behind it they are evaluated in three ways:
//
//   way      what it gives                            where                         time a value, about
//   point/   the definition, one point at a time      tests compare with it         13 to 70
//   exact/   its bits, many points at once            points of any list, and what  1
//                                                     rows leave in doubt
//   rows/    a value, and how far, relatively, the    rows of a grid whose steps    1/18 to 1/2
//            exact one may be from it                 lie along the axes
//
// Who asks says what must be known: of a row on a grid, which of its values are too vague, given how far they
// may be off (`settle`: for a text of six digits, for the side of a level); or that all must be exact (`at`).
// All else is decided here: whether rows can do a grid and are worth while on it, and which instruction set
// runs.

/// A point, bohr.
using Point = std::array<double, 3>;

class Fields {
 public:
  /// The fields of a kind on a grid: the total density (0, bohr^-3) and the average local ionization
  /// potential (1, hartree; NaN where the density is 0), for which `orbitals` is empty; or of each of
  /// `orbitals` its value (bohr^(-3/2)) or its density (bohr^-3). Both the molecule and the grid must stay.
  /// An unknown ORVA_KERNEL or ORVA_ROWS ends the run: see fields_check. Without memory this and all that
  /// evaluates throw std::bad_alloc.
  Fields(const Molecule* molecule, const CubeDefinition* cube, FieldKind kind,
         std::span<const Orbital> orbitals = {});
  ~Fields();

  /// Goes on to the next points of the grid in the order of cube files, the third index fastest: rows, or,
  /// where they are exact, as many as suit, wherever rows end. False at the end of the grid.
  bool next();

  /// Goes to the row of the points (i, j, 0), (i, j, 1) ... of the grid; `next` goes on where it was.
  void row(unsigned i, unsigned j);

  /// How much of the grid `next` has done, 0 to 1.
  double part_done() const;

  /// Whether the values at hand are the exact ones.
  bool is_exact() const;

  /// How many rows are at hand, where they are not exact.
  unsigned row_count() const;

  /// Values of a field at the points at hand, up to the next call of anything that evaluates: of one of the
  /// rows, or all that are exact.
  std::span<const double> values(std::size_t field, unsigned row = 0) const;

  /// How far, relatively, the exact values may be from those of a row that is not exact; infinite or NaN
  /// where nothing is known.
  std::span<const double> tolerances(std::size_t field, unsigned row = 0) const;

  /// Makes values of the rows exact, in all fields, where `in_doubt` (a number a point) is not 0. To be
  /// called once for rows that are not exact: from what is in doubt follows whether the next are worth while.
  void settle(std::span<const unsigned char> in_doubt);

  /// Exact values at points of any list: values[field · points.size() + n]. Coordinates are numbers of a
  /// magnitude of at most 1e30 bohr.
  void at(std::span<const Point> points, std::span<double> values);

  /// The values of all basis functions that the exact sweep had last, in an order of its own; undefined
  /// before.
  double* basis_values();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

/// The fields at one point (x, y, z in bohr) by their definition, which all else is compared with: `first`
/// and `second` as fields 0 and 1 of Fields; of an orbital only `first`. `basis_values` gets the values of
/// all basis functions.
void fields_at_point(const Molecule* molecule, const double* point, FieldKind kind, const Orbital* orbital,
                     double* basis_values, double* first, double* second);

/// Numbers that the sweeps of many orbitals together keep for each of them, at most about.
double fields_numbers_kept(unsigned basis_count, unsigned row_length);

/// Ends the run with "kernel \"%s\" is not available, only ..." if the environment variable ORVA_KERNEL names
/// no instruction set that the program and the processor have, and with "ORVA_ROWS is \"%s\", neither
/// \"always\" nor \"never\"" if that, which has rows everywhere or nowhere, is something else.
void fields_check();
