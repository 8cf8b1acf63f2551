#include "app/report.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "app/cube/cube.hpp"
#include "app/listing/basis.hpp"
#include "app/listing/coord.hpp"
#include "app/listing/orbit.hpp"
#include "app/listing/zmat.hpp"
#include "app/model/dmat.hpp"
#include "app/model/field.hpp"
#include "app/model/setup.hpp"
#include "app/model/units.hpp"
#include "app/output.hpp"
#include "lib/file.hpp"
#include "lib/mat_print.hpp"
#include "lib/print.hpp"

namespace {

enum class Spins { any, restricted, unrestricted };

struct Listing {
  const std::int16_t* flag;
  Spins spins;  // of the wavefunctions that have this listing
  const char* heading;
  void (*print)(Report* report);
};

double** distances_of(Report* report) {
  if (report->distances == nullptr) {
    report->distances = dmat_alloc(report->molecule);
  }
  return report->distances;
}

void print_coordinates(Report* report) { coord_print(report->molecule, report->stream); }

void print_zmatrix(Report* report) { zmat_print(report->molecule, report->stream, distances_of(report)); }

void print_distances(Report* report) {
  mat_ffprint_Sc_scale(report->stream, distances_of(report), report->molecule->atom_count,
                       static_cast<unsigned>(conf_width), angstrom_per_bohr);
}

void print_shells(Report* report) { basis_print_shell(report->molecule, report->stream); }

void print_basis(Report* report) { basis_print(report->molecule, report->stream); }

template <std::int16_t spin>
void print_orbitals(Report* report) {
  orbit_print_mo(report->molecule, report->stream, spin, static_cast<unsigned>(conf_width));
}

void print_grid(Report* report) { cube_print_params(report->molecule, report->cube, report->stream, 0); }

void print_nothing(Report*) {}

// In the order of the report.
constexpr std::array listings = {
    Listing{&conf_print_coord, Spins::any, "\n  Cartesian coordinates: [Ang]\n\n", print_coordinates},
    Listing{&conf_print_zmat, Spins::any, "\n\n  Internal coordinates (Z-matrix): [Ang,Deg]\n\n",
            print_zmatrix},
    Listing{&conf_print_dmat, Spins::any, "\n\n  Distance matrix: [Ang]\n\n", print_distances},
    Listing{&conf_print_shell, Spins::any, "\n\n  Contracted shells:\n\n", print_shells},
    Listing{&conf_print_base, Spins::any, "\n\n  Basis functions:\n\n", print_basis},
    Listing{&conf_print_mo, Spins::restricted, "\n\n  Molecular orbitals:\n\n", print_orbitals<orbit_alpha>},
    Listing{&conf_print_mo, Spins::unrestricted, "\n\n  Alpha molecular orbitals:\n\n",
            print_orbitals<orbit_alpha>},
    Listing{&conf_print_mo, Spins::unrestricted, "\n\n  Beta molecular orbitals:\n\n",
            print_orbitals<orbit_beta>},
    Listing{&conf_print_cubp, Spins::any, "\n\n  Cube file parameters:\n\n", print_grid},
    Listing{&conf_print_cube, Spins::any, "\n", print_nothing},  // write_cubes goes on
};

bool is_wanted(const Listing& listing, const Molecule& molecule) {
  const Spins present = molecule.is_restricted ? Spins::restricted : Spins::unrestricted;
  return *listing.flag != 0 && (listing.spins == Spins::any || listing.spins == present);
}

// A kind of field by its code in cube_write, and the settings that ask for it together.
struct CubeField {
  std::int16_t code;
  std::array<const std::int16_t*, 2> flags;  // null: no second setting
};

constexpr std::array orbital_fields = {
    CubeField{field_all_orbitals, {&conf_cube_allmo}},
    CubeField{field_one_orbital, {&conf_cube_onemo}},
    CubeField{field_orbital_density, {&conf_cube_moden}},
};

// The density costs nothing beside the ionization potential, so one sweep gives both.
constexpr std::array density_fields = {
    CubeField{field_density_and_potential, {&conf_cube_orva, &conf_cube_totd}},
    CubeField{field_potential, {&conf_cube_orva}},
    CubeField{field_density, {&conf_cube_totd}},
};

bool is_asked_for(const CubeField& field) {
  return std::ranges::all_of(field.flags, [](auto* flag) { return flag == nullptr || *flag != 0; });
}

// The codes of the fields to write, in this order: the first of each kind that is asked for.
std::vector<std::int16_t> wanted_codes() {
  std::vector<std::int16_t> codes;
  for (const std::span<const CubeField> fields :
       {std::span<const CubeField>(orbital_fields), std::span<const CubeField>(density_fields)}) {
    const auto field = std::ranges::find_if(fields, is_asked_for);
    if (conf_print_cube != 0 && field != fields.end()) {
      codes.push_back(field->code);
    }
  }
  return codes;
}

// All files of the run.
std::vector<NamedFile> files_of_run(const Molecule* molecule) {
  std::vector<NamedFile> files = {{"input file", glob_file_input}};
  if (glob_file_config[0] != '\0') {
    files.push_back({"configuration file", glob_file_config});
  }
  const bool has_report_file = glob_file_output[0] != '\0';
  if (has_report_file) {
    files.push_back({"report", glob_file_output});
  }
  if (arg_quiet == 0 || arg_warning != 0) {  // else a cube file may be sent there
    files.push_back({has_report_file ? "standard output" : "report", "/dev/stdout"});
  }
  for (const std::int16_t code : wanted_codes()) {
    for (const std::string& name : cube_file_names(molecule, code)) {
      files.push_back({"cube file", name});
    }
  }
  return files;
}

void print_banner(std::FILE* stream) {
  print_fhline(stream);
  print_fcenter(stream, "ORVA " ORVA_VERSION);
  print_fhline(stream);
}

void print_listings(Report* report) {
  for (const Listing& listing : listings) {
    if (is_wanted(listing, *report->molecule)) {
      std::fputs(listing.heading, report->stream);
      listing.print(report);
    }
  }
}

void print_end(std::FILE* stream) {
  std::fputc('\n', stream);
  print_fccenter(stream, "End", '-');
}

// Before any file is opened for writing.
void check(const Molecule* molecule) {
  for (const std::int16_t code : wanted_codes()) {
    cube_check(molecule, code);
  }
  file_check_distinct(files_of_run(molecule));
}

void write_cubes(const Report& report) {
  for (const std::int16_t code : wanted_codes()) {
    cube_write(report.molecule, report.cube, report.stream, code);
  }
}

}  // namespace

void report_write(Report* report) {
  check(report->molecule);
  report->stream = set_output();
  if (arg_quiet == 0) {
    print_banner(report->stream);
    print_listings(report);
  }
  write_cubes(*report);
  if (arg_quiet == 0) {
    print_end(report->stream);
  }
  close_output(report->stream);
}
