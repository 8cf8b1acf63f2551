#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <span>
#include <string>

#include "app/field/instruction_sets.hpp"
#include "app/input/fcheck.hpp"
#include "app/input/wfn.hpp"
#include "app/model/memory.hpp"
#include "app/model/setup.hpp"
#include "fuzz.hpp"
#include "surface/output.hpp"
#include "tests/text.hpp"

// The surface of a small molecule, which every kernel must find the same, closed, and shared out to the last
// of its area.

namespace {

// A surface that is near enough to the nuclei for many passes a second.
bool is_small(const Molecule& molecule) {
  constexpr double extent_max = 4.0, exponent_min = 0.1;
  const auto is_near = [](const Atom& atom) {
    return std::ranges::all_of(atom.coord, [](double x) { return std::fabs(x) <= extent_max; });
  };
  const auto is_compact = [](const BasisFunction& function) {
    return std::ranges::all_of(std::span(function.exponents, function.primitive_count),
                               [](double exponent) { return exponent >= exponent_min; });
  };
  return molecule.atom_count <= 3 && molecule.basis_count <= 16 && molecule.primitive_count <= 40 &&
         std::ranges::all_of(std::span(molecule.atoms, molecule.atom_count), is_near) &&
         std::ranges::all_of(std::span(molecule.basis, molecule.basis_count), is_compact);
}

bool is_shared_out(const Surface& surface) {
  double sum = 0.0;
  for (const Share& share : surface.shares.atoms) {
    sum += share.statistics.area;
  }
  return std::fabs(sum - surface.shares.whole.area) <= 1e-6 * surface.shares.whole.area;
}

}  // namespace

void fuzz_pass(std::string_view input) {
  conf_input_convention = input.size() % 2;
  Molecule molecule = {};
  input.find("GAUSSIAN") != input.npos ? wfn_read(&molecule) : fcheck_read(&molecule);
  if (is_small(molecule)) {
    constexpr std::array levels = {0.001, 0.02, 0.5};
    SurfaceOptions options;
    options.form = Form::json;
    options.settings = {.level = levels[input.size() / 2 % levels.size()], .step = 1.0};
    const Owners owners(&molecule,
                        input.size() / 8 % 2 != 0 ? owners_radii(&molecule) : std::vector<double>{});
    std::string expected;
    for (const InstructionSet& set : instruction_sets()) {
      if (!set.is_supported()) {
        continue;
      }
      setenv("ORVA_ROWS", "always", 1);
      setenv("ORVA_KERNEL", set.name, 1);
      const Surface surface = surface_of(&molecule, options.settings, owners);
      const std::string text =
          written([&](std::FILE* stream) { output_surface(stream, "input", molecule, surface, options); });
      if (!is_shared_out(surface) || (!expected.empty() && text != expected)) {
        std::abort();
      }
      expected = text;
    }
  }
  mem_clean(&molecule, nullptr);
}
