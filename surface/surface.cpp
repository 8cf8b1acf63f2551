#include "surface/surface.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <span>

#include "lib/message.hpp"
#include "surface/lattice.hpp"
#include "surface/march.hpp"

namespace {

constexpr double reach_factor = 1.4;
constexpr double reach_max = 200.0, basis_reach_max = 50.0;  // bohr
// Of a piece's area, what the quarters add to it; then that of the extrapolated one is good to a thousandth.
constexpr double coarseness_max = 0.01;
constexpr unsigned halvings_max = 4;
constexpr std::size_t vertices_halved_max = 100'000;
// Values this near to each other are the same one on a mesh and where a Newton step has led, hartree.
constexpr double same_value = 1e-6;

bool has_small_piece(const Shares& shares) {
  return std::ranges::any_of(shares.pieces,
                             [](const Piece& piece) { return piece.coarseness > coarseness_max; });
}

// What an input's numbers make of the potential must be numbers that a table has room for.
void check_finite(const Shares& shares) {
  constexpr double potential_max = 1e6;  // hartree
  const double numbers[] = {shares.range.lowest, shares.range.highest, shares.whole.mean,
                            shares.whole.deviation};
  if (!std::ranges::all_of(numbers, [](double number) { return std::fabs(number) <= potential_max; })) {
    msg_fatal("the potential on the surface is no number, or too large");
  }
}

// A lowest value is that of a minimum, unless one at a border or where it is flat is lower.
void take_extremum(const Extremum& extremum, Range* range) {
  if (!extremum.is_maximum && extremum.value < range->lowest + same_value) {
    range->lowest = extremum.value;
  } else if (extremum.is_maximum && extremum.value > range->highest - same_value) {
    range->highest = extremum.value;
  }
}

// Up to where the density may rise again, bohr: beyond the outermost peak of every function, r^(l+1)
// exp(-αr²) to be on the safe side. What lies apart from the rest is seen only if the grid reaches it.
double basis_reach(const Molecule* molecule) {
  double reach = 0.0;
  for (const BasisFunction& function : std::span(molecule->basis, molecule->basis_count)) {
    for (const double exponent : std::span(function.exponents, function.primitive_count)) {
      if (exponent > 0.0) {
        reach = std::max(reach, std::sqrt((std::abs(function.type) + 1) / (2.0 * exponent)));
      }
    }
  }
  return std::min(reach, basis_reach_max);
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
  double step = settings.step;
  double reach = std::max(lattice_first_reach(settings.level), basis_reach(molecule));
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
    check_finite(shares);
    // Each halving makes four times the vertices: a small piece is not worth more than these.
    if ((!mesh.is_resolved || has_small_piece(shares)) && halvings < halvings_max &&
        mesh.vertex_count <= vertices_halved_max) {
      ++halvings;
      step *= 0.5;
      continue;
    }
    const bool is_resolved = mesh.is_resolved && !has_small_piece(shares);
    Extrema extrema = extrema_of(mesh, owners, &attempt.fields, settings.level);
    for (const Extremum& extremum : extrema.list) {
      take_extremum(extremum, &shares.range);
      take_extremum(extremum, &shares.atoms[extremum.atom].within);
    }
    return {std::move(shares), std::move(extrema), std::move(mesh), step, is_resolved};
  }
}
