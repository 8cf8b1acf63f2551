#include "surface/lattice.hpp"

#include <algorithm>
#include <cmath>
#include <span>

#include "lib/message.hpp"

namespace {

constexpr double coordinate_max = 1e6;  // bohr, of a nucleus
constexpr double row_points_max = 1e5;
constexpr double plane_points_max = 4e6;
constexpr double points_max = 4e9;

struct Extent {
  Point low, high;
};

Extent extent_of(std::span<const Atom> atoms) {
  Extent extent = {{INFINITY, INFINITY, INFINITY}, {-INFINITY, -INFINITY, -INFINITY}};
  for (const Atom& atom : atoms) {
    for (unsigned c = 0; c < 3; ++c) {
      if (!(std::fabs(atom.coord[c]) <= coordinate_max)) {
        msg_fatal("an atom lies farther out than 10^6 bohr");
      }
      extent.low[c] = std::min(extent.low[c], atom.coord[c]);
      extent.high[c] = std::max(extent.high[c], atom.coord[c]);
    }
  }
  return extent;
}

// Marks the rows that pass an atom within the reach.
void mark_rows(const Atom& atom, double reach, Lattice* lattice) {
  const auto& [count, points, vectors] = lattice->cube;
  const auto axis_of = [&](unsigned index) {
    return static_cast<unsigned>(std::ranges::find_if(lattice->steps[index], [](double s) { return s > 0; }) -
                                 lattice->steps[index].begin());
  };
  const unsigned a = axis_of(0), b = axis_of(1);
  const double step = vectors[0][a];
  for (unsigned i = 0; i < count[0]; ++i) {
    const double x = points[0][a] + i * step - atom.coord[a];
    const double chord = reach * reach - x * x;
    if (chord < 0.0) {
      continue;
    }
    const double y = atom.coord[b] - points[0][b], half = std::sqrt(chord);
    const double first = std::max(0.0, std::ceil((y - half) / step));
    const double end = std::min<double>(count[1], std::floor((y + half) / step) + 1.0);
    if (first < end) {
      const auto row = lattice->rows.begin() + static_cast<std::ptrdiff_t>(std::size_t{i} * count[1]);
      std::fill(row + static_cast<std::ptrdiff_t>(first), row + static_cast<std::ptrdiff_t>(end), 1);
    }
  }
}

}  // namespace

bool Lattice::has_row(long i, long j) const {
  return i >= 0 && j >= 0 && i < static_cast<long>(cube.npoints[0]) &&
         j < static_cast<long>(cube.npoints[1]) &&
         rows[static_cast<std::size_t>(i) * cube.npoints[1] + static_cast<std::size_t>(j)] != 0;
}

Point Lattice::point(unsigned i, unsigned j, unsigned k) const {
  return {cube_coordinate(&cube, i, j, k, 0), cube_coordinate(&cube, i, j, k, 1),
          cube_coordinate(&cube, i, j, k, 2)};
}

Lattice lattice_make(const Molecule* molecule, double step, double reach) {
  const std::span<const Atom> atoms(molecule->atoms, molecule->atom_count);
  if (atoms.empty()) {
    msg_fatal("there are no atoms");
  }
  const auto [low, high] = extent_of(atoms);
  const Point size = high - low;
  const auto longest = static_cast<unsigned>(std::ranges::max_element(size) - size.begin());
  Lattice lattice = {};
  double counts[3];
  for (unsigned index = 0; index < 3; ++index) {
    const unsigned c = (longest + 1 + index) % 3;
    counts[index] = std::ceil((size[c] + 2.0 * reach) / step) + 1.0;
    lattice.cube.points[0][c] = 0.5 * (low[c] + high[c]) - 0.5 * step * (counts[index] - 1.0);
    lattice.cube.vectors[index][c] = lattice.steps[index][c] = step;
  }
  if (counts[2] > row_points_max || counts[0] * counts[1] > plane_points_max ||
      counts[1] * counts[2] > plane_points_max || counts[0] * counts[1] * counts[2] > points_max) {
    msg_fatal_format("a grid with steps of %g bohr does not fit into the memory", step);
  }
  for (unsigned index = 0; index < 3; ++index) {
    lattice.cube.npoints[index] = static_cast<unsigned>(counts[index]);
  }
  lattice.rows.resize(std::size_t{lattice.cube.npoints[0]} * lattice.cube.npoints[1]);
  for (const Atom& atom : atoms) {
    mark_rows(atom, reach, &lattice);
  }
  return lattice;
}

double lattice_first_reach(double level) {
  // Around most atoms 0.001 bohr^-3 lies 3 to 4.5 bohr out, and the density falls by e in a half to one bohr.
  double reach = 5.0;
  for (; level < 0.0005 && reach < 20.0; level *= 10.0) {
    reach += 1.25;
  }
  for (; level > 0.005 && reach > 2.5; level *= 0.1) {
    reach -= 0.8;
  }
  return reach;
}
