#include "app/field/fields.hpp"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <string_view>
#include <vector>

#include "app/field/exact/sweep.hpp"
#include "app/field/instruction_sets.hpp"
#include "app/field/point/eval.hpp"
#include "app/field/rows/rows.hpp"
#include "app/model/occupation.hpp"
#include "lib/message.hpp"

namespace {

// Rows take an eighteenth to a half of the exact sweep's time. With so much left in doubt they still save
// some of it for certain, though the exact sweep takes somewhat longer for scattered points than for
// neighbours.
constexpr double doubt_max = 0.25;

constexpr unsigned pause_max = 7;  // rows

// Rows must save what it takes to prepare them, which grows with the functions as the exact sweep's time for
// a point does. That grows with the orbitals, too: without any, functions take as long as the sums of some
// thirty. The narrower its kernel, the longer it takes.
constexpr double row_work_min = 1e5;  // points times orbitals, a lane
constexpr double orbitals_of_functions = 30.0;

bool is_by_rows(double point_count, std::size_t orbital_count, unsigned lanes) {
  const char* const wanted = std::getenv("ORVA_ROWS");
  if (wanted == nullptr) {
    const double work = point_count * (static_cast<double>(orbital_count) + orbitals_of_functions);
    return work >= row_work_min * lanes;
  }
  const std::string_view word = wanted;
  if (word != "always" && word != "never") {
    msg_fatal_format("ORVA_ROWS is \"%s\", neither \"always\" nor \"never\"", wanted);
  }
  return word == "always";
}

std::vector<WeightedOrbital> weighted(const Molecule* molecule, FieldKind kind,
                                      std::span<const Orbital> orbitals) {
  if (kind == FieldKind::density_and_potential) {
    return occupation_of(molecule).orbitals;
  }
  std::vector<WeightedOrbital> list;
  for (const Orbital& orbital : orbitals) {
    list.emplace_back(&orbital);
  }
  return list;
}

}  // namespace

struct Fields::State {
  State(const Molecule* molecule, const CubeDefinition* grid, FieldKind kind,
        std::span<const WeightedOrbital> orbitals, const InstructionSet& set)
      : cube(grid),
        field_count(kind == FieldKind::density_and_potential ? 2 : orbitals.size()),
        exact(molecule, set.exact, kind, orbitals, cube_extent(grid)),
        rows(is_by_rows(1.0 * grid->npoints[0] * grid->npoints[1] * grid->npoints[2], orbitals.size(),
                        set.rows.lanes)
                 ? RowSweep::make(molecule, grid, set.rows, kind, orbitals)
                 : nullptr),
        points(3 * std::size_t{exact.block_points()}) {
    if (std::ranges::count(cube->npoints, 0U) != 0) {
      next[0] = cube->npoints[0];
    }
  }

  // Evaluates points exactly, in blocks. coordinate(n, c) is coordinate c of a point; take(field, n,
  // value) gets the values.
  template <class Coordinate, class Take>
  void run_exact(std::size_t total, Coordinate coordinate, Take take) {
    const std::size_t room = exact.block_points();
    for (std::size_t first = 0; first < total; first += room) {
      const std::size_t end = std::min(first + room, total);
      for (unsigned c = 0; c < 3; ++c) {
        for (std::size_t n = first; n < end; ++n) {
          points[c * room + (n - first)] = coordinate(n, c);
        }
      }
      exact.run(static_cast<unsigned>(end - first), points.data());
      for (std::size_t field = 0; field < field_count; ++field) {
        for (std::size_t n = first; n < end; ++n) {
          take(field, n, exact.field(field)[n - first]);
        }
      }
    }
  }

  // At most so many rows. False if they are left to the exact sweep.
  bool run_rows(unsigned most) {
    if (rows == nullptr || pause > 0) {
      return false;
    }
    row_count = std::min(rows->run(i, j), most);
    if (row_count == 0) {
      set_pause(false);
      return false;
    }
    held = Held::rows;
    return true;
  }

  void run_exact_row() {
    const std::size_t length = cube->npoints[2];
    exact_row.resize(field_count * length);
    run_exact(
        length,
        [&](std::size_t n, unsigned c) { return cube_coordinate(cube, i, j, static_cast<unsigned>(n), c); },
        [&](std::size_t field, std::size_t n, double value) { exact_row[field * length + n] = value; });
    held = Held::exact_row;
  }

  void set_pause(bool is_worth_while) {
    pause = is_worth_while ? 0 : next_pause;
    next_pause = is_worth_while ? 0 : std::min(2 * next_pause + 1, pause_max);
  }

  // The next points in the order of cube files, at most so many and at most a block.
  void run_block(std::size_t most) {
    const unsigned room = exact.block_points();
    const auto end = static_cast<unsigned>(std::min<std::size_t>(room, most));
    for (count = 0; count < end && next[0] < cube->npoints[0];) {
      const unsigned run = std::min(end - count, cube->npoints[2] - next[2]);
      for (unsigned c = 0; c < 3; ++c) {
        for (unsigned n = 0; n < run; ++n) {
          points[std::size_t{c} * room + count + n] = cube_coordinate(cube, next[0], next[1], next[2] + n, c);
        }
      }
      count += run;
      advance(run);
    }
    exact.run(count, points.data());
    held = Held::block;
  }

  void advance(unsigned run) {
    next[2] += run;
    for (unsigned axis = 2; axis > 0 && next[axis] == cube->npoints[axis]; --axis) {
      next[axis] = 0;
      ++next[axis - 1];
    }
  }

  const CubeDefinition* cube;
  std::size_t field_count;
  Sweep exact;
  std::unique_ptr<RowSweep> rows;  // null: the exact sweep does it all
  std::vector<double> points;      // of a block
  // What is at hand: rows, a row of exact values, or a block that the exact sweep still holds.
  enum class Held { nothing, rows, exact_row, block } held = Held::nothing;
  unsigned i = 0, j = 0;  // of the first row
  unsigned row_count = 0;
  unsigned count = 0;             // of points in the block
  unsigned next[3] = {};          // indices of the point with which `next` goes on
  std::vector<double> exact_row;  // [field][point]
  // Where rows leave much in doubt, one after the other, they are not even tried for a while.
  unsigned pause = 0, next_pause = 0;
  std::size_t exact_left = 0;       // points that `next` is to give from blocks meanwhile
  std::vector<std::size_t> doubts;  // the points of rows that are to be settled
};

Fields::Fields(const Molecule* molecule, const CubeDefinition* cube, FieldKind kind,
               std::span<const Orbital> orbitals)
    : state_(std::make_unique<State>(molecule, cube, kind, weighted(molecule, kind, orbitals),
                                     choose_instruction_set())) {}

Fields::~Fields() = default;

bool Fields::next() {
  State& state = *state_;
  if (state.next[0] == state.cube->npoints[0]) {
    return false;
  }
  constexpr std::size_t all = std::numeric_limits<std::size_t>::max();
  if (state.exact_left == 0) {
    state.i = state.next[0];
    state.j = state.next[1];
    if (state.run_rows(state.cube->npoints[1])) {
      for (unsigned row = 0; row < state.row_count; ++row) {
        state.advance(state.cube->npoints[2]);
      }
      return true;
    }
    state.exact_left =
        state.rows == nullptr ? all : std::size_t{std::max(state.pause, 1U)} * state.cube->npoints[2];
    state.pause = 0;
  }
  state.run_block(state.exact_left);
  state.exact_left -= state.count;
  return true;
}

double Fields::part_done() const {
  const State& state = *state_;
  return (state.next[0] + static_cast<double>(state.next[1]) / state.cube->npoints[1]) /
         state.cube->npoints[0];
}

void Fields::row(unsigned i, unsigned j) {
  State& state = *state_;
  state.i = i;
  state.j = j;
  if (!state.run_rows(1)) {
    state.pause -= state.pause > 0 ? 1 : 0;
    state.run_exact_row();
  }
}

bool Fields::is_exact() const { return state_->held != State::Held::rows; }

unsigned Fields::row_count() const { return state_->row_count; }

std::span<const double> Fields::values(std::size_t field, unsigned row) const {
  const State& state = *state_;
  const std::size_t length = state.cube->npoints[2];
  switch (state.held) {
    case State::Held::rows:
      return state.rows->field(field, row);
    case State::Held::exact_row:
      return {state.exact_row.data() + field * length, length};
    default:
      return {state.exact.field(field), state.count};
  }
}

std::span<const double> Fields::tolerances(std::size_t field, unsigned row) const {
  return state_->rows->tolerances(field, row);
}

void Fields::settle(std::span<const unsigned char> in_doubt) {
  State& state = *state_;
  state.doubts.clear();
  // The first field stands for all in what is known: where that is nothing, the grid is out of sight.
  std::size_t known = 0, vague = 0;
  const std::size_t length = state.cube->npoints[2];
  for (std::size_t start = 0; start < in_doubt.size(); start += length) {
    const auto tolerances = state.rows->tolerances(0, static_cast<unsigned>(start / length));
    for (std::size_t k = 0; k < length; ++k) {
      known += tolerances[k] < 1.0 ? 1 : 0;
      if (in_doubt[start + k] != 0) {
        state.doubts.push_back(start + k);
        vague += tolerances[k] < 1.0 ? 1 : 0;
      }
    }
  }
  state.set_pause(known > 0 && static_cast<double>(vague) <= doubt_max * static_cast<double>(known));
  state.run_exact(
      state.doubts.size(),
      [&](std::size_t n, unsigned c) {
        const std::size_t at = state.doubts[n];
        return cube_coordinate(state.cube, state.i, state.j + static_cast<unsigned>(at / length),
                               static_cast<unsigned>(at % length), c);
      },
      [&](std::size_t field, std::size_t n, double value) {
        const std::size_t at = state.doubts[n];
        state.rows->field(field, static_cast<unsigned>(at / length))[at % length] = value;
      });
}

void Fields::at(std::span<const Point> points, std::span<double> values) {
  state_->run_exact(
      points.size(), [&](std::size_t n, unsigned c) { return points[n][c]; },
      [&](std::size_t field, std::size_t n, double value) { values[field * points.size() + n] = value; });
}

double* Fields::basis_values() { return state_->exact.values(); }

void fields_at_point(const Molecule* molecule, const double* point, FieldKind kind, const Orbital* orbital,
                     double* basis_values, double* first, double* second) {
  eval_bfce_vec(molecule, point, basis_values);
  switch (kind) {
    case FieldKind::density_and_potential:
      eval_orva(molecule, basis_values, first, second);
      break;
    case FieldKind::orbital:
      *first = eval_mo(orbital, basis_values, molecule->basis_count);
      break;
    case FieldKind::orbital_density:
      *first = eval_mo_den(orbital, basis_values, molecule->basis_count);
      break;
  }
}

double fields_numbers_kept(unsigned basis_count, unsigned row_length) {
  // The exact sweep keeps a coefficient for each function, rows about four. Rows keep a value and a tolerance
  // for each point of a row, and the exact sweep one for each of a block, which are hardly more.
  return 5.0 * basis_count + 3.0 * row_length;
}

void fields_check() { is_by_rows(0.0, 0, choose_instruction_set().rows.lanes); }
