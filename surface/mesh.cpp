#include "surface/mesh.hpp"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "lib/message.hpp"
#include "surface/logarithm.hpp"
#include "surface/vectors.hpp"

namespace {

constexpr double log_tolerance = 0.99e-5;
// Where the root is a point of the lattice, the facets around it would have no area.
constexpr double part_min = 1e-6;
constexpr unsigned secant_rounds = 8, rounds_max = 60;
constexpr std::size_t batch = 8192;  // points; progress is shown between two
constexpr double shift_max = 0.25;   // of an edge's length, for what puts its middle on the surface

struct Values {
  std::vector<double> all;
  double density(std::size_t n) const { return all[n]; }
  double potential(std::size_t n) const { return all[all.size() / 2 + n]; }
};

// Exact values at many points, with progress between two parts of the whole work.
void evaluate(const std::vector<Point>& points, Fields* fields, Values* values, Progress* progress,
              double begin, double end) {
  values->all.resize(2 * points.size());
  std::vector<double> part;
  for (std::size_t first = 0; first < points.size(); first += batch) {
    const std::size_t count = std::min(batch, points.size() - first);
    part.resize(2 * count);
    fields->at(std::span(points).subspan(first, count), part);
    const auto to = values->all.begin() + static_cast<std::ptrdiff_t>(first);
    const auto middle = part.begin() + static_cast<std::ptrdiff_t>(count);
    std::copy(part.begin(), middle, to);
    std::copy(middle, part.end(), to + static_cast<std::ptrdiff_t>(points.size()));
    progress->show(begin + (end - begin) * static_cast<double>(first) / static_cast<double>(points.size()));
  }
}

// A root of the density's logarithm along an edge, in brackets.
struct Search {
  double low = 0.0, high = 1.0;  // where the logarithm has the signs of the edge's ends
  double at, slope;
  double last_at = -1.0, last_log = 0.0;

  // The next place, from the logarithm at the last one.
  void step(double log, bool rises, unsigned round) {
    ((log > 0.0) == rises ? high : low) = at;
    if (last_at >= 0.0 && at != last_at && log != last_log) {
      slope = (log - last_log) / (at - last_at);
    }
    last_at = at;
    last_log = log;
    const double next = at - log / slope;
    at = next > low && next < high && round < secant_rounds ? next : 0.5 * (low + high);
    at = std::clamp(at, part_min, 1.0 - part_min);
  }
};

class Maker {
 public:
  Maker(const Lattice& lattice, March march, Fields* fields, double level, Progress* progress)
      : cuts_(std::move(march.cuts)), fields_(fields), level_(level), progress_(progress) {
    meshes_.coarse.facets = std::move(march.facets);
    for (unsigned direction = 0; direction < 8; ++direction) {
      edges_[direction] = march_edge(lattice, direction);
    }
    for (const Cut& cut : cuts_) {
      origins_.push_back(lattice.point(cut.from[0], cut.from[1], cut.from[2]));
    }
  }

  Meshes make() {
    settle_cuts();
    quarter();
    return std::move(meshes_);
  }

 private:
  void settle_cuts() {
    Mesh& mesh = meshes_.coarse;
    mesh.points.resize(cuts_.size());
    mesh.potential.resize(cuts_.size());
    std::vector<Search> searches;
    for (const Cut& cut : cuts_) {
      searches.push_back({.at = std::clamp(cut.start, part_min, 1.0 - part_min), .slope = cut.log_slope});
    }
    std::vector<unsigned> active(cuts_.size()), left;
    std::iota(active.begin(), active.end(), 0U);
    std::vector<Point> points;
    Values values;
    for (unsigned round = 0; !active.empty(); ++round) {
      if (round == rounds_max) {
        msg_fatal("the density jumps over its level");
      }
      points.clear();
      for (const unsigned n : active) {
        points.push_back(origins_[n] + searches[n].at * edges_[cuts_[n].direction]);
      }
      evaluate(points, fields_, &values, progress_, 0.3 + 0.15 * std::min(round, 1U),
               0.45 + 0.05 * std::min(round, 1U));
      left.clear();
      for (std::size_t p = 0; p < active.size(); ++p) {
        const unsigned n = active[p];
        const double log = log_near_one(values.density(p) / level_);
        mesh.points[n] = points[p];
        mesh.potential[n] = values.potential(p);
        if (!(std::fabs(log) <= log_tolerance)) {
          searches[n].step(log, cuts_[n].ends[1] > 0.0, round);
          left.push_back(n);
        }
      }
      std::swap(active, left);
    }
    for (std::size_t n = 0; n < cuts_.size(); ++n) {
      cuts_[n].log_slope = searches[n].slope;
    }
  }

  // Directions outward at the vertices, each facet counted by its area.
  void find_normals() {
    const Mesh& mesh = meshes_.coarse;
    normals_.assign(mesh.points.size(), Point{});
    for (const Facet& f : mesh.facets) {
      const Point twice_area =
          cross(mesh.points[f[1]] - mesh.points[f[0]], mesh.points[f[2]] - mesh.points[f[0]]);
      for (const unsigned n : f) {
        normals_[n] = normals_[n] + twice_area;
      }
    }
    for (std::size_t n = 0; n < normals_.size(); ++n) {
      // Without area: away from the inner end of the edge.
      const Point& edge = edges_[cuts_[n].direction];
      normals_[n] = unit(normals_[n], unit(cuts_[n].ends[1] > 0.0 ? -1.0 * edge : edge, edge));
    }
  }

  // The edges of the mesh, those of the lower vertex in a run.
  void number_edges() {
    const Mesh& mesh = meshes_.coarse;
    first_edge_.assign(mesh.points.size() + 1, 0);
    const auto for_each_edge = [&](auto use) {
      for (const Facet& f : mesh.facets) {
        for (unsigned c = 0; c < 3; ++c) {
          if (const unsigned a = f[c], b = f[(c + 1) % 3]; a < b) {
            use(a, b);
          }
        }
      }
    };
    for_each_edge([&](unsigned a, unsigned) { ++first_edge_[a + 1]; });
    std::partial_sum(first_edge_.begin(), first_edge_.end(), first_edge_.begin());
    edge_ends_.resize(first_edge_.back());
    std::vector<unsigned> next(first_edge_.begin(), first_edge_.end() - 1);
    for_each_edge([&](unsigned a, unsigned b) { edge_ends_[next[a]++] = {a, b}; });
  }

  unsigned edge_number(unsigned a, unsigned b) const {
    if (a > b) {
      std::swap(a, b);
    }
    unsigned n = first_edge_[a];
    while (edge_ends_[n][1] != b) {
      ++n;
    }
    return n;
  }

  void quarter() {
    const Mesh& coarse = meshes_.coarse;
    Mesh& fine = meshes_.fine;
    find_normals();
    number_edges();
    fine.points = coarse.points;
    fine.potential = coarse.potential;
    put_middles(&fine);
    const auto count = static_cast<unsigned>(coarse.points.size());
    fine.facets.reserve(4 * coarse.facets.size());
    for (const auto& [a, b, c] : coarse.facets) {
      const unsigned ab = count + edge_number(a, b), bc = count + edge_number(b, c),
                     ca = count + edge_number(c, a);
      fine.facets.insert(fine.facets.end(), {{a, ab, ca}, {b, bc, ab}, {c, ca, bc}, {ab, bc, ca}});
    }
  }

  // Where the surface bulges over an edge follows from how much the normal turns along it; from the density
  // there a step leads on, by what the edges of the lattice tell of the gradient.
  void put_middles(Mesh* fine) {
    const Mesh& mesh = meshes_.coarse;
    std::vector<Point> points, ways;
    for (const auto& [a, b] : edge_ends_) {
      const Point edge = mesh.points[b] - mesh.points[a], way = unit(normals_[a] + normals_[b], normals_[a]);
      const double bulge = dot(edge, normals_[b] - normals_[a]) / 8.0, most = shift_max * length(edge);
      points.push_back(0.5 * (mesh.points[a] + mesh.points[b]) + std::clamp(bulge, -most, most) * way);
      ways.push_back(way);
    }
    Values values;
    evaluate(points, fields_, &values, progress_, 0.5, 0.9);
    for (std::size_t n = 0; n < points.size(); ++n) {
      const auto& [a, b] = edge_ends_[n];
      const Cut &first = cuts_[a], &second = cuts_[b];
      const double slopes = std::fabs(first.log_slope) + std::fabs(second.log_slope);
      const double outward = std::fabs(dot(edges_[first.direction], normals_[a])) +
                             std::fabs(dot(edges_[second.direction], normals_[b]));
      const double log = log_near_one(values.density(n) / level_),
                   most = shift_max * distance(mesh.points[a], mesh.points[b]);
      const double shift = slopes > 0.0 ? std::clamp(log * outward / slopes, -most, most) : 0.0;
      const double per_log =
          slopes > 0.0
              ? (sign(first) * first.potential_slope + sign(second) * second.potential_slope) / slopes
              : 0.0;
      points[n] = points[n] + shift * ways[n];
      fine->points.push_back(points[n]);
      fine->potential.push_back(values.potential(n) - log * per_log);
    }
  }

  static double sign(const Cut& cut) { return cut.log_slope > 0.0 ? 1.0 : -1.0; }

  std::vector<Cut> cuts_;
  std::vector<Point> origins_;
  Fields* fields_;
  double level_;
  Progress* progress_;
  Point edges_[8];
  std::vector<Point> normals_;
  std::vector<unsigned> first_edge_;
  std::vector<std::array<unsigned, 2>> edge_ends_;
  Meshes meshes_;
};

}  // namespace

Meshes mesh_make(const Lattice& lattice, March march, Fields* fields, double level, Progress* progress) {
  return Maker(lattice, std::move(march), fields, level, progress).make();
}
