#include "app/cube/comp.hpp"

#include <algorithm>
#include <cmath>
#include <deque>
#include <new>
#include <vector>

#include "app/cube/cube_text.hpp"
#include "app/field/exact/sweep.hpp"
#include "app/field/point/eval.hpp"
#include "app/field/rows/rows.hpp"
#include "app/model/occupation.hpp"
#include "app/model/progress.hpp"

double* comp_bfce_vec = nullptr;

namespace {

// Bytes at most for many orbitals, their texts and the coefficients that their sweep keeps.
constexpr double orbital_memory = 128.0 * 1024 * 1024;

// Rows take an eighth to a half of the exact sweep's time. With so much left in doubt they still save some of
// it for certain, though the exact sweep takes somewhat longer for scattered points than for neighbours.
constexpr double doubt_max = 0.25;

constexpr unsigned pause_max = 63;  // rows

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

// A text, and the number of the field whose values it gets.
struct FieldText {
  CubeText* text;
  std::size_t field;
};

// The exact sweep, and room for the points of a block.
struct ExactSweep {
  ExactSweep(const Molecule* molecule, const CubeDefinition* cube, SweepField field,
             std::span<const WeightedOrbital> orbitals)
      : sweep(molecule, sweep_choose_kernel(), field, orbitals, cube_extent(cube)),
        points(3 * std::size_t{sweep.block_points()}) {}

  // Evaluates points as long as next(points, room), which stores them as GridWalk::next does, has any;
  // take(count) may then have the fields.
  template <class Next, class Take>
  void run(Next next, Take take) {
    comp_bfce_vec = sweep.values();
    while (const unsigned count = next(points.data(), sweep.block_points())) {
      sweep.run(count, points.data());
      take(count);
    }
    comp_bfce_vec = nullptr;
  }

  Sweep sweep;
  std::vector<double> points;
};

// Gives values of the last row anew, in all texts, where `in_doubt` is set.
void correct_row(const CubeDefinition* cube, unsigned i, unsigned j, std::span<const unsigned char> in_doubt,
                 ExactSweep& exact, std::span<const FieldText> texts) {
  unsigned k = 0, first = 0;
  exact.run(
      [&](double* points, unsigned room) {
        unsigned count = 0;
        for (first = k; k < in_doubt.size() && count < room; ++k) {
          if (in_doubt[k] != 0) {
            for (unsigned c = 0; c < 3; ++c) {
              points[std::size_t{c} * room + count] = cube_coordinate(cube, i, j, k, c);
            }
            ++count;
          }
        }
        return count;
      },
      [&](unsigned) {
        for (const auto& [text, field] : texts) {
          const double* value = exact.sweep.field(field);
          for (unsigned n = first; n < k; ++n) {
            if (in_doubt[n] != 0) {
              text->correct(n, *value++);
            }
          }
        }
      });
}

// All points of the grid by rows, which is cheaper; then the exact sweep decides what they leave in doubt.
// Where that is much, row after row, they are not even tried for a while.
void sweep_rows(const CubeDefinition* cube, RowSweep& rows, ExactSweep& exact,
                std::span<const FieldText> texts) {
  Progress progress;
  std::vector<unsigned char> in_doubt(cube->npoints[2]);
  unsigned pause = 0, next_pause = 0;
  for (unsigned i = 0; i < cube->npoints[0]; ++i) {
    for (unsigned j = 0; j < cube->npoints[1]; ++j) {
      if (pause > 0) {
        --pause;
        std::ranges::fill(in_doubt, 1);
        for (const FieldText& to : texts) {
          to.text->put_empty_row();
        }
      } else {
        std::ranges::fill(in_doubt, 0);
        rows.run(i, j);
        for (const auto& [text, field] : texts) {
          text->put_row(rows.field(field), rows.tolerances(field), in_doubt);
        }
        const bool is_worth_while =
            static_cast<double>(std::ranges::count(in_doubt, 1)) <= doubt_max * cube->npoints[2];
        pause = is_worth_while ? 0 : next_pause;
        next_pause = is_worth_while ? 0 : std::min(2 * next_pause + 1, pause_max);
      }
      correct_row(cube, i, j, in_doubt, exact, texts);
      progress.show((i + static_cast<double>(j) / cube->npoints[1]) / cube->npoints[0]);
    }
  }
}

void sweep_grid(const Molecule* molecule, const CubeDefinition* cube, SweepField field,
                std::span<const WeightedOrbital> orbitals, std::span<const FieldText> texts) {
  ExactSweep exact(molecule, cube, field, orbitals);
  if (const auto rows = RowSweep::make(molecule, cube, sweep_choose_kernel(), field, orbitals)) {
    sweep_rows(cube, *rows, exact, texts);
    return;
  }
  Progress progress;
  GridWalk walk(cube);
  exact.run([&](double* points, unsigned room) { return walk.next(points, room); },
            [&](unsigned count) {
              for (const auto& [text, number] : texts) {
                text->put({exact.sweep.field(number), count});
              }
              progress.show(walk.part_done());
            });
}

}  // namespace

void comp_data(const Molecule* molecule, const CubeDefinition* cube, std::int16_t code, std::int16_t orbital,
               std::FILE* first, std::FILE* second) {
  const bool is_single = field_is_orbital(code);
  const SweepField field = code == field_orbital_density ? SweepField::orbital_density
                           : is_single                   ? SweepField::orbital
                                                         : SweepField::density_and_potential;
  const std::vector<WeightedOrbital> orbitals =
      is_single ? std::vector<WeightedOrbital>{orbital_of(molecule, code, orbital)}
                : occupation_of(molecule).orbitals;
  CubeText first_text(first, cube->npoints[2]), second_text(second, cube->npoints[2]);
  const FieldText texts[] = {{&first_text, code == field_potential ? 1U : 0U}, {&second_text, 1}};
  sweep_grid(molecule, cube, field, orbitals,
             std::span(texts).first(code == field_density_and_potential ? 2 : 1));
}

OrbitalTexts comp_orbital_alloc(const CubeDefinition* cube, unsigned orbital_count, unsigned basis_count) {
  const double row_count = 1.0 * cube->npoints[0] * cube->npoints[1];
  const double text_size = row_count * static_cast<double>(CubeText::size_of(1, cube->npoints[2]));
  // The exact sweep keeps a number for each function; rows keep about four, and two for each point of a row.
  const double numbers = 5.0 * basis_count + 2.0 * cube->npoints[2];
  const double fitting = orbital_memory / std::max(text_size + numbers * sizeof(double), 1.0);
  OrbitalTexts result = {nullptr, 0, 0};
  if (fitting >= 2.0) {
    const double block_count = std::max(1.0, std::ceil(orbital_count / std::floor(fitting)));
    result.orbital_count = static_cast<unsigned>(std::ceil(orbital_count / block_count));
    result.text_size = static_cast<std::size_t>(text_size);
    result.texts.reset(new (std::nothrow) char[result.text_size * result.orbital_count]);
  }
  if (result.texts == nullptr) {
    result.orbital_count = 0;
  }
  return result;
}

void comp_orbital_texts(const Molecule* molecule, const CubeDefinition* cube, const Orbital* orbitals,
                        unsigned count, OrbitalTexts* result) {
  std::vector<WeightedOrbital> list;
  std::deque<CubeText> texts;
  std::vector<FieldText> field_texts;
  for (unsigned i = 0; i < count; ++i) {
    list.emplace_back(&orbitals[i]);
    field_texts.push_back({&texts.emplace_back(result->of(i), cube->npoints[2]), i});
  }
  sweep_grid(molecule, cube, SweepField::orbital, list, field_texts);
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
