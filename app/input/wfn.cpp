#include "app/input/wfn.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <vector>

#include "app/input/convention.hpp"
#include "app/input/wfn_basis.hpp"
#include "app/input/wfn_dialect.hpp"
#include "app/model/memory.hpp"
#include "app/model/setup.hpp"
#include "lib/atom.hpp"
#include "lib/file.hpp"
#include "lib/message.hpp"
#include "lib/reader.hpp"
#include "lib/str_trim.hpp"
#include "lib/string.hpp"

namespace {

constexpr const char* no_exponent = "cannot read number in real data block";

using Line = std::array<char, sizeof Molecule::title>;

// Columns, counted from 1, at which values begin.
constexpr unsigned orbital_count_column = 14;
constexpr unsigned primitive_count_column = 38;
constexpr unsigned nucleus_count_column = 56;
constexpr unsigned coordinate_column = 25;
constexpr unsigned energy_column = 64;

Line read_line(Reader& reader, const char* failure) {
  Line line;
  if (!reader.line(line)) {
    msg_fatal(failure);
  }
  return line;
}

// The line from a column on; empty if it does not reach so far.
const char* from_column(const Line& line, unsigned column) {
  return line.data() + std::min<std::size_t>(column - 1, std::strlen(line.data()));
}

unsigned read_count(const Line& line, unsigned column, const char* failure) {
  char* stop = nullptr;
  const char* text = from_column(line, column);
  const long count = std::strtol(text, &stop, 10);
  if (stop == text || count < 0 || count > std::numeric_limits<unsigned>::max()) {
    msg_fatal(failure);
  }
  return static_cast<unsigned>(count);
}

// A number in Fortran notation. A lone letter is the end of a label one column too wide; str_dsnum would take
// it for a zero.
double read_real(Reader& reader, const char* failure) {
  char word[1024];
  if (!reader.word(word) || (std::isalpha(static_cast<unsigned char>(word[0])) != 0 && word[1] == '\0')) {
    msg_fatal(failure);
  }
  return str_dsnum(word);
}

unsigned read_unsigned(Reader& reader) {
  unsigned value = 0;
  if (!reader.number(value)) {
    msg_fatal("cannot read unsigned int data block");
  }
  return value;
}

// For what may end the run, though other programs write it so.
void tell_dialect(const char* what) { msg_tell("%s; INPUT_CONVENTION 1 reads that", what); }

template <class Number, class ReadValue>
void read_block(Number* values, unsigned count, unsigned per_line, unsigned label_width, Reader& reader,
                ReadValue read_value) {
  for (unsigned i = 0; i < count; ++i) {
    // A label includes the newline that the number before it has left unread.
    if (i % per_line == 0 && !reader.skip(label_width)) {
      msg_fatal("unexpected end of file while reading data from WFN file");
    }
    values[i] = read_value(reader);
  }
}

void read_counts(Molecule* molecule, Reader& reader) {
  const Line line = read_line(reader, "unexpected end of WFN file while reading number of electrons");
  if (!wfn_has_counts(line.data()) && wfn_has_counts(reader.at_hand())) {
    tell_dialect("the WFN file has its counts behind the second line");
  }
  const unsigned orbital_count = read_count(line, orbital_count_column, "cannot read number of orbitals");
  molecule->basis_count = read_count(line, primitive_count_column, "cannot read number of primitives");
  molecule->atom_count = read_count(line, nucleus_count_column, "cannot read number of nuclei");

  if (orbital_count > molecule->basis_count) {
    tell_dialect("the WFN file has more orbitals than primitives");
    msg_fatal("number of orbitals exceeds number of primitives in WFN file");
  }
  if (!reader.may_hold(std::uint64_t{4} * molecule->atom_count)) {  // the symbol and coordinates
    msg_fatal("invalid count in WFN file - number of nuclei");
  }
  // Centre, type and exponent of every primitive, and a coefficient in every orbital. The number of electrons
  // must fit, too.
  if (orbital_count > std::numeric_limits<unsigned>::max() / 2 ||
      !reader.may_hold(std::uint64_t{molecule->basis_count} * (std::uint64_t{orbital_count} + 3))) {
    msg_fatal("invalid count in WFN file - number of orbitals or primitives");
  }
  if (molecule->atom_count > 99 && molecule->atom_count < 1000) {
    tell_dialect("columns of the WFN file may touch, as it has more than 99 nuclei");
  }
  molecule->electron_count = 2 * orbital_count;
}

}  // namespace

void wfn_read(Molecule* molecule) {
  std::FILE* stream = file_open(glob_file_input, "r");
  Reader reader(stream);
  convention_tell_format(reader.at_hand());
  const Line line = read_line(reader, "unexpected end of WFN file while reading comment line");
  inp_rest_scf = 1;
  molecule->is_restricted = true;
  if (conf_input_convention != 0) {
    if (!wfn_has_counts(line.data())) {
      str_ctrim(line.data(), molecule->title);
    }
    wfn_dialect_read(molecule, line.data(), reader);
  } else {
    str_ctrim(line.data(), molecule->title);
    read_counts(molecule, reader);
    wfn_read_atoms(molecule, reader);
    wfn_read_basis(molecule, reader);
    wfn_read_orbitals(molecule, reader);
  }
  file_close(stream);
  convention_settle_wfn(molecule);
}

void wfn_read_atoms(Molecule* molecule, Reader& reader) {
  mem_alloc_atoms(molecule);
  bool loses_sign = false;
  for (unsigned i = 0; i < molecule->atom_count; ++i) {
    Atom& atom = molecule->atoms[i];
    const Line line = read_line(reader, "unexpected end of WFN file while reading coordinates");
    // A longer word is cut; it names no element either way.
    static_assert(sizeof atom.symbol == 8);
    if (std::sscanf(line.data(), "%7s", atom.symbol) != 1) {
      msg_fatal("cannot read atom symbol");
    }
    atom.atomic_number = atom_num(atom.symbol);
    const char* text = from_column(line, coordinate_column);
    loses_sign = loses_sign || *from_column(line, coordinate_column - 1) == '-';
    for (double& coordinate : atom.coord) {
      text = str_fortran_real(text, &coordinate);
      // A number that fills its columns may touch the next: a second decimal point shows that it has taken
      // digits of its neighbour. An exponent that starts with D is none here.
      if (text == nullptr || *text == '.' || *text == 'D' || *text == 'd') {
        msg_fatal("cannot read atomic coordinates");
      }
    }
  }
  if (loses_sign) {
    msg_tell("a coordinate of the WFN file loses its sign in column %u; INPUT_CONVENTION 1 reads it",
             coordinate_column - 1);
  }
}

void wfn_read_basis(Molecule* molecule, Reader& reader) {
  const unsigned count = molecule->basis_count;
  std::vector<unsigned> centres(count), types(count);
  std::vector<double> exponents(count);
  mem_alloc_basis(molecule);

  wfn_read_udata(centres.data(), count, 20, 20, reader);
  wfn_read_udata(types.data(), count, 20, 20, reader);
  const auto beyond =
      std::ranges::find_if(types, [](unsigned type) { return type < 1 || type > wfn_type_count; });
  if (beyond != types.end()) {
    msg_tell("type number %u of the WFN file is none of a shell up to g, and taken for an s function",
             *beyond);
  }
  wfn_read_fdata(exponents.data(), count, 5, 10, reader);
  if (molecule->electron_count == 0 && count > 0 && reader.is_at_end()) {
    msg_fatal(no_exponent);  // the last number of the file, which may have been cut off
  }
  wfn_basis_reorder(molecule, centres.data(), types.data(), exponents.data());
}

void wfn_read_udata(unsigned* values, unsigned count, unsigned per_line, unsigned label_width,
                    Reader& reader) {
  read_block(values, count, per_line, label_width, reader, read_unsigned);
}

void wfn_read_fdata(double* values, unsigned count, unsigned per_line, unsigned label_width, Reader& reader) {
  read_block(values, count, per_line, label_width, reader,
             [](Reader& from) { return read_real(from, no_exponent); });
}

void wfn_read_orbitals(Molecule* molecule, Reader& reader) {
  constexpr const char* no_coefficient = "cannot read molecular orbital coefficients";
  const unsigned orbital_count = molecule->electron_count / 2;
  mem_alloc_listed_orbitals(molecule, orbital_count);
  bool cuts_energy = false, has_other_occupation = false;
  for (unsigned i = 0; i < orbital_count; ++i) {
    Orbital& orbital = molecule->alpha_orbitals[i];
    // The rest of the line on which the numbers before it ended.
    read_line(reader, "unexpected end of WFN file while reading MO coefficients");
    const Line header = read_line(reader, "unexpected end of file while reading molecular orbitals");
    if (str_fortran_real(from_column(header, energy_column), &orbital.energy) == nullptr) {
      msg_fatal("cannot read molecular orbital energy");
    }
    double energy = orbital.energy, occupation = 2.0;
    wfn_header_value(header.data(), wfn_energy_label, &energy);
    wfn_header_value(header.data(), wfn_occupation_label, &occupation);
    cuts_energy = cuts_energy || energy != orbital.energy;
    has_other_occupation = has_other_occupation || occupation != 2.0;
    for (unsigned j = 0; j < molecule->basis_count; ++j) {
      orbital.coefficients[j] = read_real(reader, no_coefficient);
    }
  }
  if (cuts_energy) {
    msg_tell("an orbital energy of the WFN file is cut at column %u; INPUT_CONVENTION 1 reads it whole",
             energy_column);
  }
  if (has_other_occupation) {
    msg_tell("occupation numbers of the WFN file other than 2 count as 2; INPUT_CONVENTION 1 reads them");
  }
  // The last number needs a line end behind it: it may have been cut off.
  if (orbital_count > 0 && reader.is_at_end()) {
    tell_dialect("the WFN file ends with its last number");
    msg_fatal(no_coefficient);
  }
}
