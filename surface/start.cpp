#include "surface/start.hpp"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr double quantum = 1.0 / 4096;  // of a logarithm that rounding has brought to the other side
constexpr unsigned newton_steps = 6;

struct Sites {
  unsigned count;  // 4, or 2: only the ends
  std::array<PlanePoint, 4> points;
};

Sites sites_of(const Lattice& lattice, const Cut& cut) {
  const auto& count = lattice.cube.npoints;
  Sites sites = {4, {}};
  for (int n = 0; n < 4; ++n) {
    long index[3];
    bool is_there = true;
    for (unsigned axis = 0; axis < 3; ++axis) {
      index[axis] = static_cast<long>(cut.from[axis]) + ((cut.direction >> (2 - axis) & 1) != 0 ? n - 1 : 0);
      is_there = is_there && index[axis] >= 0 && index[axis] < static_cast<long>(count[axis]);
    }
    if (!is_there || !lattice.has_row(index[0], index[1])) {
      sites.count = 2;
      continue;
    }
    sites.points[static_cast<std::size_t>(n)] = {
        static_cast<unsigned>(index[0]),
        static_cast<std::size_t>(index[1]) * count[2] + static_cast<std::size_t>(index[2])};
  }
  return sites;
}

std::span<const PlanePoint> used(const Sites& sites) {
  return std::span(sites.points).subspan(sites.count == 4 ? 0 : 1, sites.count);
}

// A cubic in t through values at -1, 0, 1 and 2.
struct Cubic {
  explicit Cubic(const std::array<double, 4>& y)
      : constant(y[1]),
        linear(-y[0] / 3.0 - y[1] / 2.0 + y[2] - y[3] / 6.0),
        square((y[0] + y[2]) / 2.0 - y[1]),
        cube((y[3] - y[0]) / 6.0 + (y[1] - y[2]) / 2.0) {}
  double at(double t) const { return constant + t * (linear + t * (square + t * cube)); }
  double slope(double t) const { return linear + t * (2.0 * square + t * 3.0 * cube); }

  double constant, linear, square, cube;
};

// A zero between 0 and 1, at which the values have unlike signs.
double zero_of(const Cubic& cubic) {
  double low = 0.0, high = 1.0;
  const bool rises = cubic.at(1.0) > 0.0;
  double t = cubic.at(0.0) / (cubic.at(0.0) - cubic.at(1.0));
  for (unsigned step = 0; step < newton_steps; ++step) {
    const double value = cubic.at(t);
    ((value > 0.0) == rises ? high : low) = t;
    t -= value / cubic.slope(t);
    if (!(t > low && t < high)) {
      t = 0.5 * (low + high);
    }
  }
  return t;
}

void start_cut(const Planes& planes, const Sites& sites, Cut* cut) {
  std::array<double, 4> logs{}, potentials{};
  bool has_four = sites.count == 4;
  for (std::size_t n = has_four ? 0 : 1; n < (has_four ? 4U : 3U); ++n) {
    const RoundedValues values = planes.get(sites.points[n]);
    logs[n] = values.log;
    potentials[n] = values.potential;
  }
  const std::size_t inner = cut->rises ? 2 : 1;
  logs[inner] = std::max(logs[inner], quantum);
  logs[3 - inner] = std::min(logs[3 - inner], -quantum);
  has_four = has_four && std::ranges::all_of(potentials, [](double p) { return std::isfinite(p); });
  if (has_four) {
    const Cubic cubic(logs);
    cut->start = zero_of(cubic);
    cut->log_slope = cubic.slope(cut->start);
    cut->potential_slope = Cubic(potentials).slope(cut->start);
  } else {
    cut->start = logs[1] / (logs[1] - logs[2]);
    cut->log_slope = logs[2] - logs[1];
    cut->potential_slope = std::isfinite(potentials[2] - potentials[1]) ? potentials[2] - potentials[1] : 0.0;
  }
}

}  // namespace

void start_cuts(const Lattice& lattice, Planes* planes, std::span<Cut> cuts) {
  for (const Cut& cut : cuts) {
    const Sites sites = sites_of(lattice, cut);
    std::ranges::for_each(used(sites), [&](PlanePoint point) { planes->want(point); });
  }
  planes->settle();
  for (Cut& cut : cuts) {
    start_cut(*planes, sites_of(lattice, cut), &cut);
  }
}
