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
#include "reader.hpp"
#include "reorder.hpp"
#include "setup.hpp"
#include "shell.hpp"
#include "str_sub.hpp"
#include "str_trim.hpp"
#include "vec_base.hpp"

namespace {

constexpr const char* blanks = " \t";

struct Section;

// What is at hand while a section is read.
struct Input {
  Reader reader;
  Molecule* molecule;
  ShellTable shells;
  std::array<char, sizeof Molecule::title> line;  // the label line
  const Section* section;
  bool repeated;  // the section was met before
};

struct Section {
  const char* label;
  void (*take)(Input& input);
  unsigned (*length)(const Molecule& molecule) = nullptr;  // of an array; a scalar has none
  const char* failure = nullptr;                           // of a value of an array
  bool only_with_sp_shells = false;
};

[[noreturn]] void fail(const char* trouble, const Section& section) {
  msg_fatal_format("%s in fchk file - %s", trouble, section.label);
}

// Scalars: how many values of the rest of the file a count announces, and what is allocated for them.

using Announced = std::uint64_t (*)(std::uint64_t count);
using Allocation = void (*)(Molecule* molecule);

std::uint64_t no_values(std::uint64_t) { return 0; }
std::uint64_t atom_values(std::uint64_t count) { return 4 * count; }  // the atomic number and coordinates
std::uint64_t orbital_values(std::uint64_t count) {
  return (inp_rest_scf != 0 ? 1 : 2) * (count + 1) * count;  // energies and coefficients
}
std::uint64_t shell_values(std::uint64_t count) { return 3 * count; }
std::uint64_t primitive_values(std::uint64_t count) { return 2 * count; }
void no_allocation(Molecule*) {}

template <unsigned Molecule::*target, Announced announced = no_values, Allocation allocation = no_allocation>
void take_count(Input& input) {
  const int value = fcheck_last_int(input.line.data());
  const auto count = static_cast<unsigned>(value);
  unsigned& known = input.molecule->*target;
  if (input.repeated) {
    if (known != count) {
      fail("contradictory count", *input.section);
    }
    return;
  }
  if (value < 0 || !input.reader.may_hold(announced(count))) {
    fail("invalid count", *input.section);
  }
  known = count;
  allocation(input.molecule);
}

void take_charge(Input& input) { input.molecule->charge = fcheck_last_int(input.line.data()); }

void check_angular_momentum(Input& input) {
  const int momentum = fcheck_last_int(input.line.data());
  if (momentum < 0 || momentum > 4) {
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
void read_values(Input& input, Number* values, unsigned count) {
  for (unsigned i = 0; i < count; ++i) {
    if (!input.reader.number(values[i])) {
      msg_fatal(input.section->failure);
    }
  }
}

std::span<Atom> atoms(const Input& input) { return {input.molecule->atoms, input.molecule->atom_count}; }

void take_atomic_numbers(Input& input) {
  for (Atom& atom : atoms(input)) {
    read_values(input, &atom.atomic_number, 1);
    atom_name(atom.symbol, static_cast<int>(atom.atomic_number));
  }
}

void take_coordinates(Input& input) {
  for (Atom& atom : atoms(input)) {
    read_values(input, atom.coord, 3);
  }
}

template <Orbital* Molecule::*target>
void take_coefficients(Input& input) {
  const unsigned count = input.molecule->basis_count;
  for (const Orbital& orbital : std::span(input.molecule->*target, count)) {
    read_values(input, orbital.coefficients, count);
  }
}

template <Orbital* Molecule::*target>
void take_energies(Input& input) {
  for (Orbital& orbital : std::span(input.molecule->*target, input.molecule->basis_count)) {
    read_values(input, &orbital.energy, 1);
  }
}

int* allocate(unsigned n, int*) { return vec_ialloc(n); }
unsigned* allocate(unsigned n, unsigned*) { return vec_ualloc(n); }
double* allocate(unsigned n, double*) { return vec_falloc(n); }

template <auto target>
void take_vector(Input& input) {
  auto*& vector = input.shells.*target;
  const unsigned count = input.section->length(*input.molecule);
  if (vector == nullptr) {
    vector = allocate(count, vector);
  }
  read_values(input, vector, count);
}

constexpr auto atom_length = length<&Molecule::atom_count>;
constexpr auto orbital_length = length<&Molecule::basis_count>;
constexpr auto shell_length = length<&Molecule::shell_count>;
constexpr auto primitive_length = length<&Molecule::primitive_count>;

// In the order in which a line is compared with the labels.
constexpr std::array sections = {
    Section{"Number of atoms", take_count<&Molecule::atom_count, atom_values, mem_alloc_atoms>},
    Section{"Charge", take_charge},
    Section{"Multiplicity", take_count<&Molecule::multiplicity>},
    Section{"Number of electrons", take_count<&Molecule::electron_count>},
    Section{"Number of alpha electrons", take_count<&Molecule::alpha_electron_count>},
    Section{"Number of beta electrons", take_count<&Molecule::beta_electron_count>},
    Section{"Number of basis functions",
            take_count<&Molecule::basis_count, orbital_values, mem_alloc_orbitals>},
    Section{"Atomic numbers", take_atomic_numbers, atom_length, "cannot read atomic numbers"},
    Section{"Current cartesian coordinates", take_coordinates, atom_length,
            "cannot read cartesian coordinates"},
    Section{"Alpha MO coefficients", take_coefficients<&Molecule::alpha_orbitals>, orbital_length,
            "cannot read alpha MO coefficients"},
    Section{"Beta MO coefficients", take_coefficients<&Molecule::beta_orbitals>, beta_length,
            "cannot read beta MO coefficients"},
    Section{"Alpha Orbital Energies", take_energies<&Molecule::alpha_orbitals>, orbital_length,
            "cannot read alpha MO energies"},
    Section{"Beta Orbital Energies", take_energies<&Molecule::beta_orbitals>, beta_length,
            "cannot read beta MO energies"},
    Section{"Number of contracted shells", take_count<&Molecule::shell_count, shell_values>},
    Section{"Highest angular momentum", check_angular_momentum},
    Section{"Number of primitives per shell", take_vector<&ShellTable::primitive_counts>, shell_length,
            "cannot read number of primitives per shell"},
    Section{"Shell to atom map", take_vector<&ShellTable::atom_map>, shell_length,
            "cannot read shell to atom indices"},
    Section{"Shell types", take_vector<&ShellTable::types>, shell_length, "cannot read shell types"},
    Section{"Primitive exponents", take_vector<&ShellTable::exponents>, primitive_length,
            "cannot read primitive exponents"},
    Section{"Contraction coefficients", take_vector<&ShellTable::coefficients>, primitive_length,
            "cannot read contraction coefficients"},
    Section{"P(S=P) Contraction coefficients", take_vector<&ShellTable::sp_coefficients>, primitive_length,
            "cannot read SP contraction coefficients", true},
    Section{"Number of primitive shells", take_count<&Molecule::primitive_count, primitive_values>},
};
static_assert(sections.size() == 22);

// Which sections were read. An array without a length is not there yet.
using SectionFlags = std::array<bool, sections.size()>;

bool has_values(const Section& section, const Molecule& molecule) {
  return section.length == nullptr || section.length(molecule) > 0;
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

SectionFlags read_sections(Input& input) {
  SectionFlags read{};
  while (input.reader.line(input.line)) {
    const char* line = input.line.data();
    // Most lines are numbers: their first character tells.
    const auto* section = std::find_if(sections.begin(), sections.end(), [line](const Section& candidate) {
      return *line == *candidate.label && str_sub_bfind(line, candidate.label) != 0;
    });
    if (section != sections.end() && has_values(*section, *input.molecule)) {
      bool& flag = read[static_cast<std::size_t>(section - sections.begin())];
      input.section = section;
      input.repeated = flag;
      section->take(input);
      flag = true;
    }
  }
  return read;
}

void check_sections(const SectionFlags& read, const Input& input) {
  const bool has_sp_shells =
      vec_iin(input.shells.types, sp_shell, input.molecule->shell_count) != vec_not_found;
  for (std::size_t i = 0; i < sections.size(); ++i) {
    const Section& section = sections[i];
    const bool is_array = section.length != nullptr;
    if (is_array && !read[i] && has_values(section, *input.molecule) &&
        (has_sp_shells || !section.only_with_sp_shells)) {
      fail("missing section", section);
    }
  }
}

void check_electrons(const Molecule& molecule) {
  const unsigned occupied = inp_rest_scf != 0
                                ? molecule.electron_count / 2
                                : std::max(molecule.alpha_electron_count, molecule.beta_electron_count);
  if (occupied > molecule.basis_count) {
    msg_fatal("number of electrons exceeds number of orbitals in fchk file");
  }
}

}  // namespace

void fcheck_read(Molecule* molecule) {
  std::FILE* stream = file_open(glob_file_input, "r");
  Input input = {Reader(stream), molecule, {}, {}, nullptr, false};
  reorder_shell_init(&input.shells);
  read_heading(input);
  const SectionFlags read = read_sections(input);
  file_close(stream);

  check_sections(read, input);
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
