#include "app/cube/cube.hpp"

#include <algorithm>
#include <array>
#include <limits>
#include <new>
#include <span>

#include "app/cube/comp.hpp"
#include "app/field/fields.hpp"
#include "app/model/setup.hpp"
#include "lib/file.hpp"
#include "lib/message.hpp"

namespace {

void write_header(const Molecule* molecule, const CubeDefinition* cube, std::FILE* stream, const char* title,
                  std::int16_t code, std::int16_t orbital) {
  std::fprintf(stream, " %s\n %s\n", molecule->title, title);
  cube_print_params(molecule, cube, stream, code);
  for (unsigned i = 0; i < molecule->atom_count; ++i) {
    const Atom& atom = molecule->atoms[i];
    std::fprintf(stream, "%5d%12.6f%12.6f%12.6f%12.6f\n", static_cast<int>(atom.atomic_number),
                 static_cast<double>(atom.atomic_number), atom.coord[0], atom.coord[1], atom.coord[2]);
  }
  if (field_is_orbital(code)) {
    std::fprintf(stream, "%5d%5d\n", 1, orbital);
  }
}

// One file, or two for the density and the potential; `write_data` gets the open streams (the second null if
// there is none).
template <class WriteData>
void write_file(const Molecule* molecule, const CubeDefinition* cube, std::FILE* report, const char* name,
                std::int16_t code, std::int16_t orbital, WriteData write_data) {
  std::FILE* const first = file_open(name, "w");
  if (arg_quiet == 0) {
    std::fprintf(report, "  Writing file %s...", name);
    std::fflush(report);
  }
  std::FILE* const second =
      code == field_density_and_potential ? file_open(glob_cube_file_orva, "w") : nullptr;
  write_header(molecule, cube, first, field_title(code), code, orbital);
  if (second != nullptr) {
    write_header(molecule, cube, second, field_title(field_potential), code, orbital);
  }
  write_data(first, second);
  file_close(first);
  if (second != nullptr) {
    file_close(second);
  }
  if (arg_quiet == 0) {
    std::fputs("  OK\n", report);
  }
}

std::string numbered_name(const char* name, std::int16_t code, unsigned number) {
  return std::string(name) + '.' + std::to_string(number) + (code == field_beta_orbital ? 'b' : 'a');
}

std::string orbital_file_name(std::int16_t code, unsigned number) {
  return numbered_name(glob_cube_file_orb, code, number);
}

// Orbitals of the spin of a field: beta if it is that of beta orbitals.
unsigned orbital_count_of(const Molecule* molecule, std::int16_t code) {
  return code == field_beta_orbital ? molecule->beta_orbital_count : molecule->alpha_orbital_count;
}

// The codes of the orbitals' files: alpha, and beta of an unrestricted wavefunction.
std::span<const std::int16_t> orbital_codes(const Molecule* molecule) {
  static constexpr std::array<std::int16_t, 2> codes = {field_alpha_orbital, field_beta_orbital};
  return std::span(codes).first(molecule->is_restricted ? 1 : 2);
}

// One file per orbital of a spin. Where memory allows, the orbitals are evaluated in blocks, so that the
// basis functions are evaluated once for many files. The first file of a block is open by then: a name that
// cannot be opened need not wait for the block.
void write_all_orbitals(const Molecule* molecule, const CubeDefinition* cube, std::FILE* report,
                        std::int16_t code) {
  const unsigned orbital_count = orbital_count_of(molecule, code);
  const Orbital* const orbitals =
      code == field_beta_orbital ? molecule->beta_orbitals : molecule->alpha_orbitals;
  OrbitalTexts block = comp_orbital_alloc(cube, orbital_count, molecule->basis_count);
  for (unsigned i = 0; i < orbital_count; ++i) {
    const std::string name = orbital_file_name(code, i + 1);
    const auto number = static_cast<std::int16_t>(i + 1);
    if (block.orbital_count == 0) {
      cube_write_file(molecule, cube, report, name.c_str(), code, number);
      continue;
    }
    const unsigned place = i % block.orbital_count;
    write_file(molecule, cube, report, name.c_str(), code, number, [&](std::FILE* stream, std::FILE*) {
      try {
        if (place == 0) {
          comp_orbital_texts(molecule, cube, orbitals + i, std::min(block.orbital_count, orbital_count - i),
                             &block);
        }
        const std::span<const char> text = block.of(place);
        std::fwrite(text.data(), 1, text.size(), stream);
      } catch (const std::bad_alloc&) {
        // No value of this file is written yet. The block leaves no memory for its sweep: one by one from
        // here.
        block = {nullptr, 0, 0};
        comp_data(molecule, cube, code, number, stream, nullptr);
      }
    });
  }
}

}  // namespace

void cube_print_params(const Molecule* molecule, const CubeDefinition* cube, std::FILE* stream,
                       std::int16_t code) {
  const auto print_line = [&](int count, const double* vector) {
    std::fprintf(stream, "%5d%12.6f%12.6f%12.6f\n", count, vector[0], vector[1], vector[2]);
  };
  const int atom_count = static_cast<int>(molecule->atom_count);
  print_line(field_is_orbital(code) ? -atom_count : atom_count, cube->points[0]);
  for (unsigned axis = 0; axis < 3; ++axis) {
    print_line(static_cast<int>(cube->npoints[axis]), cube->vectors[axis]);
  }
}

void cube_check(const Molecule* molecule, std::int16_t code) {
  constexpr std::int16_t number_max = std::numeric_limits<std::int16_t>::max();
  if (code == field_all_orbitals &&
      std::max(molecule->alpha_orbital_count, molecule->beta_orbital_count) > unsigned{number_max}) {
    msg_fatal_format("invalid value in config file - at most %d orbitals can be written one file each",
                     number_max);
  }
  const bool wants_beta = code == field_one_orbital && conf_cube_onety != 0;
  if (code == field_one_orbital || code == field_orbital_density) {
    const std::int16_t orbital = code == field_one_orbital ? conf_cube_onesp : conf_cube_moden;
    const bool has_beta = wants_beta && !molecule->is_restricted;
    const unsigned last = orbital_count_of(molecule, has_beta ? field_beta_orbital : field_alpha_orbital);
    if (orbital < 1 || static_cast<unsigned>(orbital) > last) {
      msg_fatal_format("invalid value in config file - number of orbital from 1 to %u expected", last);
    }
  }
  if (wants_beta && molecule->is_restricted) {
    msg_fatal("invalid value in config file - no beta orbitals in restricted wavefunction");
  }
  fields_check();
}

std::vector<std::string> cube_file_names(const Molecule* molecule, std::int16_t code) {
  std::vector<std::string> names;
  switch (code) {
    case field_density:
      return {glob_cube_file_tot};
    case field_all_orbitals:
      for (const std::int16_t spin : orbital_codes(molecule)) {
        for (unsigned n = 1; n <= orbital_count_of(molecule, spin); ++n) {
          names.push_back(orbital_file_name(spin, n));
        }
      }
      return names;
    case field_one_orbital:
      return {glob_cube_file_orb};
    case field_orbital_density:
      return {numbered_name(glob_cube_file_mod, code, static_cast<unsigned>(conf_cube_moden))};
    case field_density_and_potential:
      return {glob_cube_file_tot, glob_cube_file_orva};
    case field_potential:
      return {glob_cube_file_orva};
    default:
      return names;
  }
}

void cube_write_file(const Molecule* molecule, const CubeDefinition* cube, std::FILE* report,
                     const char* name, std::int16_t code, std::int16_t orbital) {
  write_file(molecule, cube, report, name, code, orbital, [&](std::FILE* first, std::FILE* second) {
    comp_data(molecule, cube, code, orbital, first, second);
  });
}

void cube_write(const Molecule* molecule, const CubeDefinition* cube, std::FILE* report, std::int16_t code) {
  cube_check(molecule, code);
  const auto write = [&](std::int16_t field, std::int16_t orbital) {
    cube_write_file(molecule, cube, report, cube_file_names(molecule, code)[0].c_str(), field, orbital);
  };
  switch (code) {
    case field_density:
    case field_density_and_potential:
    case field_potential:
      write(code, 0);
      break;
    case field_all_orbitals:
      for (const std::int16_t spin : orbital_codes(molecule)) {
        write_all_orbitals(molecule, cube, report, spin);
      }
      break;
    case field_one_orbital:
      write(conf_cube_onety != 0 ? field_beta_orbital : field_alpha_orbital, conf_cube_onesp);
      break;
    case field_orbital_density:
      write(code, conf_cube_moden);
      break;
    default:
      break;
  }
}
