#include "app/listing/coord.hpp"

#include <span>

#include "app/model/units.hpp"

void coord_print(const Molecule* molecule, std::FILE* stream) {
  for (const Atom& atom : std::span(molecule->atoms, molecule->atom_count)) {
    std::fprintf(stream, "  %3s", atom.symbol);
    for (const double coordinate : atom.coord) {
      std::fprintf(stream, " %11.6f", coordinate * angstrom_per_bohr);
    }
    std::fputc('\n', stream);
  }
}
