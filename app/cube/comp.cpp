#include "app/cube/comp.hpp"

#include <algorithm>
#include <cmath>
#include <deque>
#include <new>
#include <vector>

#include "app/cube/cube_text.hpp"
#include "app/field/fields.hpp"
#include "app/model/progress.hpp"

double* comp_bfce_vec = nullptr;

namespace {

// Bytes at most for many orbitals, their texts and the coefficients that their sweep keeps.
constexpr double orbital_memory = 128.0 * 1024 * 1024;

const Orbital* orbital_of(const Molecule* molecule, std::int16_t code, std::int16_t orbital) {
  return (code == field_beta_orbital ? molecule->beta_orbitals : molecule->alpha_orbitals) + (orbital - 1);
}

FieldKind kind_of(std::int16_t code) {
  return code == field_orbital_density ? FieldKind::orbital_density
         : field_is_orbital(code)      ? FieldKind::orbital
                                       : FieldKind::density_and_potential;
}

// A text, and the number of the field whose values it gets.
struct FieldText {
  CubeText* text;
  std::size_t field;
};

// All points of the grid. A value is settled where its text is in doubt.
void write_texts(const Molecule* molecule, const CubeDefinition* cube, FieldKind kind,
                 std::span<const Orbital> orbitals, std::span<const FieldText> texts) {
  Fields fields(molecule, cube, kind, orbitals);
  comp_bfce_vec = fields.basis_values();
  const std::unique_ptr<double*, void (*)(double**)> until_the_end(
      &comp_bfce_vec, [](double** vector) { *vector = nullptr; });
  Progress progress;
  const std::size_t length = cube->npoints[2];
  std::vector<unsigned char> in_doubt;
  while (fields.next()) {
    if (fields.is_exact()) {
      for (const auto& [text, field] : texts) {
        text->put(fields.values(field));
      }
    } else {
      const unsigned row_count = fields.row_count();
      in_doubt.assign(row_count * length, 0);
      const auto of_row = [&](unsigned row) { return std::span(in_doubt).subspan(row * length, length); };
      for (const auto& [text, field] : texts) {
        text->start_rows(row_count);
        for (unsigned row = 0; row < row_count; ++row) {
          text->put_row(fields.values(field, row), fields.tolerances(field, row), of_row(row));
        }
      }
      fields.settle(in_doubt);
      for (const auto& [text, field] : texts) {
        for (unsigned row = 0; row < row_count; ++row) {
          text->correct(row, fields.values(field, row), of_row(row));
        }
      }
    }
    progress.show(fields.part_done());
  }
}

}  // namespace

void comp_data(const Molecule* molecule, const CubeDefinition* cube, std::int16_t code, std::int16_t orbital,
               std::FILE* first, std::FILE* second) {
  const FieldKind kind = kind_of(code);
  std::span<const Orbital> orbitals;
  if (kind != FieldKind::density_and_potential) {
    orbitals = {orbital_of(molecule, code, orbital), 1};
  }
  CubeText first_text(first, cube->npoints[2]), second_text(second, cube->npoints[2]);
  const FieldText texts[] = {{&first_text, code == field_potential ? 1U : 0U}, {&second_text, 1}};
  write_texts(molecule, cube, kind, orbitals,
              std::span(texts).first(code == field_density_and_potential ? 2 : 1));
}

OrbitalTexts comp_orbital_alloc(const CubeDefinition* cube, unsigned orbital_count, unsigned basis_count) {
  const double row_count = 1.0 * cube->npoints[0] * cube->npoints[1];
  const double text_size = row_count * static_cast<double>(CubeText::size_of(1, cube->npoints[2]));
  const double numbers = fields_numbers_kept(basis_count, cube->npoints[2]);
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
  std::deque<CubeText> texts;
  std::vector<FieldText> field_texts;
  for (unsigned i = 0; i < count; ++i) {
    field_texts.push_back({&texts.emplace_back(result->of(i), cube->npoints[2]), i});
  }
  write_texts(molecule, cube, FieldKind::orbital, {orbitals, count}, field_texts);
}

void comp_point_value(const Molecule* molecule, const double* point, std::int16_t code, std::int16_t orbital,
                      double* first, double* second) {
  const FieldKind kind = kind_of(code);
  if (kind != FieldKind::density_and_potential) {
    fields_at_point(molecule, point, kind, orbital_of(molecule, code, orbital), comp_bfce_vec, first,
                    nullptr);
    return;
  }
  double density = 0.0, potential = 0.0;
  fields_at_point(molecule, point, kind, nullptr, comp_bfce_vec, &density, &potential);
  switch (code) {
    case field_density:
      *first = density;
      break;
    case field_density_and_potential:
    case field_potential:
      *first = density;
      *second = potential;
      break;
    default:
      break;
  }
}
