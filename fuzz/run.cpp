#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <span>

#include "../tests/text.hpp"
#include "fcheck.hpp"
#include "fuzz.hpp"
#include "report.hpp"
#include "setup.hpp"
#include "sweep.hpp"
#include "wfn.hpp"

// A whole run on a small grid. The data of every kind of cube file, by every kernel, must be those of the
// point-by-point functions.

namespace {

// A number of the input decides where the points lie: from near the nuclei to where all functions vanish.
CubeDefinition small_grid(const Molecule& molecule, unsigned number) {
  const double h = std::ldexp(0.1, static_cast<int>(number % 8));
  CubeDefinition cube = {{}, {{-h, -h, -3 * h}}, {{h, 0.1 * h, 0}, {0, h, 0}, {0.1 * h, 0, 0.7 * h}}};
  conf_cube_def = number % 8 != 0;
  cube_define(&molecule, &cube);
  std::ranges::copy(std::array{3U, 2U, 9U}, cube.npoints);
  return cube;
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

void compare_data(const Molecule& molecule, const CubeDefinition& cube, std::int16_t orbital) {
  constexpr std::int16_t codes[] = {42, 50, 101, 201};  // the last is of a beta orbital
  for (const std::int16_t code : std::span(codes).first(inp_rest_scf != 0 ? 3 : 4)) {
    const CubeTexts expected = without_nan_signs(text_of_points(molecule, cube, code, orbital));
    for (const SweepKernel* kernel : sweep_kernels()) {
      setenv("ORVA_KERNEL", kernel->name, 1);
      if (kernel->is_supported() &&
          without_nan_signs(text_of_sweep(molecule, cube, code, orbital)) != expected) {
        dprintf(STDERR_FILENO, "%s differs in field %d of orbital %d\n", kernel->name, code, orbital);
        std::abort();
      }
    }
  }
}

}  // namespace

void fuzz_pass(std::string_view input) {
  conf_input_convention = input.size() / 8 % 2;
  Molecule molecule = {};
  input.find("GAUSSIAN") != input.npos ? wfn_read(&molecule) : fcheck_read(&molecule);
  Report report = {&molecule, nullptr, nullptr, nullptr};
  if (molecule.atom_count <= 20 && molecule.basis_count <= 50 && molecule.primitive_count <= 100) {
    const auto number = static_cast<unsigned>(input.size());
    const CubeDefinition cube = small_grid(molecule, number);
    if (molecule.alpha_orbital_count > 0) {
      compare_data(molecule, cube, static_cast<std::int16_t>(1 + number % molecule.alpha_orbital_count));
    }
    conf_print_zmat = conf_print_dmat = conf_print_base = conf_print_mo = conf_cube_allmo = 1;
    report_check(&molecule);
    report = {&molecule, &cube, std::fopen("report", "w"), nullptr};
    report_banner(report);
    report_listings(&report);
    report_cubes(report);
    report_end(report);
    close_output(report.stream);
  }
  mem_clean(&molecule, report.distances);
}
