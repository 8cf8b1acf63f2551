#include "surface/mesh.hpp"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "lib/message.hpp"
#include "surface/logarithm.hpp"
#include "surface/vectors.hpp"

namespace {

// From there the last step, by a slope that is known to a hundredth, leads to within 10^-5.
constexpr double log_tolerance = 1e-4;
// Where the root is a point of the lattice, the facets around it would have no area.
constexpr double part_min = 1e-6;
constexpr unsigned secant_rounds = 8, rounds_max = 60;
constexpr double log_far = 0.03;  // of a middle from which one step may not lead onto the surface
constexpr unsigned far_rounds = 4;
constexpr double far_part = 1e-4;    // of all middles, which may stay far: a few do in the narrowest channels
constexpr std::size_t batch = 1024;  // points; progress is shown between two
constexpr double shift_max = 0.25;   // of an edge's length, for what puts its middle on the surface

// A root of the density's logarithm along an edge, in brackets.
struct Search {
  explicit Search(const Cut& cut)
      : at(std::clamp(cut.start, part_min, 1.0 - part_min)),
        log_slope(cut.log_slope),
        potential_slope(cut.potential_slope) {}

  // Goes to the next place, from the values at the last one, and returns how far that is.
  double step(double log, double potential, bool rises, unsigned round) {
    ((log > 0.0) == rises ? high : low) = at;
    if (round > 0 && at != last_at && log != last_log) {
      log_slope = (log - last_log) / (at - last_at);
      potential_slope = (potential - last_potential) / (at - last_at);
    }
    last_at = at;
    last_log = log;
    last_potential = potential;
    const double next = at - log / log_slope;
    at = next > low && next < high && round < secant_rounds ? next : 0.5 * (low + high);
    at = std::clamp(at, part_min, 1.0 - part_min);
    return at - last_at;
  }

  double low = 0.0, high = 1.0;  // where the logarithm has the signs of the edge's ends
  double at, log_slope, potential_slope;
  double last_at = 0.0, last_log = 0.0, last_potential = 0.0;
};

class Maker {
 public:
  Maker(const Lattice& lattice, March march, Fields* fields, double level, Progress* progress)
      : lattice_(lattice), cuts_(std::move(march.cuts)), fields_(fields), level_(level), progress_(progress) {
    mesh_.facets = std::move(march.facets);
    for (unsigned direction = 0; direction < 8; ++direction) {
      edges_[direction] = march_edge(lattice, direction);
    }
  }

  Mesh make() {
    settle_cuts();
    quarter();
    return std::move(mesh_);
  }

 private:
  // Exact values at points that are made and used in batches: place(n) gives the n-th of them, use(n, point,
  // density, potential) gets what is there.
  template <class Place, class Use>
  void for_points(std::size_t count, Place place, Use use) {
    for (std::size_t first = 0; first < count; first += batch) {
      const std::size_t size = std::min(batch, count - first);
      points_.clear();
      for (std::size_t n = 0; n < size; ++n) {
        points_.push_back(place(first + n));
      }
      fields_->at(points_, std::span(values_).first(2 * size));
      for (std::size_t n = 0; n < size; ++n) {
        use(first + n, points_[n], values_[n], values_[size + n]);
      }
    }
  }

  void settle_cuts() {
    mesh_.points.reserve(4 * cuts_.size());  // a closed surface has three edges a vertex, nearly
    mesh_.potential.reserve(4 * cuts_.size());
    mesh_.points.resize(cuts_.size());
    mesh_.vertex_count = cuts_.size();
    mesh_.potential.resize(cuts_.size());
    for (std::size_t first = 0; first < cuts_.size(); first += batch) {
      settle_batch(first, std::min(batch, cuts_.size() - first));
      progress_->show(0.3 + 0.2 * static_cast<double>(first) / static_cast<double>(cuts_.size()));
    }
  }

  void settle_batch(std::size_t first, std::size_t count) {
    const auto begin = cuts_.begin() + static_cast<std::ptrdiff_t>(first);
    std::vector<Search> searches(begin, begin + static_cast<std::ptrdiff_t>(count));
    std::vector<std::size_t> active(count), left;
    std::iota(active.begin(), active.end(), first);
    for (unsigned round = 0; !active.empty(); ++round) {
      if (round == rounds_max) {
        msg_fatal("the density jumps over its level");
      }
      left.clear();
      const auto place = [&](std::size_t p) {
        const Cut& cut = cuts_[active[p]];
        return lattice_.point(cut.from[0], cut.from[1], cut.from[2]) +
               searches[active[p] - first].at * edges_[cut.direction];
      };
      const auto use = [&](std::size_t p, const Point& point, double density, double potential) {
        const std::size_t n = active[p];
        Search& search = searches[n - first];
        const double log = log_near_one(density / level_);
        const double step = search.step(log, potential, cuts_[n].rises, round);
        if (std::fabs(log) <= log_tolerance) {
          mesh_.points[n] = point + step * edges_[cuts_[n].direction];
          mesh_.potential[n] = potential + step * search.potential_slope;
          cuts_[n].log_slope = search.log_slope;
          cuts_[n].potential_slope = search.potential_slope;
        } else {
          left.push_back(n);
        }
      };
      for_points(active.size(), place, use);
      std::swap(active, left);
    }
  }

  // Directions outward at the vertices, each facet counted by its area.
  void find_normals() {
    normals_.assign(mesh_.points.size(), Point{});
    for (const Facet& f : mesh_.facets) {
      const Point twice_area =
          cross(mesh_.points[f[1]] - mesh_.points[f[0]], mesh_.points[f[2]] - mesh_.points[f[0]]);
      for (const unsigned n : f) {
        normals_[n] = normals_[n] + twice_area;
      }
    }
    for (std::size_t n = 0; n < normals_.size(); ++n) {
      // Without area: away from the inner end of the edge.
      const Point& edge = edges_[cuts_[n].direction];
      normals_[n] = unit(normals_[n], unit(cuts_[n].rises ? -1.0 * edge : edge, edge));
    }
  }

  // The edges of the mesh, those of the lower vertex in a run.
  void number_edges() {
    first_edge_.assign(mesh_.points.size() + 1, 0);
    const auto for_each_edge = [&](auto use) {
      for (const Facet& f : mesh_.facets) {
        for (unsigned c = 0; c < 3; ++c) {
          if (const unsigned a = f[c], b = f[(c + 1) % 3]; a < b) {
            use(a, b);
          }
        }
      }
    };
    for_each_edge([&](unsigned a, unsigned) { ++first_edge_[a + 1]; });
    std::partial_sum(first_edge_.begin(), first_edge_.end(), first_edge_.begin());
    mesh_.edges.resize(first_edge_.back());
    std::vector<unsigned> next(first_edge_.begin(), first_edge_.end() - 1);
    for_each_edge([&](unsigned a, unsigned b) { mesh_.edges[next[a]++] = {a, b}; });
  }

  unsigned edge_number(unsigned a, unsigned b) const {
    if (a > b) {
      std::swap(a, b);
    }
    unsigned n = first_edge_[a];
    while (mesh_.edges[n][1] != b) {
      ++n;
    }
    return n;
  }

  void quarter() {
    find_normals();
    number_edges();
    mesh_.middles.reserve(mesh_.facets.size());
    const auto count = static_cast<unsigned>(mesh_.vertex_count);
    for (const auto& [a, b, c] : mesh_.facets) {
      mesh_.middles.push_back(
          {count + edge_number(a, b), count + edge_number(b, c), count + edge_number(c, a)});
    }
    mesh_.points.resize(mesh_.vertex_count + mesh_.edges.size());
    mesh_.potential.resize(mesh_.points.size());
    put_middles();
  }

  // Where the surface bulges over an edge follows from how much the normal turns along it; from the density
  // there a step leads on, by what the edges of the lattice tell of the gradient.
  void put_middles() {
    // Between two normals; of length 1 but for the fourth power of their angle.
    const auto way_of = [&](std::size_t n) {
      const auto& [a, b] = mesh_.edges[n];
      const Point middle = 0.5 * (normals_[a] + normals_[b]);
      return (1.5 - 0.5 * dot(middle, middle)) * middle;
    };
    const auto place = [&](std::size_t n) {
      const auto& [a, b] = mesh_.edges[n];
      const Point edge = mesh_.points[b] - mesh_.points[a];
      const double bulge = dot(edge, normals_[b] - normals_[a]) / 8.0, most = shift_max * length(edge);
      return 0.5 * (mesh_.points[a] + mesh_.points[b]) + std::clamp(bulge, -most, most) * way_of(n);
    };
    for_points(
        mesh_.edges.size(), place, [&](std::size_t n, const Point& point, double density, double potential) {
          take_middle(n, point, way_of(n), density, potential);
          if (n % batch == 0) {
            progress_->show(0.5 + 0.4 * static_cast<double>(n) / static_cast<double>(mesh_.edges.size()));
          }
        });
    // Where the surface turns sharply, once more from where that led to.
    for (unsigned round = 0; round < far_rounds && !far_.empty(); ++round) {
      const std::vector<unsigned> again = std::move(far_);
      far_.clear();
      for_points(
          again.size(), [&](std::size_t n) { return mesh_.points[mesh_.vertex_count + again[n]]; },
          [&](std::size_t n, const Point& point, double density, double potential) {
            take_middle(again[n], point, way_of(again[n]), density, potential);
          });
    }
    // Where there is no surface beside it, the edge is as good as its ends.
    for (const unsigned n : far_) {
      const auto& [a, b] = mesh_.edges[n];
      mesh_.points[mesh_.vertex_count + n] = 0.5 * (mesh_.points[a] + mesh_.points[b]);
      mesh_.potential[mesh_.vertex_count + n] = 0.5 * (mesh_.potential[a] + mesh_.potential[b]);
    }
    mesh_.is_resolved =
        static_cast<double>(far_.size()) <= far_part * static_cast<double>(mesh_.edges.size());
  }

  void take_middle(std::size_t n, const Point& point, const Point& way, double density, double potential) {
    const auto& [a, b] = mesh_.edges[n];
    const Cut &first = cuts_[a], &second = cuts_[b];
    const double slopes = std::fabs(first.log_slope) + std::fabs(second.log_slope);
    const double outward = std::fabs(dot(edges_[first.direction], normals_[a])) +
                           std::fabs(dot(edges_[second.direction], normals_[b]));
    const double log = log_near_one(density / level_),
                 most = shift_max * distance(mesh_.points[a], mesh_.points[b]);
    double shift = 0.0, per_log = 0.0;
    if (slopes > 0.0) {
      shift = std::clamp(log * outward / slopes, -most, most);
      per_log = (sign(first) * first.potential_slope + sign(second) * second.potential_slope) / slopes;
    }
    mesh_.points[mesh_.vertex_count + n] = point + shift * way;
    mesh_.potential[mesh_.vertex_count + n] = potential - log * per_log;
    if (std::fabs(log) > log_far) {
      far_.push_back(static_cast<unsigned>(n));
    }
  }

  static double sign(const Cut& cut) { return cut.log_slope > 0.0 ? 1.0 : -1.0; }

  const Lattice& lattice_;
  std::vector<Cut> cuts_;
  Fields* fields_;
  double level_;
  Progress* progress_;
  Point edges_[8];
  std::vector<Point> points_;
  std::vector<double> values_ = std::vector<double>(2 * batch);
  std::vector<Point> normals_;
  std::vector<unsigned> first_edge_;
  std::vector<unsigned> far_;  // middles from which the step to the surface was long
  Mesh mesh_;
};

}  // namespace

Mesh mesh_make(const Lattice& lattice, March march, Fields* fields, double level, Progress* progress) {
  return Maker(lattice, std::move(march), fields, level, progress).make();
}
