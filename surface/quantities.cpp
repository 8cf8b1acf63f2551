#include "surface/quantities.hpp"

#include <cstdio>

#include "app/model/units.hpp"

namespace {

constexpr double ev_per_hartree = 27.211386246;  // CODATA 2018

}  // namespace

std::string quantity_text(double value, int decimals) {
  char text[400];
  std::snprintf(text, sizeof text, "%.*f", decimals, value);
  std::string result = text;
  if (result[0] == '-' && result.find_first_of("123456789") == result.npos) {
    result.erase(0, 1);
  }
  return result;
}

Quantities::Quantities(const SurfaceOptions& options)
    : potential_unit(options.uses_hartree ? "hartree" : "eV"),
      length_unit(options.uses_bohr ? "bohr" : "angstrom"),
      potential(options.uses_hartree ? 1.0 : ev_per_hartree),
      length(options.uses_bohr ? 1.0 : angstrom_per_bohr) {}
