#include "app/field/rows/rows.hpp"

#include <algorithm>
#include <cmath>
#include <new>

namespace {

// Neighbouring rows that are weighed together: at most so many, and so far apart, bohr. The farther, the more
// is taken to come to something in one of them only.
constexpr double together_most = 4.0, together_width = 0.6;

}  // namespace

std::unique_ptr<RowSweep> RowSweep::make(const Molecule* molecule, const CubeDefinition* cube,
                                         const RowKernel& kernel, FieldKind field,
                                         std::span<const WeightedOrbital> orbitals) try {
  std::unique_ptr<RowTables> tables = rows_build(molecule, cube, kernel, field, orbitals);
  if (tables == nullptr) {
    return nullptr;
  }
  tables->plan.is_restricted = occupation_of(molecule).is_restricted;
  return std::unique_ptr<RowSweep>(new RowSweep(std::move(tables), kernel, cube));
} catch (const std::bad_alloc&) {
  return nullptr;
}

RowSweep::RowSweep(std::unique_ptr<RowTables> tables, const RowKernel& kernel, const CubeDefinition* cube)
    : tables_(std::move(tables)),
      kernel_(kernel),
      row_length_(cube->npoints[2]),
      j_count_(cube->npoints[1]),
      together_max_(1) {
  const RowPlan& plan = tables_->plan;
  piece_.stride = (std::size_t{row_length_} + kernel_.tile_points + 7) / 8 * 8;
  const std::size_t field_count = plan.field == FieldKind::density_and_potential ? 2 : plan.orbital_count;
  piece_.row_stride = field_count * piece_.stride;
  // Of many fields the values of more rows are no longer in the cache when they are wanted. Of many orbitals
  // what comes to something in one of the rows only costs more than weighing. From row to row one coordinate
  // must change, and no other.
  if (tables_->index[0] + tables_->index[1] == 1 && field_count <= 2 && plan.chunk_count == 1 &&
      plan.point_count <= kernel_.piece_tiles * kernel_.tile_points) {
    const double* const step = cube->vectors[1];
    const double length = std::max({std::fabs(step[0]), std::fabs(step[1]), std::fabs(step[2])});
    together_max_ = 1 + static_cast<unsigned>(std::min(together_most - 1.0, together_width / length));
  }
  fields_.resize(together_max_ * piece_.row_stride, 0.0);
  tolerances_.resize(fields_.size(), HUGE_VAL);  // which is what they stay out of sight
  lay_out();
}

// The working memory of a piece.
void RowSweep::lay_out() {
  const RowPlan& plan = tables_->plan;
  const std::size_t tiles = kernel_.piece_tiles;
  const std::pair<double**, std::size_t> parts[] = {
      {&piece_.weights, tables_->terms.size()},
      {&piece_.products, std::size_t{plan.atom_count} * row_powers * row_powers},
      {&piece_.peaks, plan.function_count * tiles},
      {&piece_.norms, 2 * std::size_t{plan.function_count}},
      {&piece_.shares, 2 * tiles * plan.radial_count},
      {&piece_.point_shares, 2 * std::size_t{kernel_.tile_points} * plan.radial_count},
      {&piece_.values, plan.function_count * tiles * kernel_.tile_points},
      {&piece_.coefficients, std::size_t{plan.function_count} * plan.stride},
      {&piece_.magnitudes, tables_->magnitudes.empty() ? 0 : std::size_t{plan.function_count} * plan.stride}};
  const auto rounded_up = [](std::size_t size) { return (size + 7) / 8 * 8; };  // to whole cache lines
  std::size_t total = 0;
  for (const auto& [pointer, size] : parts) {
    total += rounded_up(size);
  }
  memory_.resize(total);
  double* next = memory_.data();
  for (const auto& [pointer, size] : parts) {
    *pointer = next;
    next += rounded_up(size);
  }
  uses_.resize(plan.radial_count);
  functions_.resize((tiles + 1) * plan.function_count);
  piece_.uses = uses_.data();
  piece_.functions = functions_.data();
}

unsigned RowSweep::run(unsigned i, unsigned j) {
  const bool is_at_hand = i == i_ && j >= first_j_ && j < end_j_;
  i_ = i;
  j_ = j;
  if (is_at_hand) {
    return end_j_ - j;
  }
  const unsigned indices[2] = {i, j};
  for (unsigned c = 0; c < 2; ++c) {
    piece_.across[c] = indices[tables_->index[c]];
  }
  piece_.moving = tables_->index[0] == 1 ? 0 : 1;
  // Pieces of nearly equal length.
  const unsigned tile_count = (tables_->plan.point_count + kernel_.tile_points - 1) / kernel_.tile_points;
  const unsigned piece_count = (tile_count + kernel_.piece_tiles - 1) / kernel_.piece_tiles;
  weighings_.resize(piece_count, row_by_tiles);
  piece_.row_count = weighings_[0] == row_by_tiles ? std::min(together_max_, j_count_ - j) : 1;
  first_j_ = j;
  end_j_ = j + piece_.row_count;
  const auto start_of = [&](std::size_t p) { return static_cast<unsigned>(p * tile_count / piece_count); };
  bool is_known = false;
  for (unsigned p = 0; p < piece_count; ++p) {
    RowPiece piece = piece_;
    piece.first_tile = start_of(p);
    piece.tile_count = start_of(p + 1) - piece.first_tile;
    const std::size_t at = tables_->plan.first_point + std::size_t{piece.first_tile} * kernel_.tile_points;
    piece.fields = fields_.data() + at;
    piece.tolerances = tolerances_.data() + at;
    piece.weighing = weighings_[p];
    weighings_[p] = kernel_.run(tables_->plan, piece);
    if (weighings_[p] == row_out_of_sight) {
      weighings_[p] = row_by_points;
      for (std::size_t f = 0; f < piece_.row_stride; f += piece_.stride) {
        std::fill_n(piece.tolerances + f, piece.tile_count * kernel_.tile_points, HUGE_VAL);
      }
    } else {
      is_known = true;
    }
  }
  end_j_ = is_known ? end_j_ : j;
  return end_j_ - j;
}
