#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

// The fields that cube files hold, by the codes that the driver and the cube writer hand on.

enum FieldCode : std::int16_t {
  field_density = 10,
  field_all_orbitals = 21,  // stands for field_alpha_orbital and field_beta_orbital of every number
  field_one_orbital = 31,   // stands for one of them
  field_orbital_density = 42,
  field_density_and_potential = 50,  // two files in one sweep
  field_potential = 63,              // average local ionization potential
  field_alpha_orbital = 101,
  field_beta_orbital = 201,
};

/// What is evaluated together.
enum class FieldKind { density_and_potential, orbital, orbital_density };

struct Field {
  FieldCode code;
  const char* title;  // second line of its cube file
  bool is_orbital;    // its cube file names the orbital, and has a negative atom count
};

/// The fields of cube files. That of field_density_and_potential is the first of its two.
inline constexpr std::array cube_fields = {
    Field{field_density, "Total density", false},
    Field{field_density_and_potential, "Total density", false},
    Field{field_potential, "Averaged local ionization potential", false},
    Field{field_alpha_orbital, "Molecular orbital", true},
    Field{field_beta_orbital, "Molecular orbital", true},
    Field{field_orbital_density, "Molecular orbital density", true},
};

/// The title of a field's cube file; the code must be in the table.
constexpr const char* field_title(std::int16_t code) {
  return std::ranges::find(cube_fields, code, &Field::code)->title;
}

/// Whether the code is that of an orbital's file; no other code is.
constexpr bool field_is_orbital(std::int16_t code) {
  const auto field = std::ranges::find(cube_fields, code, &Field::code);
  return field != cube_fields.end() && field->is_orbital;
}
