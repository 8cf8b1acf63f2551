#include "surface/planes.hpp"

#include <algorithm>
#include <cmath>

#include "surface/logarithm.hpp"

namespace {

// Start values need no more, and rows that are less vague than this by far leave few of them in doubt.
constexpr double log_quanta = 4096.0, potential_quanta = 65536.0;  // in 1, in a hartree

// The tolerance of a row bounds how far an exact value is from it; that and the rounding of what is computed
// from both.
constexpr double margin = 1.01, rounding = 1e-13;

double rounded(double value, double quanta) { return std::floor(value * quanta + 0.5) / quanta; }

bool is_rounding_in_doubt(double value, double error, double quanta) {
  return !(rounded(value - error, quanta) == rounded(value + error, quanta));
}

}  // namespace

Planes::Planes(const Lattice* lattice, Fields* fields, double level)
    : lattice_(lattice), fields_(fields), level_(level), in_doubt_(lattice->cube.npoints[2]) {
  const std::size_t size = std::size_t{lattice->cube.npoints[1]} * lattice->cube.npoints[2];
  for (Held& plane : held_) {
    plane.is_inside.resize(size);
    plane.states.resize(size);
    plane.rounded.resize(size);
    for (unsigned field = 0; field < 2; ++field) {
      plane.values[field].resize(size);
      plane.tolerances[field].resize(size);
    }
  }
}

bool Planes::fill(unsigned i) {
  const unsigned length = lattice_->cube.npoints[2];
  std::ranges::fill(held(i).states, State::as_it_came);
  bool is_closed_row = true;
  for (unsigned j = 0; j < lattice_->cube.npoints[1]; ++j) {
    if (lattice_->has_row(i, j)) {
      is_closed_row = fill_row(i, j) && is_closed_row;
    } else {
      const auto first = static_cast<std::ptrdiff_t>(std::size_t{j} * length);
      std::fill_n(held(i).is_inside.begin() + first, length, 0);
    }
  }
  return is_closed_row;
}

// False if a point inside lies at an end of the row, or beside a row that is not evaluated.
bool Planes::fill_row(unsigned i, unsigned j) {
  Held& plane = held(i);
  const unsigned length = lattice_->cube.npoints[2];
  const std::size_t first = std::size_t{j} * length;
  fields_->row(i, j);
  const bool has_tolerances = !fields_->is_exact();
  if (has_tolerances) {
    const auto density = fields_->values(0);
    const auto tolerance = fields_->tolerances(0);
    for (unsigned k = 0; k < length; ++k) {
      in_doubt_[k] = !(std::fabs(density[k] - level_) > margin * tolerance[k] * std::fabs(density[k]));
    }
    fields_->settle(in_doubt_);
  }
  for (unsigned field = 0; field < 2; ++field) {
    std::ranges::copy(fields_->values(field), plane.values[field].data() + first);
    if (has_tolerances) {
      std::ranges::copy(fields_->tolerances(field), plane.tolerances[field].data() + first);
    }
  }
  bool is_any_inside = false;
  for (unsigned k = 0; k < length; ++k) {
    const bool is_inside = plane.values[0][first + k] > level_;
    plane.is_inside[first + k] = is_inside;
    is_any_inside = is_any_inside || is_inside;
    if (!has_tolerances || in_doubt_[k] != 0) {
      plane.tolerances[0][first + k] = plane.tolerances[1][first + k] = 0.0;
    }
  }
  if (!is_any_inside) {
    return true;
  }
  bool is_closed = plane.is_inside[first] == 0 && plane.is_inside[first + length - 1] == 0;
  for (long a = -1; a <= 1; ++a) {
    for (long b = -1; b <= 1; ++b) {
      is_closed = is_closed && lattice_->has_row(static_cast<long>(i) + a, static_cast<long>(j) + b);
    }
  }
  return is_closed;
}

RoundedValues Planes::rounded_values(PlanePoint point) const {
  const Held& plane = held(point.plane);
  return {rounded(log_near_one(plane.values[0][point.at] / level_), log_quanta),
          rounded(plane.values[1][point.at], potential_quanta)};
}

// Whether the exact values may be rounded to others.
bool Planes::is_in_doubt(PlanePoint point) const {
  const Held& plane = held(point.plane);
  const double density = plane.tolerances[0][point.at], potential = plane.values[1][point.at];
  if (density == 0.0) {
    return false;  // exact
  }
  return !(density < 0.01) ||
         is_rounding_in_doubt(log_near_one(plane.values[0][point.at] / level_), margin * density + rounding,
                              log_quanta) ||
         is_rounding_in_doubt(potential,
                              margin * plane.tolerances[1][point.at] * std::fabs(potential) + rounding,
                              potential_quanta);
}

void Planes::want(PlanePoint point) {
  Held& plane = held(point.plane);
  State& state = plane.states[point.at];
  if (state != State::as_it_came) {
    return;
  }
  state = is_in_doubt(point) ? State::wanted : State::known;
  if (state == State::wanted) {
    wanted_.push_back(point);
  } else {
    plane.rounded[point.at] = rounded_values(point);
  }
}

void Planes::settle() {
  if (wanted_.empty()) {
    return;
  }
  const unsigned length = lattice_->cube.npoints[2];
  points_.clear();
  for (const PlanePoint& point : wanted_) {
    points_.push_back(lattice_->point(point.plane, static_cast<unsigned>(point.at / length),
                                      static_cast<unsigned>(point.at % length)));
  }
  exact_.resize(2 * points_.size());
  fields_->at(points_, exact_);
  for (std::size_t n = 0; n < wanted_.size(); ++n) {
    Held& plane = held(wanted_[n].plane);
    for (unsigned field = 0; field < 2; ++field) {
      plane.values[field][wanted_[n].at] = exact_[field * points_.size() + n];
    }
    plane.states[wanted_[n].at] = State::known;
    plane.rounded[wanted_[n].at] = rounded_values(wanted_[n]);
  }
  wanted_.clear();
}
