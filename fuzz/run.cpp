#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <span>

#include "app/field/instruction_sets.hpp"
#include "app/field/rows/rows.hpp"
#include "app/input/input.hpp"
#include "app/input/options.hpp"
#include "app/model/memory.hpp"
#include "app/model/occupation.hpp"
#include "app/model/setup.hpp"
#include "app/report.hpp"
#include "fuzz.hpp"
#include "lib/str_real.hpp"
#include "tests/text.hpp"

// A whole run on a small grid. The data of every kind of cube file, by the kernels of both sweeps, must be
// those of the point-by-point functions.

namespace {

// A number of the input decides where the points lie: from near the nuclei to where all functions vanish, in
// rows along each axis or askew, of fewer points than the sweep by rows takes, or more.
CubeDefinition small_grid(const Molecule& molecule, unsigned number) {
  constexpr unsigned lengths[] = {9, 15, 16, 17, 33, 70};
  const double h = std::ldexp(0.1, static_cast<int>(number % 8));
  const unsigned along = number / 8 % 4, length = lengths[number / 32 % std::size(lengths)];
  CubeDefinition cube = {{}, {{-h, -h, -3 * h}}, {{h, 0.1 * h, 0}, {0, h, 0}, {0.1 * h, 0, 0.7 * h}}};
  if (along < 3) {
    cube = {{}, {{-h, -h, -h}}, {}};
    for (unsigned axis = 0; axis < 3; ++axis) {
      cube.vectors[axis][(along + axis + 1) % 3] = axis < 2 ? h : 0.2 * h;
    }
  }
  conf_cube_def = number % 8 != 0;
  cube_define(&molecule, &cube);
  std::ranges::copy(std::array{2U, 2U, length}, cube.npoints);
  return cube;
}

// How often rows gave the values of a run, and how many of these they left in doubt; told at the end.
struct Statistics {
  unsigned long runs = 0, by_rows = 0, values = 0, in_doubt = 0;
  ~Statistics() {
    dprintf(STDERR_FILENO, "stat::rows: %lu of %lu runs by rows, %lu of %lu values in doubt\n", by_rows, runs,
            in_doubt, values);
  }
} statistics;

void count_rows(const Molecule& molecule, const CubeDefinition& cube) {
  ++statistics.runs;
  const auto rows = RowSweep::make(&molecule, &cube, choose_instruction_set().rows,
                                   FieldKind::density_and_potential, occupation_of(&molecule).orbitals);
  if (rows == nullptr) {
    return;
  }
  ++statistics.by_rows;
  char text[str_scientific_width];
  for (unsigned row = 0; row < cube.npoints[0] * cube.npoints[1]; ++row) {
    rows->run(row / cube.npoints[1], row % cube.npoints[1]);
    for (std::size_t field = 0; field < 2; ++field) {
      for (unsigned k = 0; k < cube.npoints[2]; ++k) {
        ++statistics.values;
        statistics.in_doubt +=
            str_scientific_sure(rows->field(field)[k], rows->tolerances(field)[k], text) ? 0 : 1;
      }
    }
  }
}

// The sign of a NaN is the processor's business.
CubeTexts without_nan_signs(CubeTexts texts) {
  for (std::string& text : texts) {
    for (std::size_t at = 0; (at = text.find("-nan", at)) != text.npos;) {
      text[at] = ' ';
    }
  }
  return texts;
}

void compare_data(const Molecule& molecule, const CubeDefinition& cube, unsigned number) {
  constexpr FieldCode codes[] = {field_orbital_density, field_density_and_potential, field_alpha_orbital,
                                 field_beta_orbital};
  for (const FieldCode code : codes) {
    const unsigned orbital_count =
        code == field_beta_orbital ? molecule.beta_orbital_count : molecule.alpha_orbital_count;
    if (orbital_count == 0) {
      continue;
    }
    const auto orbital = static_cast<std::int16_t>(1 + number % orbital_count);
    const CubeTexts expected = without_nan_signs(text_of_points(molecule, cube, code, orbital));
    for (const InstructionSet& set : instruction_sets()) {
      setenv("ORVA_ROWS", "always", 1);
      setenv("ORVA_KERNEL", set.name, 1);
      if (set.is_supported() && without_nan_signs(text_of_sweep(molecule, cube, code, orbital)) != expected) {
        dprintf(STDERR_FILENO, "%s differs in field %d of orbital %d\n", set.name, code, orbital);
        std::abort();
      }
    }
  }
}

}  // namespace

void fuzz_pass(std::string_view input) {
  conf_input_convention = input.size() / 8 % 2;
  Molecule molecule = {};
  inp_format = input.find("GAUSSIAN") != input.npos ? input_wfn : input_fchk;
  input_read(&molecule);
  double** distances = nullptr;
  if (molecule.atom_count <= 20 && molecule.basis_count <= 50 && molecule.primitive_count <= 100) {
    const auto number = static_cast<unsigned>(input.size());
    const CubeDefinition cube = small_grid(molecule, number);
    count_rows(molecule, cube);
    compare_data(molecule, cube, number);
    conf_print_zmat = conf_print_dmat = conf_print_base = conf_print_mo = conf_cube_allmo = 1;
    glob_file_config[0] = '\0';  // the input: no file may be two of a run's
    std::snprintf(glob_file_output, file_name_size, "report");
    Report report = {&molecule, &cube};
    report_write(&report);
    distances = report.distances;
  }
  mem_clean(&molecule, distances);
}
