#include "surface/surface.hpp"

#include <algorithm>
#include <cmath>
#include <optional>

#include "lib/message.hpp"
#include "surface/lattice.hpp"
#include "surface/march.hpp"

namespace {

constexpr double reach_factor = 1.4;
constexpr double reach_max = 200.0;  // bohr
// Of a piece's area, what the quarters add to it; then that of the extrapolated one is good to a thousandth.
constexpr double coarseness_max = 0.01;
constexpr unsigned halvings_max = 4;
// Values this near to each other are the same one on a mesh and where a Newton step has led, hartree.
constexpr double same_value = 1e-6;

bool has_small_piece(const Shares& shares) {
  return std::ranges::any_of(shares.pieces,
                             [](const Piece& piece) { return piece.coarseness > coarseness_max; });
}

// A lowest value is that of a minimum, unless one at a border or where it is flat is lower.
void take_extremum(const Extremum& extremum, Range* range) {
  if (!extremum.is_maximum && extremum.value < range->lowest + same_value) {
    range->lowest = extremum.value;
  } else if (extremum.is_maximum && extremum.value > range->highest - same_value) {
    range->highest = extremum.value;
  }
}

// What a surface is made on: one for each step and reach.
struct Attempt {
  Attempt(const Molecule* molecule, double step, double reach)
      : lattice(lattice_make(molecule, step, reach)),
        fields(molecule, &lattice.cube, FieldKind::density_and_potential) {}
  Lattice lattice;
  Fields fields;
};

}  // namespace

Surface surface_of(const Molecule* molecule, const SurfaceSettings& settings, const Owners& owners) {
  Progress progress;
  double step = settings.step, reach = lattice_first_reach(settings.level);
  for (unsigned halvings = 0;;) {
    Attempt attempt(molecule, step, reach);
    March found = march(molecule, attempt.lattice, &attempt.fields, settings.level, &progress);
    if (found.end == March::End::lattice_too_small) {
      reach *= reach_factor;
      if (reach > reach_max) {
        msg_fatal_format("the surface does not close within %g bohr of the nuclei", reach_max);
      }
      continue;
    }
    if (found.end == March::End::step_too_large) {
      if (++halvings > halvings_max) {
        msg_fatal_format("the surface around a nucleus is too small for steps of %g bohr", step);
      }
      step *= 0.5;
      continue;
    }
    if (found.facets.empty()) {
      msg_fatal_format("the density nowhere reaches %g bohr^-3", settings.level);
    }
    Mesh mesh = mesh_make(attempt.lattice, std::move(found), &attempt.fields, settings.level, &progress);
    Shares shares = shares_of(mesh, owners, molecule->atom_count);
    if ((!mesh.is_resolved || has_small_piece(shares)) && halvings < halvings_max) {
      ++halvings;
      step *= 0.5;
      continue;
    }
    Extrema extrema = extrema_of(mesh, owners, &attempt.fields, settings.level);
    for (const Extremum& extremum : extrema.list) {
      take_extremum(extremum, &shares.range);
      take_extremum(extremum, &shares.atoms[extremum.atom].within);
    }
    return {std::move(shares), std::move(extrema), std::move(mesh), step};
  }
}
