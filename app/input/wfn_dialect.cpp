#include "app/input/wfn_dialect.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "app/input/wfn_basis.hpp"
#include "app/model/memory.hpp"
#include "lib/atom.hpp"
#include "lib/message.hpp"
#include "lib/reader.hpp"
#include "lib/string.hpp"

namespace {

constexpr const char* no_integer = "cannot read unsigned int data block";
constexpr const char* no_exponent = "cannot read number in real data block";
constexpr const char* no_coordinate = "cannot read atomic coordinates";
constexpr const char* no_coefficient = "cannot read molecular orbital coefficients";

constexpr std::string_view blanks = " \t\r";

// What stands behind each count.
constexpr std::array<std::string_view, 3> count_labels = {"MOL ORBITALS", "PRIMITIVES", "NUCLEI"};

// A line without its end. What is longer than any program writes is cut, and fails where it is read.
struct Line {
  std::array<char, 4096> text;
  bool is_ended;  // by a newline: the last line may have been cut off

  // False at the end of the file.
  bool read(Reader& reader) {
    if (!reader.line(text)) {
      return false;
    }
    char* const end = text.data() + std::strlen(text.data());
    is_ended = end != text.data() && end[-1] == '\n';
    if (is_ended) {
      end[-1] = '\0';
    }
    return true;
  }

  std::string_view from(std::size_t column) const {
    const std::string_view line = text.data();
    return line.substr(std::min(column - 1, line.size()));
  }
};

// How many characters of a word are its first number. Columns of a fixed width leave no blank between numbers
// that fill them; all numbers end where their columns do.
using Cut = std::size_t (*)(std::string_view word);

bool holds_several_reals(std::string_view word) { return std::ranges::count(word, '.') > 1; }

template <std::size_t width>
std::size_t cut_columns(std::string_view word) {
  return (word.size() - 1) % width + 1;
}
template <std::size_t width>
std::size_t cut_reals(std::string_view word) {
  return holds_several_reals(word) ? cut_columns<width>(word) : word.size();
}
std::size_t cut_coordinates(std::string_view word) {
  return holds_several_reals(word) ? std::min(word.find('.') + 9, word.size()) : word.size();
}
std::size_t cut_nothing(std::string_view word) { return word.size(); }

// The first number of a text, which loses it; empty if there is none.
std::string_view take_number(std::string_view* text, Cut cut) {
  text->remove_prefix(std::min(text->find_first_not_of(blanks), text->size()));
  std::string_view word = text->substr(0, text->find_first_of(blanks));
  word = word.empty() ? word : word.substr(0, cut(word));
  text->remove_prefix(word.size());
  return word;
}

// The exponent may have the letter d, or three digits and no letter.
double real(std::string_view number, const char* failure) {
  std::array<char, 64> text = {};
  double value = 0.0;
  if (number.empty() || number.size() >= text.size()) {
    msg_fatal(failure);
  }
  const auto as_in_c = [](char c) { return c == 'D' || c == 'd' ? 'E' : c; };
  const char* const end = std::ranges::transform(number, text.begin(), as_in_c).out;
  // Nearly every number is plain.
  if (const auto [stop, error] = std::from_chars(text.data(), end, value);
      error != std::errc() || stop != end) {
    const char* const rest = str_fortran_real(text.data(), &value);
    if (rest != end) {
      msg_fatal(failure);
    }
  }
  if (!std::isfinite(value)) {
    msg_fatal(failure);
  }
  return value;
}

unsigned integer(std::string_view number, const char* failure) {
  unsigned value = 0;
  const auto [stop, error] = std::from_chars(number.data(), number.data() + number.size(), value);
  if (error != std::errc() || stop != number.data() + number.size()) {
    msg_fatal(failure);
  }
  return value;
}

// The numbers of a block of lines, each behind a label of so many characters.
class Block {
 public:
  Block(Reader& reader, unsigned label_width, Cut cut, const char* failure)
      : reader_(reader), label_width_(label_width), cut_(cut), failure_(failure) {}

  std::string_view next() {
    std::string_view number;
    while ((number = take_number(&rest_, cut_)).empty()) {
      if (!line_.read(reader_)) {
        msg_fatal(failure_);
      }
      rest_ = line_.from(label_width_ + 1);
    }
    if (!line_.is_ended && rest_.empty() && !has_whole_exponent(number)) {
      msg_fatal(failure_);
    }
    return number;
  }

 private:
  // The end of the file has cut nothing off then.
  static bool has_whole_exponent(std::string_view number) {
    const std::size_t sign = number.find_last_of("+-");
    return sign != number.npos && sign > 0 && number.size() - sign > 2;
  }

  Reader& reader_;
  unsigned label_width_;
  Cut cut_;
  const char* failure_;
  Line line_ = {};
  std::string_view rest_;
};

// The number in front of a label.
unsigned count_before(std::string_view line, std::string_view label, const char* failure) {
  std::string_view text = line.substr(0, line.find(label));
  text = text.substr(0, text.find_last_not_of(blanks) + 1);
  const std::size_t before = text.find_last_of(blanks);
  return integer(before == text.npos ? text : text.substr(before + 1), failure);
}

// Returns the number of orbitals.
unsigned read_counts(Molecule* molecule, std::string_view line, Reader& reader) {
  const unsigned orbital_count = count_before(line, count_labels[0], "cannot read number of orbitals");
  molecule->basis_count = count_before(line, count_labels[1], "cannot read number of primitives");
  molecule->atom_count = count_before(line, count_labels[2], "cannot read number of nuclei");
  if (!reader.may_hold(std::uint64_t{4} * molecule->atom_count)) {  // the symbol and coordinates
    msg_fatal("invalid count in WFN file - number of nuclei");
  }
  // Centre, type and exponent of every primitive; its coefficient and two numbers more in every orbital.
  const std::uint64_t primitives = molecule->basis_count, orbitals = orbital_count;
  if (!reader.may_hold(3 * primitives + (primitives + 2) * orbitals)) {
    msg_fatal("invalid count in WFN file - number of orbitals or primitives");
  }
  return orbital_count;
}

// Letters with whatever stands behind them: "Li1", "H10a", "LI".
void set_symbol(Atom* atom, std::string_view word) {
  const auto is_letter = [](char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0; };
  const auto end = std::ranges::find_if_not(word, is_letter);
  const std::string letters(word.begin(), end);
  atom->atomic_number = atom_num(letters.c_str());
  if (atom->atomic_number != 0) {
    atom_name(atom->symbol, static_cast<int>(atom->atomic_number));
  } else {
    std::snprintf(atom->symbol, sizeof atom->symbol, "%.7s", std::string(word).c_str());
  }
}

void read_atoms(Molecule* molecule, Reader& reader) {
  mem_alloc_atoms(molecule);
  for (unsigned i = 0; i < molecule->atom_count; ++i) {
    Line line;
    if (!line.read(reader)) {
      msg_fatal("unexpected end of WFN file while reading coordinates");
    }
    std::string_view start = line.from(1);
    const std::string_view symbol = take_number(&start, cut_nothing);
    if (symbol.empty()) {
      msg_fatal("cannot read atom symbol");
    }
    set_symbol(&molecule->atoms[i], symbol);
    const std::size_t bracket = line.from(1).find(')');
    std::string_view text = line.from(bracket == std::string_view::npos ? 25 : bracket + 2);
    for (double& coordinate : molecule->atoms[i].coord) {
      coordinate = real(take_number(&text, cut_coordinates), no_coordinate);
    }
  }
}

void read_basis(Molecule* molecule, Reader& reader) {
  const unsigned count = molecule->basis_count;
  std::vector<unsigned> centres(count), types(count);
  std::vector<double> exponents(count);
  mem_alloc_basis(molecule);
  // Three columns cannot hold a number of more digits, so that one is several.
  const Cut cut = molecule->atom_count < 1000 ? cut_columns<3> : cut_nothing;
  Block centre_block(reader, 20, cut, no_integer);
  std::ranges::generate(centres, [&] { return integer(centre_block.next(), no_integer); });
  Block type_block(reader, 20, cut_nothing, no_integer);
  std::ranges::generate(types, [&] { return integer(type_block.next(), no_integer); });
  Block exponent_block(reader, 10, cut_reals<14>, no_exponent);
  std::ranges::generate(exponents, [&] { return real(exponent_block.next(), no_exponent); });
  for (const unsigned type : types) {
    if (type < 1 || type > wfn_type_count) {
      msg_fatal_format("unknown type number %u in WFN file", type);
    }
  }
  for (const double exponent : exponents) {
    if (!(exponent > 0.0)) {
      msg_fatal_format("exponent %g in WFN file is not positive", exponent);
    }
  }
  wfn_basis_reorder(molecule, centres.data(), types.data(), exponents.data());
}

void read_orbital(Orbital* orbital, unsigned basis_count, Reader& reader) {
  Line header;
  do {
    if (!header.read(reader)) {
      msg_fatal("unexpected end of file while reading molecular orbitals");
    }
  } while (header.from(1).find_first_not_of(blanks) == std::string_view::npos);
  if (!wfn_header_value(header.from(1), wfn_occupation_label, &orbital->occupation)) {
    msg_fatal("cannot read occupation number of molecular orbital");
  }
  if (!wfn_header_value(header.from(1), wfn_energy_label, &orbital->energy)) {
    msg_fatal("cannot read molecular orbital energy");
  }
  Block block(reader, 0, cut_reals<16>, no_coefficient);
  std::generate_n(orbital->coefficients, basis_count, [&] { return real(block.next(), no_coefficient); });
}

}  // namespace

void wfn_dialect_read(Molecule* molecule, const char* first_line, Reader& reader) {
  Line line = {};
  std::string_view text = first_line;
  while (!wfn_has_counts(text)) {
    if (!line.read(reader)) {
      msg_fatal("unexpected end of WFN file while reading number of electrons");
    }
    text = line.from(1);
  }
  const unsigned orbital_count = read_counts(molecule, text, reader);
  read_atoms(molecule, reader);
  read_basis(molecule, reader);
  mem_alloc_alpha_orbitals(molecule, orbital_count);
  for (unsigned i = 0; i < orbital_count; ++i) {
    read_orbital(&molecule->alpha_orbitals[i], molecule->basis_count, reader);
  }
}

bool wfn_has_counts(std::string_view line) {
  return std::ranges::all_of(count_labels,
                             [&](std::string_view label) { return line.find(label) != line.npos; });
}

bool wfn_header_value(std::string_view header, std::string_view label, double* value) {
  const std::size_t at = header.find(label);
  const std::size_t sign = at == header.npos ? at : header.find_first_not_of(blanks, at + label.size());
  return sign != header.npos && header[sign] == '=' &&
         str_fortran_real(std::string(header.substr(sign + 1)).c_str(), value) != nullptr &&
         std::isfinite(*value);
}
