#pragma once

#include <cmath>

#include "app/field/exact/sweep_plan.hpp"
#include "app/field/point/eval.hpp"
#include "app/field/point/exponential.hpp"
#include "app/field/point/pack.hpp"
#include "app/field/point/prim.hpp"

// The sweep over a block of points, for one type of pack. Included once by the translation unit of each
// instruction set, with a pack type of an unnamed namespace.

/// One pass over a block. A tile is `TilePacks` packs wide; its orbital sums are formed for up to
/// `TileOrbitals` orbitals at once, so that the sums stay in registers: 12 of the 32 of AVX-512, 8 of 16
/// else. Products, which must not be fused with sums, need others; with so many chains of sums the
/// processor's units for products and sums are busy, and more orbitals are no faster.
template <class Real, unsigned TilePacks, unsigned TileOrbitals>
class SweepPass {
 public:
  static constexpr SweepKernel kernel() {
    return {Real::lanes, tile_points, TileOrbitals, block_points_max, run};
  }

 private:
  static constexpr unsigned pack_max = sweep_packs_max;
  static constexpr unsigned tiles_max = pack_max / TilePacks;
  static constexpr unsigned tile_points = TilePacks * Real::lanes;
  static constexpr unsigned block_points_max = pack_max * Real::lanes;
  static_assert(pack_max % TilePacks == 0 && TilePacks % 2 == 0);

  static void run(const SweepPlan& plan, const SweepBlock& block) {
    SweepPass pass(plan, block);
    __builtin_memset(block.active, plan.may_skip_functions ? 0 : 1,
                     std::size_t{tiles_max} * plan.shell_count);
    pass.enclose_packs();
    for (unsigned a = 0; a < plan.atom_count; ++a) {
      pass.evaluate_atom(plan.atoms[a]);
    }
    for (unsigned tile = 0; tile < block.point_count / tile_points; ++tile) {
      pass.evaluate_fields(tile);
    }
  }

  SweepPass(const SweepPlan& plan, const SweepBlock& block) : plan_(plan), block_(block) {}

  void enclose_packs() {
    const double* const axes[3] = {block_.x, block_.y, block_.z};
    for (unsigned c = 0; c < 3; ++c) {
      for (unsigned p = 0; p < block_.point_count / Real::lanes; ++p) {
        const Real coordinates = Real::load(axes[c] + p * Real::lanes);
        boxes_.low[c][p] = lowest(coordinates);
        boxes_.high[c][p] = highest(coordinates);
      }
    }
  }

  // All basis functions of an atom.
  void evaluate_atom(const SweepAtom& atom) {
    look_around(atom);
    for (unsigned e = 0; e < atom.exponential_count; ++e) {
      evaluate_exponential(atom.exponentials[e], block_.exponentials + std::size_t{e} * block_points_max);
    }
    for (const SweepShell* shell = atom.shells; shell != atom.shells + atom.shell_count; ++shell) {
      prim_shell(shell->type, [&](const auto& factors) {
        if (shell->is_whole) {
          evaluate_shell(*shell, factors);
        } else {
          angular_select(factors, shell->component,
                         [&](const auto& factor) { evaluate_shell(*shell, std::tie(factor)); });
        }
      });
    }
  }

  // Where the packs lie as seen from an atom.
  void look_around(const SweepAtom& atom) {
    around_.pack_count = block_.point_count / Real::lanes;
    double nearest[pack_max], farthest[pack_max];
    for (unsigned p = 0; p < pack_max; p += Real::lanes) {
      Real near = 0.0, far = 0.0;
      for (unsigned c = 0; c < 3; ++c) {
        const Real below = Real::load(boxes_.low[c] + p) - atom.coord[c];
        const Real above = atom.coord[c] - Real::load(boxes_.high[c] + p);
        const Real outside = higher_of(higher_of(below, above), Real(0.0));
        const Real across = lower_of(below, above);  // to the far side, negative
        near = near + outside * outside;
        far = far + across * across;
      }
      (plan_.may_skip_primitives ? near : Real(0.0)).store(nearest + p);
      (plan_.may_skip_primitives ? far : Real(HUGE_VAL)).store(farthest + p);
    }
    sort_packs(nearest, farthest);
    for (unsigned s = 0; s < around_.pack_count; ++s) {
      const unsigned p = around_.order[s];
      const unsigned at = p * Real::lanes;
      const Vector<Real> point = {Real::load(block_.x + at), Real::load(block_.y + at),
                                  Real::load(block_.z + at)};
      around_.offset[s] = prim_offset(point, atom.coord);
      around_.r2[s] = prim_r2(around_.offset[s]);
      around_.place[s] =
          std::size_t{p / TilePacks} * plan_.basis_count * tile_points + p % TilePacks * Real::lanes;
    }
  }

  // Each pack's rank is the number of packs nearer than it; all ranks are counted side by side.
  void sort_packs(const double* nearest, const double* farthest) {
    double keys[pack_max];
    for (unsigned p = 0; p < pack_max; ++p) {
      keys[p] = distinct_key(nearest[p], p);
    }
    typename Real::Bits ranks[pack_max / Real::lanes] = {};
    for (unsigned p = 0; p < around_.pack_count; ++p) {
      const Real key = keys[p];
      for (unsigned q = 0; q < pack_max; q += Real::lanes) {
        ranks[q / Real::lanes] -= is_below(key, Real::load(keys + q));
      }
    }
    for (unsigned p = 0; p < around_.pack_count; ++p) {
      around_.order[ranks[p / Real::lanes][p % Real::lanes]] = static_cast<unsigned char>(p);
    }
    double farthest_so_far = 0.0;
    for (unsigned s = 0; s < pack_max; ++s) {
      const bool is_there = s < around_.pack_count;
      const double far = is_there ? farthest[around_.order[s]] : HUGE_VAL;
      farthest_so_far = farthest_so_far < far ? far : farthest_so_far;
      around_.nearest[s] = is_there ? nearest[around_.order[s]] : HUGE_VAL;
      around_.farthest[s] = farthest_so_far;
    }
  }

  // The number with the position in place of its lowest bits, so that no two packs have the same rank. Packs
  // that change places by it are equally near to 14 digits, and every reach has more room than that.
  static double distinct_key(double number, unsigned position) {
    static_assert((pack_max & (pack_max - 1)) == 0);
    std::uint64_t bits;
    __builtin_memcpy(&bits, &number, sizeof bits);
    bits = (bits & ~std::uint64_t{pack_max - 1}) | position;
    __builtin_memcpy(&number, &bits, sizeof bits);
    return number;
  }

  // How many of the ascending numbers are below `bound`: a bisection without branches, which could not be
  // foretold.
  static unsigned count_below(const double (&numbers)[pack_max], double bound) {
    unsigned count = 0;
    for (unsigned step = pack_max / 2; step > 0; step /= 2) {
      count += step * static_cast<unsigned>(numbers[count + step - 1] < bound);
    }
    return count + static_cast<unsigned>(numbers[count] < bound);
  }

  void evaluate_exponential(const SweepExponential& exponential_of, double* values) const {
    const unsigned count = count_below(around_.nearest, exponential_of.reach);
    const unsigned normal_count = count_below(around_.farthest, exponential_of.normal_reach);
    const Real factor = -exponential_of.exponent;
    // Two at a time keep the processor busy; a value too many behind the last does no harm.
    unsigned s = 0;
    for (const unsigned end = count < normal_count ? count : normal_count; s < end; s += 2) {
      const Real one = exponential_normal(around_.r2[s] * factor);
      const Real other = exponential_normal(around_.r2[s + 1] * factor);
      one.store(values + s * Real::lanes);
      other.store(values + (s + 1) * Real::lanes);
    }
    for (s = normal_count; s < count; ++s) {
      exponential(around_.r2[s] * factor).store(values + s * Real::lanes);
    }
  }

  // All functions of a shell, whose angular factors are given.
  template <class Angular>
  void evaluate_shell(const SweepShell& shell, const Angular& angular) const {
    // The farther away a pack, the later the term that its sums may start at.
    unsigned s = 0;
    for (unsigned first = 0; first < shell.term_count; ++first) {
      const unsigned end = count_below(around_.nearest, shell.terms[first].reach);
      if (first + 1 == shell.term_count) {  // most frequent: known when compiled, it needs no loop
        for (; s < end; ++s) {
          evaluate_pack(shell, s, first, std::integral_constant<unsigned, 1>{}, angular);
        }
      } else {
        for (; s < end; ++s) {
          evaluate_pack(shell, s, first, shell.term_count - first, angular);
        }
      }
    }
    for (unsigned in_reach = 0; in_reach < s; ++in_reach) {
      block_.active[shell.number * tiles_max + around_.order[in_reach] / TilePacks] = 1;
    }
    const Real zeros[std::tuple_size_v<Angular>] = {};
    for (; s < around_.pack_count; ++s) {
      store_functions(shell, s, zeros);
    }
  }

  template <std::size_t Functions>
  void store_functions(const SweepShell& shell, unsigned s, const Real (&functions)[Functions]) const {
    double* const values = block_.values + around_.place[s] + shell.basis_index * tile_points;
    for (std::size_t f = 0; f < Functions; ++f) {
      functions[f].store(values + f * tile_points);
    }
  }

  // The functions of a shell at one pack, summed over `count` terms from `first` on.
  template <class Count, class Angular>
  void evaluate_pack(const SweepShell& shell, unsigned s, unsigned first, Count count,
                     const Angular& angular) const {
    constexpr std::size_t functions = std::tuple_size_v<Angular>;
    const auto factors =
        std::apply([&](const auto&... one) { return std::array{one(around_.offset[s])...}; }, angular);
    const double* const norms = shell.norms + first * functions;
    const SweepTerm* const terms = shell.terms + first;
    const double* const exponentials = block_.exponentials + s * Real::lanes;
    Real sums[functions];
    eval_contractions(
        shell.coefficients + first, count,
        [&](unsigned i, std::size_t f) {
          const Real exponential =
              Real::load(exponentials + std::size_t{terms[i].exponential} * block_points_max);
          return prim_value(Real(norms[i * functions + f]), exponential, factors[f]);
        },
        sums);
    store_functions(shell, s, sums);
  }

  void evaluate_fields(unsigned tile) const {
    const unsigned active_count = list_active(tile);
    OccupiedSums<Real> sums[TilePacks];
    double* output = block_.fields + std::size_t{tile} * tile_points;
    for (unsigned g = 0; g < plan_.group_count; ++g) {
      evaluate_group(plan_.groups[g], tile, active_count, sums, output);
      output += plan_.groups[g].count * block_.stride;
    }
    if (plan_.field == FieldKind::density_and_potential) {
      for (unsigned p = 0; p < TilePacks; ++p) {
        const std::size_t at = tile * tile_points + p * Real::lanes;
        eval_total(sums[p], plan_.is_restricted).store(block_.fields + at);
        eval_potential(sums[p], plan_.has_no_pairs).store(block_.fields + block_.stride + at);
      }
    }
  }

  // Lists the basis functions that are not 0 in the whole tile, in order.
  unsigned list_active(unsigned tile) const {
    unsigned count = 0;
    for (unsigned n = 0; n < plan_.shell_count; ++n) {
      if (block_.active[n * tiles_max + tile] != 0) {
        for (unsigned b = plan_.shell_starts[n]; b < plan_.shell_starts[n + 1]; ++b) {
          block_.active_list[count++] = b;
        }
      }
    }
    return count;
  }

  // The orbitals of a group at a tile: added to the sums, or written to `output`.
  void evaluate_group(const SweepOrbitals& group, unsigned tile, unsigned active_count,
                      OccupiedSums<Real> (&sums)[TilePacks], double* output) const {
    [&]<unsigned... I>(std::integer_sequence<unsigned, I...>) {
      ((group.count == I + 1 ? evaluate_orbitals<I + 1>(group, tile, active_count, sums, output) : void()),
       ...);
    }
    (std::make_integer_sequence<unsigned, TileOrbitals>{});
  }

  template <unsigned Orbitals>
  void evaluate_orbitals(const SweepOrbitals& group, unsigned tile, unsigned active_count,
                         OccupiedSums<Real> (&sums)[TilePacks], double* output) const {
    const double* const values = block_.values + std::size_t{tile} * plan_.basis_count * tile_points;
    Real orbitals[Orbitals][TilePacks];
    eval_orbitals(
        group.coefficients, std::integral_constant<unsigned, Orbitals>{}, active_count,
        [&](unsigned k) { return block_.active_list[k]; },
        [&](std::size_t b, unsigned p) { return Real::load(values + b * tile_points + p * Real::lanes); },
        orbitals);
    for (unsigned o = 0; o < Orbitals; ++o) {
      for (unsigned p = 0; p < TilePacks; ++p) {
        double* const to = output + o * block_.stride + p * Real::lanes;
        switch (plan_.field) {
          case FieldKind::density_and_potential:
            sums[p].add(orbitals[o][p], group.weights[o], group.energy_weights[o]);
            break;
          case FieldKind::orbital:
            orbitals[o][p].store(to);
            break;
          case FieldKind::orbital_density:
            eval_square(orbitals[o][p]).store(to);
            break;
        }
      }
    }
  }

  const SweepPlan& plan_;
  const SweepBlock& block_;

  // The smallest box, with sides along the axes, around the points of each pack.
  struct {
    double low[3][pack_max], high[3][pack_max];
  } boxes_{};

  // Where the points lie as seen from the atom at hand. The packs are taken nearest first: `order` tells
  // which they are.
  struct {
    unsigned pack_count;
    unsigned char order[pack_max];
    double nearest[pack_max];   // no r² of the pack is smaller; infinite behind the last pack
    double farthest[pack_max];  // no r² of the packs so far is larger; likewise
    Vector<Real> offset[pack_max];
    Real r2[pack_max];
    std::size_t place[pack_max];  // among the values of basis functions
  } around_;
};
