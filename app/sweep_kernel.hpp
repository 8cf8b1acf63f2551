#pragma once

#include <cmath>

#include "eval.hpp"
#include "exponential.hpp"
#include "pack.hpp"
#include "prim.hpp"
#include "sweep_plan.hpp"

// The sweep over a block of points, for one type of pack. Included once by the translation unit of each
// instruction set, with a pack type of an unnamed namespace.

/// A tile is `TilePacks` packs wide; its orbital sums are formed for up to `TileOrbitals` orbitals at once,
/// so that the sums stay in registers.
template <class Real, unsigned TilePacks, unsigned TileOrbitals>
class SweepKernelFor {
 public:
  static constexpr unsigned tile_points = TilePacks * Real::lanes;
  static constexpr unsigned block_points_max = sweep_packs_max * Real::lanes;
  static_assert(sweep_packs_max % TilePacks == 0 && TilePacks % 2 == 0);

  static constexpr SweepKernel as(const char* name, bool (*is_supported)()) {
    return {name, is_supported, tile_points, TileOrbitals, block_points_max, run};
  }

 private:
  static void run(const SweepPlan& plan, const SweepBlock& block) {
    const unsigned tile_count = block.point_count / tile_points;
    __builtin_memset(block.active, plan.may_skip_functions ? 0 : 1,
                     std::size_t{tiles_max} * plan.shell_count);
    Boxes boxes{};
    enclose(block, boxes);
    for (unsigned a = 0; a < plan.atom_count; ++a) {
      evaluate_atom(plan, block, boxes, plan.atoms[a]);
    }
    for (unsigned tile = 0; tile < tile_count; ++tile) {
      evaluate_fields(plan, block, tile);
    }
  }

  static constexpr unsigned pack_max = sweep_packs_max;
  static constexpr unsigned tiles_max = pack_max / TilePacks;

  // The smallest box, with sides along the axes, around the points of each pack.
  struct Boxes {
    double low[3][pack_max], high[3][pack_max];
  };

  // Where the points of a block lie as seen from an atom. The packs are taken nearest first: `order` tells
  // which they are.
  struct Surroundings {
    unsigned pack_count;
    unsigned char order[pack_max];
    double nearest[pack_max];   // no r² of the pack is smaller; infinite behind the last pack
    double farthest[pack_max];  // no r² of the packs so far is larger; likewise
    Vector<Real> offset[pack_max];
    Real r2[pack_max];
    std::size_t place[pack_max];  // among the values of basis functions
  };

  // How many of the ascending numbers are below `bound`: a bisection without branches, which could not be
  // foretold.
  static unsigned count_below(const double (&numbers)[pack_max], double bound) {
    unsigned count = 0;
    for (unsigned step = pack_max / 2; step > 0; step /= 2) {
      count += step * static_cast<unsigned>(numbers[count + step - 1] < bound);
    }
    return count + static_cast<unsigned>(numbers[count] < bound);
  }

  static void evaluate_atom(const SweepPlan& plan, const SweepBlock& block, const Boxes& boxes,
                            const SweepAtom& atom) {
    Surroundings around;
    look_around(plan, block, boxes, atom, around);
    for (unsigned e = 0; e < atom.exponential_count; ++e) {
      evaluate_exponential(atom.exponentials[e], around,
                           block.exponentials + std::size_t{e} * block_points_max);
    }
    for (const SweepShell* shell = atom.shells; shell != atom.shells + atom.shell_count; ++shell) {
      prim_shell(shell->type, [&](const auto& factors) {
        if (shell->is_whole) {
          evaluate_shell(block, *shell, around, factors);
        } else {
          angular_select(factors, shell->component, [&](const auto& factor) {
            evaluate_shell(block, *shell, around, std::tie(factor));
          });
        }
      });
    }
  }

  static void enclose(const SweepBlock& block, Boxes& boxes) {
    const double* const axes[3] = {block.x, block.y, block.z};
    for (unsigned c = 0; c < 3; ++c) {
      for (unsigned p = 0; p < block.point_count / Real::lanes; ++p) {
        const Real coordinates = Real::load(axes[c] + p * Real::lanes);
        boxes.low[c][p] = lowest(coordinates);
        boxes.high[c][p] = highest(coordinates);
      }
    }
  }

  static void look_around(const SweepPlan& plan, const SweepBlock& block, const Boxes& boxes,
                          const SweepAtom& atom, Surroundings& around) {
    around.pack_count = block.point_count / Real::lanes;
    double nearest[pack_max], farthest[pack_max];
    for (unsigned p = 0; p < pack_max; p += Real::lanes) {
      Real near = 0.0, far = 0.0;
      for (unsigned c = 0; c < 3; ++c) {
        const Real below = Real::load(boxes.low[c] + p) - atom.coord[c];
        const Real above = atom.coord[c] - Real::load(boxes.high[c] + p);
        const Real outside = higher_of(higher_of(below, above), Real(0.0));
        const Real across = lower_of(below, above);  // to the far side, negative
        near = near + outside * outside;
        far = far + across * across;
      }
      (plan.may_skip_primitives ? near : Real(0.0)).store(nearest + p);
      (plan.may_skip_primitives ? far : Real(HUGE_VAL)).store(farthest + p);
    }
    sort_packs(nearest, farthest, around);
    for (unsigned s = 0; s < around.pack_count; ++s) {
      const unsigned p = around.order[s];
      const unsigned at = p * Real::lanes;
      const Vector<Real> point = {Real::load(block.x + at), Real::load(block.y + at),
                                  Real::load(block.z + at)};
      around.offset[s] = prim_offset(point, atom.coord);
      around.r2[s] = prim_r2(around.offset[s]);
      around.place[s] =
          std::size_t{p / TilePacks} * plan.basis_count * tile_points + p % TilePacks * Real::lanes;
    }
  }

  // Each pack's rank is the number of packs nearer than it; all ranks are counted side by side.
  static void sort_packs(const double* nearest, const double* farthest, Surroundings& around) {
    double keys[pack_max];
    for (unsigned p = 0; p < pack_max; ++p) {
      keys[p] = distinct_key(nearest[p], p);
    }
    typename Real::Bits ranks[pack_max / Real::lanes] = {};
    for (unsigned p = 0; p < around.pack_count; ++p) {
      const Real key = keys[p];
      for (unsigned q = 0; q < pack_max; q += Real::lanes) {
        ranks[q / Real::lanes] -= is_below(key, Real::load(keys + q));
      }
    }
    for (unsigned p = 0; p < around.pack_count; ++p) {
      around.order[ranks[p / Real::lanes][p % Real::lanes]] = static_cast<unsigned char>(p);
    }
    double farthest_so_far = 0.0;
    for (unsigned s = 0; s < pack_max; ++s) {
      const bool is_there = s < around.pack_count;
      const double far = is_there ? farthest[around.order[s]] : HUGE_VAL;
      farthest_so_far = farthest_so_far < far ? far : farthest_so_far;
      around.nearest[s] = is_there ? nearest[around.order[s]] : HUGE_VAL;
      around.farthest[s] = farthest_so_far;
    }
  }

  // The number with the position in its lowest bits: so near that the order does not suffer.
  static double distinct_key(double number, unsigned position) {
    static_assert(pack_max == 32);
    std::uint64_t bits;
    __builtin_memcpy(&bits, &number, sizeof bits);
    bits = (bits & ~std::uint64_t{31}) | position;
    __builtin_memcpy(&number, &bits, sizeof bits);
    return number;
  }

  static void evaluate_exponential(const SweepExponential& exponential_of, const Surroundings& around,
                                   double* values) {
    const unsigned count = count_below(around.nearest, exponential_of.reach);
    const unsigned normal_count = count_below(around.farthest, exponential_of.normal_reach);
    const Real factor = -exponential_of.exponent;
    // Two at a time keep the processor busy; a value too many behind the last does no harm.
    unsigned s = 0;
    for (const unsigned end = count < normal_count ? count : normal_count; s < end; s += 2) {
      const Real one = exponential_normal(around.r2[s] * factor);
      const Real other = exponential_normal(around.r2[s + 1] * factor);
      one.store(values + s * Real::lanes);
      other.store(values + (s + 1) * Real::lanes);
    }
    for (s = normal_count; s < count; ++s) {
      exponential(around.r2[s] * factor).store(values + s * Real::lanes);
    }
  }

  template <class Angular>
  static void evaluate_shell(const SweepBlock& block, const SweepShell& shell, const Surroundings& around,
                             const Angular& angular) {
    const auto evaluate_up_to = [&](unsigned end, unsigned s, unsigned first, auto count) {
      for (; s < end; ++s) {
        evaluate_pack(block, shell, around, s, first, count, angular);
      }
      return end;
    };
    // The farther away a pack, the later the primitive that the sums may start at.
    unsigned s = 0;
    for (unsigned first = 0; first < shell.term_count; ++first) {
      const unsigned end = count_below(around.nearest, shell.terms[first].reach);
      const unsigned count = shell.term_count - first;
      if (count == 1) {
        s = evaluate_up_to(end, s, first, std::integral_constant<unsigned, 1>{});
      } else {
        s = evaluate_up_to(end, s, first, count);
      }
    }
    for (unsigned in_reach = 0; in_reach < s; ++in_reach) {
      block.active[shell.number * tiles_max + around.order[in_reach] / TilePacks] = 1;
    }
    evaluate_up_to(around.pack_count, s, shell.term_count, std::integral_constant<unsigned, 0>{});
  }

  // The functions of a shell at one pack, summed over `count` primitives from `first` on.
  template <class Count, class Angular>
  static void evaluate_pack(const SweepBlock& block, const SweepShell& shell, const Surroundings& around,
                            unsigned s, unsigned first, Count count, const Angular& angular) {
    constexpr std::size_t functions = std::tuple_size_v<Angular>;
    const auto factors =
        std::apply([&](const auto&... one) { return std::array{one(around.offset[s])...}; }, angular);
    const double* const norms = shell.norms + first * functions;
    const SweepTerm* const terms = shell.terms + first;
    Real sums[functions];
    eval_contractions(
        shell.coefficients + first, count,
        [&](unsigned i, std::size_t f) {
          const double* const exponentials =
              block.exponentials + std::size_t{terms[i].exponential} * block_points_max;
          return prim_value(Real(norms[i * functions + f]), Real::load(exponentials + s * Real::lanes),
                            factors[f]);
        },
        sums);
    double* const values = block.values + around.place[s] + shell.basis_index * tile_points;
    for (std::size_t f = 0; f < functions; ++f) {
      sums[f].store(values + f * tile_points);
    }
  }

  static void evaluate_fields(const SweepPlan& plan, const SweepBlock& block, unsigned tile) {
    const unsigned active_count = list_active(plan, block, tile);
    OccupiedSums<Real> sums[TilePacks];
    std::size_t orbital = 0;
    for (unsigned g = 0; g < plan.group_count; ++g) {
      const std::size_t output = orbital * block.stride + std::size_t{tile} * tile_points;
      evaluate_group<TileOrbitals>(plan, block, plan.groups[g], tile, active_count, sums, output);
      orbital += plan.groups[g].count;
    }
    if (plan.field == SweepField::density_and_potential) {
      for (unsigned p = 0; p < TilePacks; ++p) {
        const std::size_t at = tile * tile_points + p * Real::lanes;
        eval_total(sums[p], plan.restricted).store(block.fields + at);
        eval_potential(sums[p], plan.no_pairs).store(block.fields + block.stride + at);
      }
    }
  }

  // Lists the basis functions that are not 0 in the whole tile, in order.
  static unsigned list_active(const SweepPlan& plan, const SweepBlock& block, unsigned tile) {
    unsigned count = 0;
    for (unsigned n = 0; n < plan.shell_count; ++n) {
      if (block.active[n * tiles_max + tile] != 0) {
        for (unsigned b = plan.shell_starts[n]; b < plan.shell_starts[n + 1]; ++b) {
          block.active_list[count++] = b;
        }
      }
    }
    return count;
  }

  template <unsigned Orbitals>
  static void evaluate_group(const SweepPlan& plan, const SweepBlock& block, const SweepOrbitals& group,
                             unsigned tile, unsigned active_count, OccupiedSums<Real> (&sums)[TilePacks],
                             std::size_t output) {
    if (group.count != Orbitals) {
      if constexpr (Orbitals > 1) {
        evaluate_group<Orbitals - 1>(plan, block, group, tile, active_count, sums, output);
      }
      return;
    }
    const double* const values = block.values + std::size_t{tile} * plan.basis_count * tile_points;
    Real orbitals[Orbitals][TilePacks];
    eval_orbitals(
        group.coefficients, active_count, [&](unsigned k) { return block.active_list[k]; },
        [&](std::size_t b, unsigned p) { return Real::load(values + b * tile_points + p * Real::lanes); },
        orbitals);
    for (unsigned o = 0; o < Orbitals; ++o) {
      for (unsigned p = 0; p < TilePacks; ++p) {
        const auto store = [&](const Real& value) {
          value.store(block.fields + output + o * block.stride + p * Real::lanes);
        };
        switch (plan.field) {
          case SweepField::density_and_potential:
            sums[p].add(orbitals[o][p], group.energy_magnitudes[o]);
            break;
          case SweepField::orbital:
            store(orbitals[o][p]);
            break;
          case SweepField::orbital_density:
            store(eval_square(orbitals[o][p]));
            break;
        }
      }
    }
  }
};
