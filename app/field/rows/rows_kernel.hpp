#pragma once

#include <cmath>

#include "app/field/point/eval.hpp"
#include "app/field/point/pack.hpp"
#include "app/field/rows/rows_bound.hpp"
#include "app/field/rows/rows_plan.hpp"

// The sweep over a piece of a row, for one type of pack. Included once by the translation unit of each
// instruction set, with a pack type of an unnamed namespace. Sums may be fused here: the bound holds either
// way.

/// One pass over a piece of a row. A tile is `TilePacks` packs wide; its orbital sums are formed for up to
/// `TileOrbitals` orbitals at once, so that the sums stay in registers: 24 of the 32 of AVX-512, 12 of the 16
/// of AVX2, and 8 of 16 where products are not fused with sums and need registers of their own.
template <class Real, unsigned TilePacks, unsigned TileOrbitals>
class RowPass {
 public:
  static constexpr RowKernel kernel() { return {Real::lanes, tile_points, TileOrbitals, piece_tiles, run}; }

 private:
  static constexpr unsigned tile_points = TilePacks * Real::lanes;
  static constexpr unsigned piece_tiles = 128 / tile_points;
  static constexpr unsigned any_tile = piece_tiles;  // the list of what is used in at least one tile
  static constexpr unsigned tile_packs = piece_tiles / Real::lanes;  // with a tile in each lane
  static_assert(tile_packs * Real::lanes * tile_points == 128);

  static RowWeighing run(const RowPlan& plan, const RowPiece& piece) {
    RowPass pass(plan, piece);
    pass.weigh();
    if (piece.weighing == row_by_points) {
      pass.weigh_points();
      if (!pass.is_in_sight()) {
        return row_out_of_sight;
      }
    }
    pass.choose();
    for (unsigned row = 0; row < piece.row_count; ++row) {
      pass.evaluate_row(row);
    }
    return pass.best_weighing();
  }

  RowPass(const RowPlan& plan, const RowPiece& piece)
      : plan_(plan), piece_(piece), bound_(plan.bounds[piece.weighing]), in_reach_(piece.uses) {}

  // What each radial in reach can come to at most in each tile, over all its functions and all orbitals, in
  // any of the rows.
  void weigh() {
    for (unsigned a = 0; a < plan_.atom_count; ++a) {
      const RowAtom& atom = plan_.atoms[a];
      const double* const along = atom.along + std::size_t{piece_.first_tile} * tile_points;
      const double start = along[0], end = along[std::size_t{piece_.tile_count} * tile_points - 1];
      const double near_along = start * end > 0.0 ? lower_of(std::fabs(start), std::fabs(end)) : 0.0;
      double near2 = near_along * near_along, far[2];
      for (unsigned c = 0; c < 2; ++c) {
        double near = HUGE_VAL;
        far[c] = 0.0;
        for (unsigned n = 0; n < (c == piece_.moving ? piece_.row_count : 1U); ++n) {
          const double distance = std::fabs(atom.across[c][piece_.across[c] + n]);
          near = lower_of(near, distance);
          far[c] = higher_of(far[c], distance);
        }
        near2 += near * near;
      }
      double products[row_powers * row_powers];
      multiply_out(atom, far[0], far[1], products);
      for (unsigned r = atom.first_radial; r < atom.first_radial + atom.radial_count; ++r) {
        const RowRadial& radial = plan_.radials[r];
        const RowTerm* const terms = plan_.terms + radial.first_term;
        const auto is_out = [&](unsigned t) { return terms[t].reach[piece_.weighing] < near2; };
        if (is_out(radial.term_count - 1)) {
          continue;
        }
        unsigned out_of_reach = 0;
        while (is_out(out_of_reach)) {
          ++out_of_reach;
        }
        weigh_radial(r, out_of_reach, products);
      }
    }
  }

  // Powers of the first offset across times powers of the second.
  static void multiply_out(const RowAtom& atom, double first, double second, double* products) {
    double power = 1.0;
    for (unsigned p = 0; p <= atom.power_max; ++p) {
      double product = power;
      for (unsigned q = 0; p + q <= atom.power_max; ++q) {
        products[p * row_powers + q] = product;
        product *= second;
      }
      power *= first;
    }
  }

  void weigh_radial(unsigned number, unsigned first_term, const double* products) {
    const RowRadial& radial = plan_.radials[number];
    const RowTerm* const terms = plan_.terms + radial.first_term + first_term;
    double* const weights = piece_.weights + radial.first_term + first_term;
    const unsigned term_count = radial.term_count - first_term;
    for (unsigned t = 0; t < term_count; ++t) {
      const double* const moving = terms[t].across[piece_.moving] + piece_.across[piece_.moving];
      double largest = moving[0];
      for (unsigned n = 1; n < piece_.row_count; ++n) {
        largest = higher_of(largest, moving[n]);
      }
      const unsigned other = 1 - piece_.moving;
      weights[t] = std::fabs(terms[t].weight) * largest * terms[t].across[other][piece_.across[other]];
    }
    in_reach_[in_reach_count_++] = {
        .radial = number, .first_term = first_term, .first_tile = 0, .end_tile = 0};
    for (unsigned power = 0; power <= radial.power_max; ++power) {
      double norms[2] = {};
      for (unsigned m = radial.monomials[power]; m < radial.monomials[power + 1]; ++m) {
        const double product = products[plan_.monomials[m].across];
        norms[0] += product * plan_.monomials[m].norms[0];
        norms[1] += product * plan_.monomials[m].norms[1];
      }
      norms_of(radial, power)[0] = norms[0];
      norms_of(radial, power)[1] = norms[1];
    }
    weigh_tiles(number, terms, weights, term_count);
  }

  double* norms_of(const RowRadial& radial, unsigned power) const {
    return piece_.norms + 2 * (std::size_t{radial.first_function} + power);
  }

  void weigh_tiles(unsigned number, const RowTerm* terms, const double* weights, unsigned term_count) {
    const RowRadial& radial = plan_.radials[number];
    Real shares[2][tile_packs] = {};
    const unsigned packs = (piece_.tile_count + Real::lanes - 1) / Real::lanes;
    for (unsigned power = 0; power <= radial.power_max; ++power) {
      const double* const norms = norms_of(radial, power);
      double* const peaks = piece_.peaks + std::size_t{radial.first_function + power} * piece_tiles;
      for (unsigned p = 0; p < packs; ++p) {
        const std::size_t at = std::size_t{power} * plan_.tile_room + piece_.first_tile + p * Real::lanes;
        Real peak = 0.0;
        for (unsigned t = 0; t < term_count; ++t) {
          peak = peak + weights[t] * Real::load(terms[t].peaks + at);
        }
        peak.store(peaks + p * Real::lanes);
        shares[0][p] = shares[0][p] + norms[0] * peak;
        shares[1][p] = shares[1][p] + norms[1] * peak;
      }
    }
    for (unsigned norm = 0; norm < 2; ++norm) {
      double* const to = shares_of(number, norm);
      for (unsigned p = 0; p < packs; ++p) {
        shares[norm][p].store(to + p * Real::lanes);
        totals_[norm][p] = totals_[norm][p] + shares[norm][p];
      }
    }
  }

  double* shares_of(unsigned radial, unsigned norm) const {
    return piece_.shares + (std::size_t{radial} * 2 + norm) * piece_tiles;
  }

  // The same for each point. What a radial comes to in a tile is then set to the largest part that it has of
  // a point's total, and the total to 1. The last radials of an atom reach farthest: against these, what most
  // of the others come to at most in a tile is next to nothing at all of its points.
  void weigh_points() {
    for (unsigned tile = 0; tile < piece_.tile_count; ++tile) {
      Real totals[2][TilePacks] = {};
      double low[2] = {};
      unsigned weighed_count = 0;
      for (unsigned n = in_reach_count_; n-- > 0;) {
        const unsigned radial = in_reach_[n].radial;
        double* const shares[2] = {shares_of(radial, 0) + tile, shares_of(radial, 1) + tile};
        if (*shares[0] < bound_.cut * low[0]) {
          *shares[0] /= low[0];
          *shares[1] /= low[1];
          continue;
        }
        weigh_points_of(in_reach_[n], tile, totals);
        piece_.functions[weighed_count++] = radial;  // there are no functions in it yet
        for (unsigned norm = 0; norm < 2; ++norm) {
          low[norm] = lowest(totals[norm][0]);
          for (const Real& total : totals[norm]) {
            low[norm] = lower_of(low[norm], lowest(total));
          }
        }
      }
      for (unsigned norm = 0; norm < 2; ++norm) {
        Real inverses[TilePacks];
        for (unsigned p = 0; p < TilePacks; ++p) {
          const Real inverse = 1.0 / totals[norm][p];
          const auto is_least = is_below(totals[norm][p], Real(rows_least));
          inverses[p] = from_bits(bits_of(inverse) & ~is_least, inverse);
          point_totals_[norm][tile][p] =
              higher_of(totals[norm][p], from_bits(bits_of(Real(HUGE_VAL)) & is_least, inverse));
        }
        for (unsigned n = 0; n < weighed_count; ++n) {
          const unsigned radial = piece_.functions[n];
          const double* const shares = point_shares_of(radial, norm);
          Real part = 0.0;
          for (unsigned p = 0; p < TilePacks; ++p) {
            part = higher_of(part, Real::load(shares + p * Real::lanes) * inverses[p]);
          }
          shares_of(radial, norm)[tile] = highest(part);
        }
      }
    }
    for (Real(&totals)[tile_packs] : totals_) {
      for (Real& total : totals) {
        total = 1.0;
      }
    }
  }

  // Whether at any point there is enough to know anything.
  bool is_in_sight() const {
    double low = HUGE_VAL;
    for (unsigned tile = 0; tile < piece_.tile_count; ++tile) {
      for (const Real& totals : point_totals_[0][tile]) {
        low = lower_of(low, lowest(totals));
      }
    }
    return low < HUGE_VAL;
  }

  void weigh_points_of(const RowUse& use, unsigned tile, Real (&totals)[2][TilePacks]) const {
    const RowRadial& radial = plan_.radials[use.radial];
    const std::size_t at = (std::size_t{piece_.first_tile} + tile) * tile_points;
    Real values[TilePacks] = {}, shares[2][TilePacks] = {};
    for (unsigned t = use.first_term; t < radial.term_count; ++t) {
      const double weight = piece_.weights[radial.first_term + t];
      const double* const along = plan_.terms[radial.first_term + t].along + at;
      for (unsigned p = 0; p < TilePacks; ++p) {
        values[p] = values[p] + weight * Real::load(along + p * Real::lanes);
      }
    }
    for (unsigned power = 0; power <= radial.power_max; ++power) {
      const double* const norms = norms_of(radial, power);
      for (unsigned p = 0; p < TilePacks; ++p) {
        shares[0][p] = shares[0][p] + norms[0] * values[p];
        shares[1][p] = shares[1][p] + norms[1] * values[p];
        const Real offset = Real::load(plan_.atoms[radial.atom].along + at + p * Real::lanes);
        values[p] = values[p] * higher_of(offset, 0.0 - offset);
      }
    }
    for (unsigned norm = 0; norm < 2; ++norm) {
      for (unsigned p = 0; p < TilePacks; ++p) {
        shares[norm][p].store(point_shares_of(use.radial, norm) + p * Real::lanes);
        totals[norm][p] = totals[norm][p] + shares[norm][p];
      }
    }
  }

  double* point_shares_of(unsigned radial, unsigned norm) const {
    return piece_.point_shares + (std::size_t{radial} * 2 + norm) * tile_points;
  }

  // Leaves out the radials that come to next to nothing in a tile, and sets the bounds.
  void choose() {
    double totals[2][piece_tiles], left_out[2][piece_tiles] = {};
    for (unsigned norm = 0; norm < 2; ++norm) {
      for (unsigned p = 0; p < tile_packs; ++p) {
        totals_[norm][p].store(totals[norm] + p * Real::lanes);
      }
    }
    unsigned summand_counts[piece_tiles] = {}, used_count = 0;
    for (unsigned n = 0; n < in_reach_count_; ++n) {
      RowUse use = in_reach_[n];
      const RowRadial& radial = plan_.radials[use.radial];
      const double* const shares[2] = {shares_of(use.radial, 0), shares_of(use.radial, 1)};
      for (unsigned tile = 0; tile < piece_.tile_count; ++tile) {
        if (shares[0][tile] > bound_.cut * totals[0][tile]) {
          add_functions(radial, tile);
          summand_counts[tile] += radial.basis_count + radial.power_max + 1;
          use.first_tile = use.end_tile == 0 ? tile : use.first_tile;
          use.end_tile = tile + 1;
        } else {
          left_out[0][tile] += shares[0][tile];
          left_out[1][tile] += shares[1][tile];
        }
      }
      if (use.end_tile > 0) {
        in_reach_[used_count++] = use;
        add_functions(radial, any_tile);
      }
    }
    in_reach_count_ = used_count;
    for (unsigned tile = 0; tile < piece_.tile_count; ++tile) {
      rounding_[tile] = bound_.rounding + summand_counts[tile] * rows_rounding_of_summand;
      for (unsigned norm = 0; norm < 2; ++norm) {
        const double tail = 2.0 * bound_.tail[norm];
        left_out_[norm][tile] = 2.0 * left_out[norm][tile] + tail;
        if (piece_.weighing == row_by_tiles) {
          set_bound(norm, tile, rounding_[tile] * totals[norm][tile] + left_out_[norm][tile]);
        } else {
          for (unsigned p = 0; p < TilePacks; ++p) {
            bounds_[norm][tile][p] =
                (rounding_[tile] + 2.0 * left_out[norm][tile]) * point_totals_[norm][tile][p] + tail;
          }
        }
      }
    }
  }

  void set_bound(unsigned norm, unsigned tile, double bound) {
    for (Real& of_pack : bounds_[norm][tile]) {
      of_pack = bound;
    }
  }

  void add_functions(const RowRadial& radial, unsigned tile) {
    unsigned* const functions = functions_of(tile);
    for (unsigned power = 0; power <= radial.power_max; ++power) {
      functions[function_counts_[tile]++] = radial.first_function + power;
    }
  }

  unsigned* functions_of(unsigned tile) const {
    return piece_.functions + std::size_t{tile} * plan_.function_count;
  }
  double* values_of(unsigned tile) const {
    return piece_.values + std::size_t{tile} * plan_.function_count * tile_points;
  }

  void evaluate_row(unsigned row) {
    row_ = row;
    multiply_factors();
    evaluate_functions();
    unsigned first_orbital = 0;
    for (unsigned c = 0; c < plan_.chunk_count; ++c) {
      collapse(plan_.chunks[c]);
      evaluate_orbitals(plan_.chunks[c], first_orbital);
      first_orbital += plan_.chunks[c].count;
    }
    if (plan_.field == FieldKind::density_and_potential) {
      finish_density();
    }
  }

  // What the radials in use need of the place of the row.
  void multiply_factors() const {
    unsigned across[2] = {piece_.across[0], piece_.across[1]};
    across[piece_.moving] += row_;
    unsigned last = plan_.atom_count;
    for (unsigned n = 0; n < in_reach_count_; ++n) {
      const RowRadial& radial = plan_.radials[in_reach_[n].radial];
      if (radial.atom != last) {
        last = radial.atom;
        const RowAtom& atom = plan_.atoms[last];
        multiply_out(atom, atom.across[0][across[0]], atom.across[1][across[1]], products_of(last));
      }
      for (unsigned t = radial.first_term + in_reach_[n].first_term;
           t < radial.first_term + radial.term_count; ++t) {
        const RowTerm& term = plan_.terms[t];
        piece_.weights[t] = term.weight * term.across[0][across[0]] * term.across[1][across[1]];
      }
    }
  }

  double* products_of(unsigned atom) const {
    return piece_.products + std::size_t{atom} * row_powers * row_powers;
  }

  // Most radials have few terms, and most powers few monomials: with their number known when compiled, sums
  // need no loop.
  template <class Evaluate>
  static void with_count(unsigned count, Evaluate evaluate) {
    switch (count) {
      case 1:
        return evaluate(std::integral_constant<unsigned, 1>{});
      case 2:
        return evaluate(std::integral_constant<unsigned, 2>{});
      case 3:
        return evaluate(std::integral_constant<unsigned, 3>{});
      default:
        evaluate(count);
    }
  }

  // The row functions of the radials in use.
  void evaluate_functions() const {
    for (unsigned n = 0; n < in_reach_count_; ++n) {
      const RowUse& use = in_reach_[n];
      const RowRadial& radial = plan_.radials[use.radial];
      with_count(radial.term_count - use.first_term, [&](auto count) {
        with_count(radial.power_max + 1, [&](auto power_count) { evaluate_radial(use, count, power_count); });
      });
    }
  }

  template <class Count, class PowerCount>
  void evaluate_radial(const RowUse& use, Count count, PowerCount power_count) const {
    const RowRadial& radial = plan_.radials[use.radial];
    const unsigned first_term = radial.first_term + use.first_term;
    const RowTerm* const terms = plan_.terms + first_term;
    const double* const offsets = plan_.atoms[radial.atom].along;
    for (unsigned tile = use.first_tile; tile < use.end_tile; ++tile) {
      const std::size_t at = std::size_t{piece_.first_tile + tile} * tile_points;
      double* const values = values_of(tile) + std::size_t{radial.first_function} * tile_points;
      Real sums[TilePacks];
      eval_contractions(
          piece_.weights + first_term, count,
          [&](unsigned t, std::size_t p) { return Real::load(terms[t].along + at + p * Real::lanes); }, sums);
      for (unsigned p = 0; p < TilePacks; ++p) {
        double* const to = values + p * Real::lanes;
        sums[p].store(to);
        for (unsigned power = 1; power < power_count; ++power) {
          sums[p] = sums[p] * Real::load(offsets + at + p * Real::lanes);
          sums[p].store(to + std::size_t{power} * tile_points);
        }
      }
    }
  }

  // The coefficients of the row functions in a chunk of orbitals.
  void collapse(const RowOrbitals& chunk) const {
    for (unsigned n = 0; n < in_reach_count_; ++n) {
      collapse_radial(chunk, plan_.radials[in_reach_[n].radial]);
    }
  }

  void collapse_radial(const RowOrbitals& chunk, const RowRadial& radial) const {
    const double* const products = products_of(radial.atom);
    for (unsigned power = 0; power <= radial.power_max; ++power) {
      const unsigned first = radial.monomials[power];
      const std::size_t at = std::size_t{radial.first_function + power} * plan_.stride;
      with_count(radial.monomials[power + 1] - first, [&](auto count) {
        sum_monomials(
            first, count, chunk.coefficients, [&](unsigned across) { return products[across]; },
            piece_.coefficients + at);
        if (chunk.magnitudes != nullptr) {
          sum_monomials(
              first, count, chunk.magnitudes, [&](unsigned across) { return std::fabs(products[across]); },
              piece_.magnitudes + at);
        }
      });
    }
  }

  template <class Count, class Product>
  void sum_monomials(unsigned first, Count count, const double* coefficients, Product product,
                     double* to) const {
    const std::size_t stride = plan_.stride;
    const double* const from = coefficients + first * stride;
    double products[shell_function_count(shell_max)];
    for (unsigned m = 0; m < count; ++m) {
      products[m] = product(plan_.monomials[first + m].across);
    }
    for (std::size_t o = 0; o < stride; o += Real::lanes) {
      Real sum = 0.0;
      for (unsigned m = 0; m < count; ++m) {
        sum = sum + products[m] * Real::load(from + m * stride + o);
      }
      sum.store(to + o);
    }
  }

  void evaluate_orbitals(const RowOrbitals& chunk, unsigned first_orbital) {
    for (unsigned g = 0; g < chunk.group_count; ++g) {
      const unsigned first = g * chunk.count / chunk.group_count;
      const unsigned count = (g + 1) * chunk.count / chunk.group_count - first;
      [&]<unsigned... I>(std::integer_sequence<unsigned, I...>) {
        ((count == I + 1 ? evaluate_group<I + 1>(chunk, first, first_orbital) : void()), ...);
      }
      (std::make_integer_sequence<unsigned, TileOrbitals>{});
    }
  }

  // Orbitals of a chunk, from its number `first` on, in all tiles.
  template <unsigned Orbitals>
  [[gnu::noinline]] void evaluate_group(const RowOrbitals& chunk, unsigned first, unsigned first_orbital) {
    const double* const coefficients = piece_.coefficients + first;
    double peaks[Orbitals][piece_tiles];
    const bool has_peaks = chunk.magnitudes != nullptr && piece_.weighing == row_by_tiles;
    if (has_peaks) {
      find_peaks(first, peaks);
    }
    for (unsigned tile = 0; tile < piece_.tile_count; ++tile) {
      const unsigned* const functions = functions_of(tile);
      const double* const values = values_of(tile);
      Real orbitals[Orbitals][TilePacks];
      eval_orbitals(
          coefficients, plan_.stride, function_counts_[tile], [&](unsigned k) { return functions[k]; },
          [&](std::size_t f, unsigned p) { return Real::load(values + f * tile_points + p * Real::lanes); },
          orbitals);
      for (unsigned o = 0; o < Orbitals; ++o) {
        if (plan_.field == FieldKind::density_and_potential) {
          for (unsigned p = 0; p < TilePacks; ++p) {
            sums_[tile][p].add(orbitals[o][p], chunk.weights[first + o], chunk.energy_weights[first + o]);
          }
        } else {
          if (has_peaks) {
            set_bound(0, tile, rounding_[tile] * peaks[o][tile] + left_out_[0][tile]);
          }
          finish_orbital(orbitals[o], tile, first_orbital + first + o);
        }
      }
    }
  }

  // What the orbitals come to at most in each tile: their sums as above, of magnitudes, with a tile in each
  // lane.
  template <unsigned Orbitals>
  void find_peaks(unsigned first, double (&peaks)[Orbitals][piece_tiles]) const {
    const unsigned* const functions = functions_of(any_tile);
    for (unsigned tile = 0; tile < piece_.tile_count; tile += Real::lanes) {
      Real sums[Orbitals][1];
      eval_orbitals(
          piece_.magnitudes + first, plan_.stride, function_counts_[any_tile],
          [&](unsigned k) { return functions[k]; },
          [&](std::size_t f, unsigned) { return Real::load(piece_.peaks + f * piece_tiles + tile); }, sums);
      for (unsigned o = 0; o < Orbitals; ++o) {
        sums[o][0].store(peaks[o] + tile);
      }
    }
  }

  void finish_orbital(const Real (&values)[TilePacks], unsigned tile, std::size_t orbital) {
    for (unsigned p = 0; p < TilePacks; ++p) {
      const std::size_t at = orbital * piece_.stride + place_of(tile, p);
      const Real relative = bounds_[0][tile][p] / higher_of(values[p], 0.0 - values[p]);
      poorness_ = poorness_ + lower_of(relative, Real(poor));
      if (plan_.field == FieldKind::orbital) {
        values[p].store(piece_.fields + at);
        relative.store(piece_.tolerances + at);
      } else {
        eval_square(values[p]).store(piece_.fields + at);
        rows_square_tolerance(relative).store(piece_.tolerances + at);
      }
    }
  }

  // Of a pack, among the values of the first field.
  std::size_t place_of(unsigned tile, unsigned pack) const {
    return row_ * piece_.row_stride + std::size_t{tile} * tile_points + std::size_t{pack} * Real::lanes;
  }

  void finish_density() {
    for (unsigned tile = 0; tile < piece_.tile_count; ++tile) {
      double density = HUGE_VAL, weighted = HUGE_VAL;
      for (const OccupiedSums<Real>& sums : sums_[tile]) {
        density = lower_of(density, lowest(sums.density));
        weighted = lower_of(weighted, lowest(sums.weighted));
      }
      const Tolerances together = tolerances_of(tile, 0, density, weighted);
      const bool is_alone =
          piece_.weighing == row_by_points || !(together.density < alone && together.potential < alone);
      for (unsigned p = 0; p < TilePacks; ++p) {
        const OccupiedSums<Real>& sums = sums_[tile][p];
        const std::size_t at = place_of(tile, p);
        double *const field = piece_.fields + at, *const relative = piece_.tolerances + at;
        eval_total(sums, plan_.is_restricted).store(field);
        eval_potential(sums, false).store(field + piece_.stride);
        Real(together.density).store(relative);
        Real(together.potential).store(relative + piece_.stride);
        if (is_alone) {
          settle_alone(tile, p, relative);
        }
        poorness_ = poorness_ + lower_of(Real::load(relative), Real(poor));
        sums_[tile][p] = {};
      }
    }
  }

  // Tolerances of each point of a pack.
  void settle_alone(unsigned tile, unsigned p, double* relative) const {
    double density[Real::lanes], weighted[Real::lanes];
    sums_[tile][p].density.store(density);
    sums_[tile][p].weighted.store(weighted);
    for (unsigned lane = 0; lane < Real::lanes; ++lane) {
      const Tolerances own = tolerances_of(tile, p * Real::lanes + lane, density[lane], weighted[lane]);
      relative[lane] = own.density;
      relative[piece_.stride + lane] = own.potential;
    }
  }

  struct Tolerances {
    double density, potential;
  };

  Tolerances tolerances_of(unsigned tile, unsigned point, double density, double weighted) const {
    const auto bound = [&](unsigned norm) {
      return bounds_[norm][tile][point / Real::lanes].lane[point % Real::lanes];
    };
    const double tolerance = rows_sum_tolerance(bound(0), density, plan_.orbital_count);
    if (!plan_.has_energies) {
      // 0 divided by a density that is not 0: exactly 0.
      return {tolerance, tolerance < 0.5 ? 0.0 : HUGE_VAL};
    }
    const double weighted_tolerance = rows_sum_tolerance(bound(1), weighted, plan_.orbital_count);
    return {tolerance, rows_quotient_tolerance(weighted_tolerance, tolerance)};
  }

  // By points where tolerances are poor on an average; by tiles again where there they would not be.
  RowWeighing best_weighing() const {
    double sum = 0.0, count = piece_.tile_count * piece_.row_count;
    if (piece_.weighing == row_by_tiles) {
      double poorness[Real::lanes];
      poorness_.store(poorness);
      for (const double part : poorness) {
        sum += part;
      }
      count *= tile_points * (plan_.field == FieldKind::density_and_potential ? 1.0 : plan_.orbital_count);
    } else {
      const RowBound& other = plan_.bounds[row_by_tiles];
      for (unsigned tile = 0; tile < piece_.tile_count; ++tile) {
        double low = HUGE_VAL, high = 0.0;
        for (const Real& totals : point_totals_[0][tile]) {
          low = lower_of(low, lowest(totals));
          high = higher_of(high, highest(totals));
        }
        // Orbitals cancel; in all, they come to about an eighth of what is added up.
        sum += lower_of(8.0 * (other.rounding * high + 2.0 * other.tail[0]) / low, poor);
      }
    }
    return sum < often * count ? row_by_tiles : row_by_points;
  }

  // Tolerances below `alone` leave next to nothing in doubt, `often` as much as it costs to weigh by points;
  // one above `poor` counts as this.
  static constexpr double alone = 1e-10, often = 1e-9, poor = 1e-8;

  Real totals_[2][tile_packs] = {};
  OccupiedSums<Real> sums_[piece_tiles][TilePacks];
  double rounding_[piece_tiles], left_out_[2][piece_tiles];
  Real bounds_[2][piece_tiles][TilePacks], point_totals_[2][piece_tiles][TilePacks];
  Real poorness_ = 0.0;
  const RowPlan& plan_;
  const RowPiece& piece_;
  const RowBound& bound_;
  RowUse* const in_reach_;  // the radials in reach, then those in use
  unsigned function_counts_[any_tile + 1] = {};
  unsigned in_reach_count_ = 0;
  unsigned row_ = 0;  // the row at hand
};
