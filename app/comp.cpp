#include "comp.hpp"

#include <algorithm>
#include <cmath>
#include <new>
#include <vector>

#include "eval.hpp"
#include "occupation.hpp"
#include "progress.hpp"
#include "str_real.hpp"
#include "sweep.hpp"

double* comp_bfce_vec = nullptr;

namespace {

// Bytes at most for many orbitals, their values and the coefficients that their sweep keeps.
constexpr double orbital_memory = 64.0 * 1024 * 1024;

const Orbital* orbital_of(const Molecule* molecule, std::int16_t code, std::int16_t orbital) {
  return (code == field_beta_orbital ? molecule->beta_orbitals : molecule->alpha_orbitals) + (orbital - 1);
}

// The grid points in the order of the files.
class GridWalk {
 public:
  explicit GridWalk(const CubeDefinition* cube) : cube_(cube) {
    is_at_end_ = std::ranges::count(cube->npoints, 0U) != 0;
  }

  // Stores x, y and z of the next points, at most `room` of each, `room` apart. Returns how many; 0 at the
  // end.
  unsigned next(double* points, unsigned room) {
    unsigned filled = 0;
    while (filled < room && !is_at_end_) {
      const unsigned run = std::min(room - filled, cube_->npoints[2] - k_);
      for (unsigned c = 0; c < 3; ++c) {
        double* const to = points + std::size_t{c} * room + filled;
        for (unsigned n = 0; n < run; ++n) {
          to[n] = cube_coordinate(cube_, i_, j_, k_ + n, c);
        }
      }
      filled += run;
      advance(run);
    }
    return filled;
  }

  double part_done() const { return (i_ + static_cast<double>(j_) / cube_->npoints[1]) / cube_->npoints[0]; }

 private:
  void advance(unsigned run) {
    k_ += run;
    if (k_ == cube_->npoints[2]) {
      k_ = 0;
      if (++j_ == cube_->npoints[1]) {
        j_ = 0;
        is_at_end_ = ++i_ == cube_->npoints[0];
      }
    }
  }

  const CubeDefinition* cube_;
  unsigned i_ = 0, j_ = 0, k_ = 0;
  bool is_at_end_;
};

// The data of a cube file: six values to a line, every row of the third axis on a new line.
class CubeText {
 public:
  CubeText(std::FILE* stream, unsigned row_length) : stream_(stream), row_length_(row_length) {}
  ~CubeText() { flush(); }
  CubeText(const CubeText&) = delete;
  CubeText& operator=(const CubeText&) = delete;

  void put(std::span<const double> values) {
    for (const double value : values) {
      if (used_ + str_scientific_width + 1 > text_.size()) {
        flush();
      }
      str_scientific(value, text_.data() + used_);
      used_ += str_scientific_width;
      ++in_row_;
      const bool is_row_end = in_row_ == row_length_;
      if (++in_line_ == 6 || is_row_end) {
        text_[used_++] = '\n';
        in_line_ = 0;
      }
      if (is_row_end) {
        in_row_ = 0;
      }
    }
  }

 private:
  void flush() {
    if (used_ > 0) {  // a text without a stream stays empty
      std::fwrite(text_.data(), 1, used_, stream_);
      used_ = 0;
    }
  }

  std::FILE* stream_;
  unsigned row_length_, in_row_ = 0, in_line_ = 0;
  std::size_t used_ = 0;
  std::vector<char> text_ = std::vector<char>(65536);
};

// No coordinate of a grid point is larger in magnitude; NaN if one is undefined.
double extent_of(const CubeDefinition* cube) {
  double extent = 0.0;
  for (unsigned c = 0; c < 3; ++c) {
    double reach = std::fabs(cube->points[0][c]);
    for (unsigned axis = 0; axis < 3; ++axis) {
      reach += cube->npoints[axis] * std::fabs(cube->vectors[axis][c]);
    }
    extent += reach;  // an upper bound, and NaN stays NaN
  }
  return extent;
}

std::vector<const Orbital*> occupied_orbitals(const Molecule* molecule) {
  std::vector<const Orbital*> orbitals;
  for (const OccupiedOrbitals& spin : occupation_of(molecule).spin) {
    for (unsigned i = 0; i < spin.count; ++i) {
      orbitals.push_back(&spin.orbitals[i]);
    }
  }
  return orbitals;
}

// Sweeps over all grid points. After each unit of work `take` gets the number of its points.
template <class Take>
void sweep_grid(const CubeDefinition* cube, Sweep& sweep, Take take) {
  std::vector<double> points(3 * std::size_t{sweep.block_points()});
  comp_bfce_vec = sweep.values();
  GridWalk walk(cube);
  Progress progress;
  while (const unsigned count = walk.next(points.data(), sweep.block_points())) {
    sweep.run(count, points.data());
    take(count);
    progress.show(walk.part_done());
  }
  comp_bfce_vec = nullptr;
}

}  // namespace

void comp_data(const Molecule* molecule, const CubeDefinition* cube, std::int16_t code, std::int16_t orbital,
               std::FILE* first, std::FILE* second) {
  const bool is_single = field_is_orbital(code);
  const SweepField field = code == field_orbital_density ? SweepField::orbital_density
                           : is_single                   ? SweepField::orbital
                                                         : SweepField::density_and_potential;
  const std::vector<const Orbital*> orbitals =
      is_single ? std::vector{orbital_of(molecule, code, orbital)} : occupied_orbitals(molecule);
  Sweep sweep(molecule, sweep_choose_kernel(), field, orbitals, extent_of(cube));
  CubeText first_text(first, cube->npoints[2]);
  CubeText second_text(second, cube->npoints[2]);
  sweep_grid(cube, sweep, [&](unsigned count) {
    first_text.put({sweep.field(code == field_potential ? 1 : 0), count});
    if (code == field_density_and_potential) {
      second_text.put({sweep.field(1), count});
    }
  });
}

OrbitalValues comp_orbital_alloc(const CubeDefinition* cube, unsigned orbital_count, unsigned basis_count) {
  const double point_count = 1.0 * cube->npoints[0] * cube->npoints[1] * cube->npoints[2];
  const double fitting = orbital_memory / sizeof(double) / std::max(point_count + basis_count, 1.0);
  OrbitalValues result = {nullptr, 0, 0};
  if (fitting >= 2.0) {
    result.orbital_count = static_cast<unsigned>(std::min<double>(fitting, orbital_count));
    result.point_count = static_cast<std::size_t>(point_count);
    result.values.reset(new (std::nothrow) double[result.point_count * result.orbital_count]);
  }
  if (result.values == nullptr) {
    result.orbital_count = 0;
  }
  return result;
}

void comp_orbital_values(const Molecule* molecule, const CubeDefinition* cube, const Orbital* orbitals,
                         unsigned count, OrbitalValues* result) {
  std::vector<const Orbital*> list(count);
  std::ranges::generate(list, [&] { return orbitals++; });
  Sweep sweep(molecule, sweep_choose_kernel(), SweepField::orbital, list, extent_of(cube));
  std::size_t done = 0;
  sweep_grid(cube, sweep, [&](unsigned points) {
    for (unsigned i = 0; i < count; ++i) {
      std::copy_n(sweep.field(i), points, result->of(i).data() + done);
    }
    done += points;
  });
}

void comp_write_values(const CubeDefinition* cube, std::span<const double> values, std::FILE* stream) {
  CubeText(stream, cube->npoints[2]).put(values);
}

void comp_point_value(const Molecule* molecule, const double* point, std::int16_t code, std::int16_t orbital,
                      double* first, double* second) {
  eval_bfce_vec(molecule, point, comp_bfce_vec);
  const unsigned n = molecule->basis_count;
  switch (code) {
    case field_density:
      *first = eval_den(molecule, comp_bfce_vec);
      break;
    case field_orbital_density:
      *first = eval_mo_den(orbital_of(molecule, code, orbital), comp_bfce_vec, n);
      break;
    case field_alpha_orbital:
    case field_beta_orbital:
      *first = eval_mo(orbital_of(molecule, code, orbital), comp_bfce_vec, n);
      break;
    case field_density_and_potential:
    case field_potential:
      eval_orva(molecule, comp_bfce_vec, first, second);
      break;
    default:
      break;
  }
}
