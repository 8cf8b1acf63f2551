#include "fcheck.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <span>

#include "atom.hpp"
#include "file.hpp"
#include "memory.hpp"
#include "message.hpp"
#include "occupation.hpp"
#include "reader.hpp"
#include "reorder.hpp"
#include "setup.hpp"
#include "shell.hpp"
#include "str_sub.hpp"
#include "str_trim.hpp"
#include "vec_base.hpp"

namespace {

constexpr const char* blanks = " \t";

// Which files must have a section.
enum class Need { none, always, restricted, unrestricted, sp_shells, beta_orbitals };

struct Input;

struct Section {
  const char* label;
  Need need;
  void (*take)(Input& input, const Section& section);

  // Of a count: how many values of the rest of the file it announces, and what is allocated for them.
  std::uint64_t (*announced)(std::uint64_t count) = nullptr;
  void (*allocate)(Molecule* molecule) = nullptr;

  // Of an array: how many records it has, and what is wrong if one of its values is no number.
  unsigned (*length)(const Molecule& molecule) = nullptr;
  const char* failure = nullptr;

  // False for an array of length 0: its count is 0, or has not been read yet.
  bool has_values(const Molecule& molecule) const { return length == nullptr || length(molecule) > 0; }
};

constexpr unsigned section_count = 22;

enum class State : unsigned char { absent, met, read };  // met: too early, before the count of its values

struct Input {
  Reader reader;
  Molecule* molecule;
  ShellTable shells;
  std::array<char, sizeof Molecule::title> line;  // the label line
  std::array<State, section_count> states;        // of the sections
};

[[noreturn]] void fail(const char* trouble, const Section& section) {
  msg_fatal_format("%s in fchk file - %s", trouble, section.label);
}

// Scalars.

std::uint64_t atom_values(std::uint64_t count) { return 4 * count; }  // the atomic number and coordinates
// Of one spin: energies and coefficients.
std::uint64_t orbital_values(std::uint64_t count) { return (count + 1) * count; }
std::uint64_t shell_values(std::uint64_t count) { return 3 * count; }
std::uint64_t primitive_values(std::uint64_t count) { return 2 * count; }

State& state_of(Input& input, const Section& section);

template <unsigned Molecule::*target>
void take_count(Input& input, const Section& section) {
  const int value = fcheck_last_int(input.line.data());
  const auto count = static_cast<unsigned>(value);
  unsigned& known = input.molecule->*target;
  if (state_of(input, section) == State::read) {
    if (known != count) {
      fail("contradictory count", section);
    }
    return;
  }
  const bool may_be_cut_off = input.reader.is_at_end() && std::strchr(input.line.data(), '\n') == nullptr;
  if (value < 0 || may_be_cut_off ||
      (section.announced != nullptr && !input.reader.may_hold(section.announced(count)))) {
    fail("invalid count", section);
  }
  known = count;
  if (section.allocate != nullptr) {
    section.allocate(input.molecule);
  }
}

void take_charge(Input& input, const Section&) {
  input.molecule->charge = fcheck_last_int(input.line.data());
}

void check_angular_momentum(Input& input, const Section&) {
  const int momentum = fcheck_last_int(input.line.data());
  if (momentum < 0 || momentum > shell_max) {
    msg_fatal("maximal anglular momentum exceeds limit");
  }
}

// Arrays.

template <unsigned Molecule::*count>
unsigned length(const Molecule& molecule) {
  return molecule.*count;
}

// A restricted wavefunction has no place for beta orbitals.
unsigned beta_length(const Molecule& molecule) { return inp_rest_scf != 0 ? 0 : molecule.basis_count; }

template <class Number>
void read_values(Input& input, const Section& section, Number* values, unsigned count) {
  for (unsigned i = 0; i < count; ++i) {
    if (!input.reader.number(values[i]) || input.reader.is_at_end()) {
      msg_fatal(section.failure);
    }
  }
}

std::span<Atom> atoms(const Input& input) { return {input.molecule->atoms, input.molecule->atom_count}; }

void take_atomic_numbers(Input& input, const Section& section) {
  for (Atom& atom : atoms(input)) {
    read_values(input, section, &atom.atomic_number, 1);
    atom_name(atom.symbol, static_cast<int>(atom.atomic_number));
  }
}

void take_coordinates(Input& input, const Section& section) {
  for (Atom& atom : atoms(input)) {
    read_values(input, section, atom.coord, 3);
  }
}

template <Orbital* Molecule::*target>
void take_coefficients(Input& input, const Section& section) {
  const unsigned count = input.molecule->basis_count;
  for (const Orbital& orbital : std::span(input.molecule->*target, count)) {
    read_values(input, section, orbital.coefficients, count);
  }
}

template <Orbital* Molecule::*target>
void take_energies(Input& input, const Section& section) {
  for (Orbital& orbital : std::span(input.molecule->*target, input.molecule->basis_count)) {
    read_values(input, section, &orbital.energy, 1);
  }
}

void allocate(int*& vector, unsigned n) { vector = vec_ialloc(n); }
void allocate(unsigned*& vector, unsigned n) { vector = vec_ualloc(n); }
void allocate(double*& vector, unsigned n) { vector = vec_falloc(n); }

template <auto target>
void take_vector(Input& input, const Section& section) {
  auto*& vector = input.shells.*target;
  const unsigned count = section.length(*input.molecule);
  if (vector == nullptr) {
    allocate(vector, count);
  }
  read_values(input, section, vector, count);
}

// Makers of the table's entries.

template <unsigned Molecule::*target>
constexpr Section count_section(const char* label, Need need,
                                std::uint64_t (*announced)(std::uint64_t count) = nullptr,
                                void (*allocate)(Molecule* molecule) = nullptr) {
  return {
      .label = label, .need = need, .take = take_count<target>, .announced = announced, .allocate = allocate};
}

constexpr Section array_section(const char* label, Need need, void (*take)(Input&, const Section&),
                                unsigned (*length)(const Molecule&), const char* failure) {
  return {.label = label, .need = need, .take = take, .length = length, .failure = failure};
}

constexpr auto atom_length = length<&Molecule::atom_count>;
constexpr auto orbital_length = length<&Molecule::basis_count>;
constexpr auto shell_length = length<&Molecule::shell_count>;
constexpr auto primitive_length = length<&Molecule::primitive_count>;

// In the order in which a line is compared with the labels.
constexpr std::array sections = {
    count_section<&Molecule::atom_count>("Number of atoms", Need::always, atom_values, mem_alloc_atoms),
    Section{"Charge", Need::none, take_charge},
    count_section<&Molecule::multiplicity>("Multiplicity", Need::none),
    count_section<&Molecule::electron_count>("Number of electrons", Need::restricted),
    count_section<&Molecule::alpha_electron_count>("Number of alpha electrons", Need::unrestricted),
    count_section<&Molecule::beta_electron_count>("Number of beta electrons", Need::unrestricted),
    count_section<&Molecule::basis_count>("Number of basis functions", Need::always, orbital_values,
                                          mem_alloc_orbitals),
    array_section("Atomic numbers", Need::always, take_atomic_numbers, atom_length,
                  "cannot read atomic numbers"),
    array_section("Current cartesian coordinates", Need::always, take_coordinates, atom_length,
                  "cannot read cartesian coordinates"),
    array_section("Alpha MO coefficients", Need::always, take_coefficients<&Molecule::alpha_orbitals>,
                  orbital_length, "cannot read alpha MO coefficients"),
    array_section("Beta MO coefficients", Need::beta_orbitals, take_coefficients<&Molecule::beta_orbitals>,
                  beta_length, "cannot read beta MO coefficients"),
    array_section("Alpha Orbital Energies", Need::always, take_energies<&Molecule::alpha_orbitals>,
                  orbital_length, "cannot read alpha MO energies"),
    array_section("Beta Orbital Energies", Need::beta_orbitals, take_energies<&Molecule::beta_orbitals>,
                  beta_length, "cannot read beta MO energies"),
    count_section<&Molecule::shell_count>("Number of contracted shells", Need::always, shell_values),
    Section{"Highest angular momentum", Need::none, check_angular_momentum},
    array_section("Number of primitives per shell", Need::always, take_vector<&ShellTable::primitive_counts>,
                  shell_length, "cannot read number of primitives per shell"),
    array_section("Shell to atom map", Need::always, take_vector<&ShellTable::atom_map>, shell_length,
                  "cannot read shell to atom indices"),
    array_section("Shell types", Need::always, take_vector<&ShellTable::types>, shell_length,
                  "cannot read shell types"),
    array_section("Primitive exponents", Need::always, take_vector<&ShellTable::exponents>, primitive_length,
                  "cannot read primitive exponents"),
    array_section("Contraction coefficients", Need::always, take_vector<&ShellTable::coefficients>,
                  primitive_length, "cannot read contraction coefficients"),
    array_section("P(S=P) Contraction coefficients", Need::sp_shells,
                  take_vector<&ShellTable::sp_coefficients>, primitive_length,
                  "cannot read SP contraction coefficients"),
    count_section<&Molecule::primitive_count>("Number of primitive shells", Need::always, primitive_values),
};
static_assert(sections.size() == section_count);

State& state_of(Input& input, const Section& section) {
  return input.states[static_cast<std::size_t>(&section - sections.data())];
}

void read_heading(Input& input) {
  if (!input.reader.line(input.line)) {
    msg_fatal("unexpected end of fchk file while reading comment line");
  }
  str_ctrim(input.line.data(), input.molecule->title);
  if (!input.reader.line(input.line)) {
    msg_fatal("unexpected end of input file");
  }
  fcheck_input_method(input.line.data());
}

void read_sections(Input& input) {
  while (input.reader.line(input.line)) {
    const char* line = input.line.data();
    // Most lines are numbers: their first character tells.
    const auto* section = std::find_if(sections.begin(), sections.end(), [line](const Section& candidate) {
      return *line == *candidate.label && str_sub_bfind(line, candidate.label) != 0;
    });
    if (section == sections.end()) {
      continue;
    }
    const bool has_values = section->has_values(*input.molecule);
    if (has_values) {
      section->take(input, *section);
    }
    state_of(input, *section) = has_values ? State::read : State::met;
  }
}

// Whether there is a section of beta orbitals: a file without any of them has none, one with a part of them
// was cut off, or has them before the count that they need.
bool has_beta_orbitals(Input& input) {
  return std::any_of(sections.begin(), sections.end(), [&](const Section& section) {
    return section.need == Need::beta_orbitals && state_of(input, section) != State::absent;
  });
}

bool is_needed(Need need, Input& input) {
  switch (need) {
    case Need::none:
      return false;
    case Need::always:
      return true;
    case Need::restricted:
      return inp_rest_scf != 0;
    case Need::unrestricted:
      return inp_rest_scf == 0;
    case Need::sp_shells:
      return vec_iin(input.shells.types, sp_shell, input.molecule->shell_count) != vec_not_found;
    case Need::beta_orbitals:
      return has_beta_orbitals(input);
  }
  return true;
}

void check_sections(Input& input) {
  for (const Section& section : sections) {
    if (state_of(input, section) != State::read && section.has_values(*input.molecule) &&
        is_needed(section.need, input)) {
      fail("missing section", section);
    }
  }
  if (inp_rest_scf == 0 && !has_beta_orbitals(input) && input.molecule->beta_electron_count > 0 &&
      arg_quiet == 0) {
    msg_warn("no beta orbitals in fchk file, beta electrons are left out");
  }
}

void check_electrons(const Molecule& molecule) {
  for (const OccupiedOrbitals& spin : occupation_of(&molecule).spin) {
    if (spin.count > molecule.basis_count) {
      msg_fatal("number of electrons exceeds number of orbitals in fchk file");
    }
  }
}

}  // namespace

std::vector<std::string_view> fcheck_labels() {
  std::vector<std::string_view> labels(sections.size());
  std::ranges::transform(sections, labels.begin(), &Section::label);
  return labels;
}

void fcheck_read(Molecule* molecule) {
  std::FILE* stream = file_open(glob_file_input, "r");
  Input input = {.reader = Reader(stream), .molecule = molecule, .shells = {}, .line = {}, .states = {}};
  reorder_shell_init(&input.shells);
  read_heading(input);
  read_sections(input);
  file_close(stream);

  check_sections(input);
  reorder_basis(molecule, &input.shells);
  check_electrons(*molecule);
}

void fcheck_input_method(const char* line) {
  const char* word = line + std::strspn(line, blanks);
  word += std::strcspn(word, blanks);
  word += std::strspn(word, blanks);
  if (*word == '\0') {
    msg_fatal("cannot find method which was used to compute MOs");
  }
  inp_rest_scf = *word == 'R' ? 1 : 0;
}

int fcheck_last_int(const char* line) {
  const char* end = line + std::strlen(line);
  while (end != line && std::strchr(blanks, end[-1]) != nullptr) {
    --end;
  }
  const char* word = end;
  while (word != line && std::strchr(blanks, word[-1]) == nullptr) {
    --word;
  }
  char* stop = nullptr;
  const long value = std::strtol(word, &stop, 10);
  if (stop == word || value < std::numeric_limits<int>::min() || value > std::numeric_limits<int>::max()) {
    msg_fatal("cannot convert last word into integer");
  }
  return static_cast<int>(value);
}
