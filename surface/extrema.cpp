#include "surface/extrema.hpp"

#include <algorithm>
#include <cmath>
#include <map>
#include <span>
#include <tuple>

#include "surface/logarithm.hpp"
#include "surface/vectors.hpp"

namespace {

// For derivatives from differences, bohr: around the axis of a linear molecule their curvatures must be 0.
constexpr double difference = 0.002;
constexpr double curvature_min = 1e-5;    // hartree/bohr^2, of what is not flat
constexpr double curvature_floor = 1e-4;  // hartree/bohr^2, by which a step is divided at least
constexpr double first_step_max = 0.15, step_max = 0.6;  // bohr; doubled while it goes well
constexpr double step_end = 1e-6, log_end = 1e-6, tilt_end = 1e-3;
constexpr double push = 0.05;         // bohr, off a saddle point that symmetry leads to
constexpr double same_weight = 1e-5;  // of atoms that symmetry makes equal owners of an extremum
constexpr double same_place = 0.05;   // bohr
constexpr unsigned rounds_max = 60, pushes_max = 2;
constexpr std::size_t batch_size = 1000;  // of starts

// Points around a place, in a frame along and across the surface.
constexpr std::size_t stencil_size = 9;
constexpr double stencil[stencil_size][3] = {{0, 0, 0}, {1, 0, 0},  {-1, 0, 0}, {0, 1, 0},  {0, -1, 0},
                                             {0, 0, 1}, {0, 0, -1}, {1, 1, 0},  {-1, -1, 0}};

struct Derivatives {
  double value;
  Point gradient;  // in the frame
  double uu, uw, ww;
};

Derivatives derivatives_of(const double (&y)[stencil_size]) {
  constexpr double d = difference;
  const double u = y[1] + y[2], w = y[3] + y[4];
  return {y[0],
          {(y[1] - y[2]) / (2 * d), (y[3] - y[4]) / (2 * d), (y[5] - y[6]) / (2 * d)},
          (u - 2.0 * y[0]) / (d * d),
          (y[7] + y[8] - u - w + 2.0 * y[0]) / (2 * d * d),
          (w - 2.0 * y[0]) / (d * d)};
}

struct Frame {
  Point u, w, n;
  Point of(double a, double b, double c) const { return a * u + b * w + c * n; }
};

Frame frame_around(const Point& n) {
  // Across the axis that is farthest from n.
  const auto least = std::ranges::min_element(n, {}, [](double c) { return std::fabs(c); }) - n.begin();
  Point axis = {};
  axis[static_cast<std::size_t>(least)] = 1.0;
  const Point u = unit(cross(n, axis), axis);
  return {u, cross(n, u), n};
}

// What a symmetric matrix of two rows does along its own axes.
struct Axes {
  double low, high;     // eigenvalues
  double cosine, sine;  // the direction of the high one
};

Axes axes_of(double a, double b, double c) {
  const double middle = 0.5 * (a + c), half = 0.5 * (a - c), radius = std::sqrt(half * half + b * b);
  const double x = half >= 0.0 ? half + radius : b, y = half >= 0.0 ? b : radius - half;
  const double size = std::sqrt(x * x + y * y);
  return {middle - radius, middle + radius, size > 0.0 ? x / size : 1.0, size > 0.0 ? y / size : 0.0};
}

// One on its way.
struct Walker {
  enum class State { walking, arrived, flat } state = State::walking;
  double sign;  // 1 downhill, -1 uphill
  Point place;
  Frame frame;
  double value = 0.0;  // on the surface beside it
  Point last_place{}, last_step{};
  double last_height = INFINITY, longest = first_step_max;
  unsigned pushes = 0;
  std::array<double, 2> curvatures{};

  void go_on(const Derivatives& log, const Derivatives& potential);
};

void Walker::go_on(const Derivatives& log, const Derivatives& potential) {
  const double steepness = length(log.gradient);
  // What remains of the potential's gradient, and its curvatures, along the surface: Lagrange's multiplier
  // takes the density's share off.
  const double multiplier = dot(potential.gradient, log.gradient) / (steepness * steepness);
  value = potential.value - multiplier * log.value;
  if (!std::isfinite(value) || !(steepness > 0.0)) {
    state = State::flat;
    return;
  }
  const double height = sign * value, last_length = length(last_step);
  if (height > last_height + 1e-9 && last_length > 1e-4) {
    last_step = 0.4 * last_step;
    longest = 0.4 * last_length;
    place = last_place + last_step;
    return;
  }
  const Point slope = sign * (potential.gradient - multiplier * log.gradient);
  const Axes axes =
      axes_of(sign * (potential.uu - multiplier * log.uu), sign * (potential.uw - multiplier * log.uw),
              sign * (potential.ww - multiplier * log.ww));
  double along_high =
      -(slope[0] * axes.cosine + slope[1] * axes.sine) / std::max(std::fabs(axes.high), curvature_floor);
  double along_low =
      -(slope[1] * axes.cosine - slope[0] * axes.sine) / std::max(std::fabs(axes.low), curvature_floor);
  double size = std::sqrt(along_high * along_high + along_low * along_low);
  const double tilt =
      std::sqrt(log.gradient[0] * log.gradient[0] + log.gradient[1] * log.gradient[1]) / steepness;
  if (size < step_end && std::fabs(log.value) < log_end && tilt < tilt_end) {
    if (axes.low > -curvature_min || pushes == pushes_max) {
      state = axes.low > curvature_min ? State::arrived : State::flat;
      curvatures = sign > 0.0 ? std::array{axes.low, axes.high} : std::array{-axes.high, -axes.low};
      return;
    }
    ++pushes;
    along_high = 0.0;
    along_low = size = push;
  }
  if (size > longest) {
    along_high *= longest / size;
    along_low *= longest / size;
    longest = std::min(2.0 * longest, step_max);
  }
  const double u = along_high * axes.cosine - along_low * axes.sine,
               w = along_high * axes.sine + along_low * axes.cosine;
  // Along the surface, and back onto it where it bends away.
  const Point outward = frame.of(log.gradient[0], log.gradient[1], log.gradient[2]);
  const Point normal = (1.0 / steepness) * outward;
  const Point tangent = frame.of(u, w, 0.0) - dot(frame.of(u, w, 0.0), normal) * normal;
  const double bend = 0.5 * (u * u * log.uu + 2.0 * u * w * log.uw + w * w * log.ww);
  last_place = place;
  last_height = height;
  last_step = tangent + ((-log.value - bend) / steepness) * normal;
  place = place + last_step;
  frame = frame_around(normal);
}

// Vertices that are lower (higher) than all to which an edge leads.
std::vector<Walker> walkers_of(const Mesh& mesh) {
  std::vector<unsigned char> is_low(mesh.points.size(), 1), is_high(mesh.points.size(), 1);
  const auto compare = [&](const Facet& f) {
    const auto is_less = [&](unsigned a, unsigned b) {
      return mesh.potential[a] < mesh.potential[b] || (mesh.potential[a] == mesh.potential[b] && a < b);
    };
    const bool ab = is_less(f[0], f[1]), bc = is_less(f[1], f[2]), ca = is_less(f[2], f[0]);
    is_low[f[0]] &= static_cast<unsigned char>(ab && !ca);
    is_low[f[1]] &= static_cast<unsigned char>(bc && !ab);
    is_low[f[2]] &= static_cast<unsigned char>(ca && !bc);
    is_high[f[0]] &= static_cast<unsigned char>(!ab && ca);
    is_high[f[1]] &= static_cast<unsigned char>(!bc && ab);
    is_high[f[2]] &= static_cast<unsigned char>(!ca && bc);
  };
  for (std::size_t facet = 0; facet < mesh.facets.size(); ++facet) {
    std::ranges::for_each(mesh.quarters(facet), compare);
  }
  std::map<unsigned, Point> normals;  // of these few
  const auto is_start = [&](unsigned n) { return (is_low[n] | is_high[n]) != 0; };
  for (std::size_t facet = 0; facet < mesh.facets.size(); ++facet) {
    if (std::ranges::none_of(mesh.facets[facet], is_start) &&
        std::ranges::none_of(mesh.middles[facet], is_start)) {
      continue;
    }
    for (const Facet& f : mesh.quarters(facet)) {
      for (const unsigned n : f) {
        if (is_start(n)) {
          normals[n] = normals[n] +
                       cross(mesh.points[f[1]] - mesh.points[f[0]], mesh.points[f[2]] - mesh.points[f[0]]);
        }
      }
    }
  }
  std::vector<Walker> walkers;
  for (const bool is_maximum : {false, true}) {
    for (unsigned n = 0; n < mesh.points.size(); ++n) {
      if ((is_maximum ? is_high : is_low)[n] != 0) {
        walkers.push_back({.sign = is_maximum ? -1.0 : 1.0,
                           .place = mesh.points[n],
                           .frame = frame_around(unit(normals[n], {0, 0, 1}))});
      }
    }
  }
  return walkers;
}

void walk(std::span<Walker> walkers, Fields* fields, double level) {
  std::vector<Point> points;
  std::vector<double> values;
  for (unsigned round = 0; round < rounds_max; ++round) {
    points.clear();
    for (const Walker& walker : walkers) {
      if (walker.state == Walker::State::walking) {
        for (const auto& [u, w, n] : stencil) {
          points.push_back(walker.place + walker.frame.of(difference * u, difference * w, difference * n));
        }
      }
    }
    values.resize(2 * points.size());
    fields->at(points, values);
    std::size_t first = 0;
    for (Walker& walker : walkers) {
      if (walker.state == Walker::State::walking) {
        double logs[stencil_size], potentials[stencil_size];
        for (std::size_t n = 0; n < stencil_size; ++n, ++first) {
          logs[n] = log_near_one(values[first] / level);
          potentials[n] = values[points.size() + first];
        }
        walker.go_on(derivatives_of(logs), derivatives_of(potentials));
      }
    }
  }
}

// Equal extrema of a symmetric molecule come in an order that does not depend on their last bits.
auto order_of(const Extremum& extremum) {
  const auto rounded = [](double value, double quanta) { return std::floor(value * quanta + 0.5); };
  const auto& [x, y, z] = extremum.position;
  return std::tuple(extremum.is_maximum, rounded(extremum.value, 1e5), extremum.atom, rounded(x, 1e3),
                    rounded(y, 1e3), rounded(z, 1e3));
}

}  // namespace

Extrema extrema_of(const Mesh& mesh, const Owners& owners, Fields* fields, double level) {
  std::vector<Walker> walkers = walkers_of(mesh);
  // In batches: on a flat surface there are very many.
  for (std::span<Walker> rest(walkers); !rest.empty();) {
    const std::size_t count = std::min(rest.size(), batch_size);
    walk(rest.first(count), fields, level);
    rest = rest.subspan(count);
  }
  Extrema extrema = {{}, 0};
  for (const Walker& walker : walkers) {
    const bool is_maximum = walker.sign < 0.0;
    if (walker.state != Walker::State::arrived) {
      ++extrema.flat_count;
    } else if (std::ranges::none_of(extrema.list, [&](const Extremum& known) {
                 return known.is_maximum == is_maximum && distance(known.position, walker.place) < same_place;
               })) {
      extrema.list.push_back(
          {is_maximum, walker.value, walker.place, owners.of(walker.place, same_weight), walker.curvatures});
    }
  }
  std::ranges::stable_sort(extrema.list, {}, order_of);
  return extrema;
}
