#include "surface/march.hpp"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <span>

#include "lib/message.hpp"
#include "surface/planes.hpp"
#include "surface/start.hpp"

namespace {

constexpr std::size_t cuts_max = 4'000'000;  // a gigabyte
constexpr unsigned no_cut = ~0U;
constexpr double neighbourhood = 1.2;  // bohr

// Corners of a cube are numbers of three bits, as directions of edges are. The corners of a tetrahedron lie
// on a path of three steps from 0 to 7.
using Path = std::array<unsigned, 4>;
constexpr std::array<Path, 6> paths = {
    {{0, 1, 3, 7}, {0, 2, 3, 7}, {0, 1, 5, 7}, {0, 4, 5, 7}, {0, 2, 6, 7}, {0, 4, 6, 7}}};

// An edge by its corners, of which the bits of the first are among those of the second.
struct Edge {
  unsigned from, to;
};

struct Pattern {
  unsigned facet_count;
  std::array<std::array<Edge, 3>, 2> facets;
};

// Twice the place of a corner or of the middle of an edge.
constexpr std::array<int, 3> twice(unsigned a, unsigned b) {
  std::array<int, 3> place{};
  for (unsigned axis = 0; axis < 3; ++axis) {
    place[axis] = static_cast<int>((a >> (2 - axis) & 1) + (b >> (2 - axis) & 1));
  }
  return place;
}

// Whether a facet through the middles of edges turns counter-clockwise for who looks from `outside` to
// `inside`.
constexpr bool faces_outward(const std::array<Edge, 3>& facet, unsigned inside, unsigned outside) {
  std::array<int, 3> a{}, b{}, way{};
  const auto first = twice(facet[0].from, facet[0].to), second = twice(facet[1].from, facet[1].to),
             third = twice(facet[2].from, facet[2].to), in = twice(inside, inside),
             out = twice(outside, outside);
  for (unsigned c = 0; c < 3; ++c) {
    a[c] = second[c] - first[c], b[c] = third[c] - first[c], way[c] = out[c] - in[c];
  }
  return way[0] * (a[1] * b[2] - a[2] * b[1]) + way[1] * (a[2] * b[0] - a[0] * b[2]) +
             way[2] * (a[0] * b[1] - a[1] * b[0]) >
         0;
}

// The facets of a tetrahedron whose corners are inside where bits of the mask are set, by their place on the
// path.
constexpr Pattern pattern_of(const Path& path, unsigned mask) {
  std::array<unsigned, 4> in{}, out{};
  unsigned in_count = 0, out_count = 0;
  for (unsigned n = 0; n < 4; ++n) {
    (mask >> n & 1) != 0 ? in[in_count++] = path[n] : out[out_count++] = path[n];
  }
  const auto edge = [](unsigned a, unsigned b) { return a < b ? Edge{a, b} : Edge{b, a}; };
  Pattern pattern = {};
  if (in_count == 1) {
    pattern = {1, {{{edge(in[0], out[0]), edge(in[0], out[1]), edge(in[0], out[2])}}}};
  } else if (out_count == 1) {
    pattern = {1, {{{edge(in[0], out[0]), edge(in[1], out[0]), edge(in[2], out[0])}}}};
  } else if (in_count == 2) {
    const Edge diagonal[] = {edge(in[0], out[0]), edge(in[1], out[1])};
    pattern = {
        2,
        {{{diagonal[0], edge(in[0], out[1]), diagonal[1]}, {diagonal[0], diagonal[1], edge(in[1], out[0])}}}};
  }
  for (unsigned n = 0; n < pattern.facet_count; ++n) {
    if (!faces_outward(pattern.facets[n], in[0], out[0])) {
      std::swap(pattern.facets[n][1], pattern.facets[n][2]);
    }
  }
  return pattern;
}

constexpr auto patterns = [] {
  std::array<std::array<Pattern, 16>, paths.size()> table{};
  for (unsigned path = 0; path < paths.size(); ++path) {
    for (unsigned mask = 0; mask < 16; ++mask) {
      table[path][mask] = pattern_of(paths[path], mask);
    }
  }
  return table;
}();

class Marcher {
 public:
  Marcher(const Molecule* molecule, const Lattice* lattice, Fields* fields, double level)
      : molecule_(molecule),
        lattice_(lattice),
        fields_(fields),
        level_(level),
        count_(lattice->cube.npoints),
        planes_(lattice, fields, level) {
    for (auto& numbers : numbers_) {
      numbers.assign(std::size_t{count_[1]} * count_[2] * directions, no_cut);
    }
  }

  March run(Progress* progress) {
    find_dense_nuclei();
    March::End end = fill(0) && fill(1) ? March::End::done : March::End::lattice_too_small;
    for (unsigned i = 0; i + 1 < count_[0] && end == March::End::done; ++i) {
      if (i + 2 < count_[0] && !fill(i + 2)) {
        end = March::End::lattice_too_small;
        break;
      }
      if (!have_nuclei_points(i)) {
        end = March::End::step_too_large;
      }
      cut_layer(i);
      start_cuts(*lattice_, &planes_, std::span(march_.cuts).subspan(started_));
      started_ = march_.cuts.size();
      for (const std::size_t place : numbered_[0]) {
        numbers_[0][place] = no_cut;
      }
      numbered_[0].clear();
      std::swap(numbers_[0], numbers_[1]);
      std::swap(numbered_[0], numbered_[1]);
      progress->show(0.3 * i / count_[0]);
    }
    march_.end = end;
    return std::move(march_);
  }

 private:
  static constexpr unsigned directions = 8;

  struct Nucleus {
    std::array<unsigned, 3> cell;
  };

  bool fill(unsigned i) { return planes_.fill(i); }

  void find_dense_nuclei() {
    std::vector<Point> points;
    for (const Atom& atom : std::span(molecule_->atoms, molecule_->atom_count)) {
      points.push_back({atom.coord[0], atom.coord[1], atom.coord[2]});
    }
    std::vector<double> values(2 * points.size());
    fields_->at(points, values);
    for (std::size_t n = 0; n < points.size(); ++n) {
      if (values[n] > level_) {
        const Point from = points[n] - lattice_->point(0, 0, 0);
        Nucleus nucleus = {};
        for (unsigned index = 0; index < 3; ++index) {
          const Point& step = lattice_->steps[index];
          nucleus.cell[index] = static_cast<unsigned>(dot(from, step) / dot(step, step));
        }
        nuclei_.push_back(nucleus);
      }
    }
  }

  // Whether each dense nucleus in the layer above plane i has a point inside at a corner of its cube.
  bool have_nuclei_points(unsigned i) const {
    return std::ranges::all_of(nuclei_, [&](const Nucleus& nucleus) {
      const auto& [in_layer, j, k] = nucleus.cell;
      return in_layer != i || inside_count(i, j, k) > 0;
    });
  }

  unsigned inside_count(unsigned i, unsigned j, unsigned k) const {
    unsigned count = 0;
    for (unsigned corner = 0; corner < 8; ++corner) {
      count += is_inside(i, j, k, corner);
    }
    return count;
  }

  std::size_t at(unsigned j, unsigned k, unsigned corner) const {
    return std::size_t{j + (corner >> 1 & 1)} * count_[2] + k + (corner & 1);
  }

  unsigned char is_inside(unsigned i, unsigned j, unsigned k, unsigned corner) const {
    return planes_.sides(i + (corner >> 2))[at(j, k, corner)];
  }

  void cut_layer(unsigned i) {
    const unsigned char *lower = planes_.sides(i), *upper = planes_.sides(i + 1);
    for (unsigned j = 0; j + 1 < count_[1]; ++j) {
      if (!lattice_->has_row(i, j)) {
        continue;  // what is inside has rows all around it
      }
      const std::size_t row = std::size_t{j} * count_[2], next = row + count_[2];
      for (unsigned k = 0; k + 1 < count_[2]; ++k) {
        const unsigned sum = lower[row + k] + lower[row + k + 1] + lower[next + k] + lower[next + k + 1] +
                             upper[row + k] + upper[row + k + 1] + upper[next + k] + upper[next + k + 1];
        if (sum != 0 && sum != 8) {
          cut_cube(i, j, k);
        }
      }
    }
  }

  void cut_cube(unsigned i, unsigned j, unsigned k) {
    for (unsigned path = 0; path < paths.size(); ++path) {
      unsigned mask = 0;
      for (unsigned n = 0; n < 4; ++n) {
        mask |= unsigned{is_inside(i, j, k, paths[path][n])} << n;
      }
      const Pattern& pattern = patterns[path][mask];
      for (unsigned n = 0; n < pattern.facet_count; ++n) {
        Facet& facet = march_.facets.emplace_back();
        std::ranges::transform(pattern.facets[n], facet.begin(),
                               [&](Edge edge) { return cut_number(i, j, k, edge); });
      }
    }
  }

  unsigned cut_number(unsigned i, unsigned j, unsigned k, Edge edge) {
    const unsigned direction = edge.from ^ edge.to;
    const std::size_t place = at(j, k, edge.from) * directions + direction;
    unsigned& number = numbers_[edge.from >> 2][place];
    if (number == no_cut) {
      if (march_.cuts.size() == cuts_max) {
        msg_fatal("the surface does not fit into the memory: take a larger step");
      }
      number = static_cast<unsigned>(march_.cuts.size());
      numbered_[edge.from >> 2].push_back(place);
      march_.cuts.push_back({{i + (edge.from >> 2), j + (edge.from >> 1 & 1), k + (edge.from & 1)},
                             static_cast<unsigned char>(direction),
                             is_inside(i, j, k, edge.to) != 0,
                             0.0,
                             0.0,
                             0.0});
    }
    return number;
  }

  const Molecule* molecule_;
  const Lattice* lattice_;
  Fields* fields_;
  double level_;
  const unsigned* count_;
  Planes planes_;
  std::array<std::vector<unsigned>, 2> numbers_;      // of the cuts from a point of two planes, by direction
  std::array<std::vector<std::size_t>, 2> numbered_;  // where
  std::vector<Nucleus> nuclei_;
  March march_{};
  std::size_t started_ = 0;
};

// Neighbours in runs: the exact sweep leaves out what is far from all points of a block.
void sort_cuts(double step, March* march) {
  const auto block = static_cast<std::uint64_t>(std::max(1.0, std::floor(neighbourhood / step + 0.5)));
  std::vector<std::uint64_t> keys;
  keys.reserve(march->cuts.size());
  for (const Cut& cut : march->cuts) {
    keys.push_back(cut.from[0] / block << 42 | cut.from[1] / block << 21 | cut.from[2] / block);
  }
  std::vector<unsigned> order(keys.size()), number(keys.size());
  std::iota(order.begin(), order.end(), 0U);
  std::ranges::stable_sort(order, {}, [&](unsigned n) { return keys[n]; });
  std::vector<Cut> sorted;
  sorted.reserve(order.size());
  for (const unsigned n : order) {
    number[n] = static_cast<unsigned>(sorted.size());
    sorted.push_back(march->cuts[n]);
  }
  march->cuts = std::move(sorted);
  for (Facet& facet : march->facets) {
    std::ranges::transform(facet, facet.begin(), [&](unsigned n) { return number[n]; });
  }
}

}  // namespace

March march(const Molecule* molecule, const Lattice& lattice, Fields* fields, double level,
            Progress* progress) {
  March result = Marcher(molecule, &lattice, fields, level).run(progress);
  if (result.end == March::End::done) {
    sort_cuts(length(lattice.steps[0]), &result);
  }
  return result;
}

Point march_edge(const Lattice& lattice, unsigned direction) {
  Point edge = {};
  for (unsigned index = 0; index < 3; ++index) {
    if ((direction >> (2 - index) & 1) != 0) {
      edge = edge + lattice.steps[index];
    }
  }
  return edge;
}
