#include "app/input/fcheck_sections.hpp"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <span>

#include "app/input/fcheck_line.hpp"
#include "app/model/memory.hpp"
#include "app/model/setup.hpp"
#include "app/model/shell.hpp"
#include "lib/atom.hpp"
#include "lib/message.hpp"
#include "lib/str_sub.hpp"
#include "lib/vec_base.hpp"

namespace {

// Which files must have a section.
enum class Need { none, always, restricted, unrestricted, sp_shells, beta_orbitals };

struct Section {
  const char* label;
  Need need;
  void (*take)(FchkInput& input, const Section& section);

  // What a count tells, or how many records an array has; null for anything else.
  unsigned Molecule::*count = nullptr;
  // How many values a count announces of the rest of the file, or an array of so many records has.
  std::uint64_t (*values)(const Molecule& molecule, std::uint64_t count) = nullptr;
  // Makes room for what is counted.
  void (*allocate)(Molecule* molecule) = nullptr;

  // Of an array: what is wrong if one of its values is no number.
  const char* failure = nullptr;

  bool is_array() const { return failure != nullptr; }

  // False for an array of length 0: its count is 0, or has not been read yet.
  bool has_values(const Molecule& molecule) const { return !is_array() || molecule.*count > 0; }
};

[[noreturn]] void fail(const char* trouble, const Section& section) {
  msg_fatal_format("%s in fchk file - %s", trouble, section.label);
}

// Scalars.

FchkState& state_of(FchkInput& input, const Section& section);

// Takes a count, once. `trouble`: what is wrong with one that the rest of the file cannot hold.
void set_count(FchkInput& input, const Section& section, unsigned count, const char* trouble) {
  if (section.values != nullptr && !input.reader.may_hold(section.values(*input.molecule, count))) {
    fail(trouble, section);
  }
  input.molecule->*section.count = count;
  input.known.push_back(section.count);
  if (section.allocate != nullptr) {
    section.allocate(input.molecule);
  }
}

void take_count(FchkInput& input, const Section& section) {
  const int value = fcheck_last_int(input.line.data());
  const auto count = static_cast<unsigned>(value);
  if (input.knows(section.count)) {
    if (input.molecule->*section.count != count) {
      fail("contradictory count", section);
    }
    return;
  }
  const bool may_be_cut_off = input.reader.is_at_end() && std::strchr(input.line.data(), '\n') == nullptr;
  if (value < 0 || may_be_cut_off) {
    fail("invalid count", section);
  }
  set_count(input, section, count, "invalid count");
}

void take_charge(FchkInput& input, const Section&) {
  input.molecule->charge = fcheck_last_int(input.line.data());
}

void check_angular_momentum(FchkInput& input, const Section&) {
  const int momentum = fcheck_last_int(input.line.data());
  if (momentum < 0 || momentum > shell_max) {
    msg_fatal("maximal anglular momentum exceeds limit");
  }
}

// Arrays.

template <class Number>
void read_values(FchkInput& input, const Section& section, Number* values, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    if (!input.reader.number(values[i]) || input.reader.is_at_end()) {
      msg_fatal(section.failure);
    }
  }
}

std::span<Atom> atoms(const FchkInput& input) { return {input.molecule->atoms, input.molecule->atom_count}; }

void take_atomic_numbers(FchkInput& input, const Section& section) {
  for (Atom& atom : atoms(input)) {
    read_values(input, section, &atom.atomic_number, 1);
    atom_name(atom.symbol, static_cast<int>(atom.atomic_number));
  }
}

void place_atoms(const FchkInput& input) {
  for (auto from = input.coordinates.begin(); Atom & atom : atoms(input)) {
    std::copy_n(from, 3, atom.coord);
    from += 3;
  }
}

// An optimisation writes a geometry for each step. One behind the orbitals is not theirs.
void take_coordinates(FchkInput& input, const Section& section) {
  const bool is_first = input.coordinates.empty();
  const std::vector<double> before = input.coordinates;
  input.coordinates.resize(std::size_t{3} * input.molecule->atom_count);
  read_values(input, section, input.coordinates.data(), input.coordinates.size());
  const bool is_behind = !is_first && input.has_orbitals;
  if (!is_behind || conf_input_convention == 0) {
    place_atoms(input);
  }
  if (is_behind && conf_input_convention == 0 && input.coordinates != before) {
    msg_tell(
        "the geometry is one behind the orbitals in the fchk file; INPUT_CONVENTION 1 takes that before "
        "them");
  }
}

template <Orbital* Molecule::*target>
void take_coefficients(FchkInput& input, const Section& section) {
  for (const Orbital& orbital : std::span(input.molecule->*target, input.molecule->*section.count)) {
    read_values(input, section, orbital.coefficients, input.molecule->basis_count);
  }
  if (target == &Molecule::alpha_orbitals && !input.coordinates.empty()) {
    place_atoms(input);
  }
  input.has_orbitals = true;
}

template <Orbital* Molecule::*target>
void take_energies(FchkInput& input, const Section& section) {
  for (Orbital& orbital : std::span(input.molecule->*target, input.molecule->*section.count)) {
    read_values(input, section, &orbital.energy, 1);
  }
}

void allocate(int*& vector, unsigned n) { vector = vec_ialloc(n); }
void allocate(unsigned*& vector, unsigned n) { vector = vec_ualloc(n); }
void allocate(double*& vector, unsigned n) { vector = vec_falloc(n); }

template <auto target>
void take_vector(FchkInput& input, const Section& section) {
  auto*& vector = input.shells.*target;
  const unsigned count = input.molecule->*section.count;
  if (vector == nullptr) {
    allocate(vector, count);
  }
  read_values(input, section, vector, count);
}

// Values of counts and arrays.

template <unsigned per_record>
std::uint64_t values_of(const Molecule&, std::uint64_t count) {
  return per_record * count;
}
// Energies and coefficients of one spin, if there are as many orbitals as functions.
std::uint64_t function_values(const Molecule&, std::uint64_t count) {
  return conf_input_convention == 0 ? (count + 1) * count : count;
}
std::uint64_t coefficient_values(const Molecule& molecule, std::uint64_t count) {
  return count * molecule.basis_count;
}

// With INPUT_CONVENTION 1 the arrays tell how many orbitals there are.
void allocate_as_many_orbitals(Molecule* molecule) {
  if (conf_input_convention == 0) {
    mem_alloc_orbitals(molecule);
  }
}
void allocate_alpha(Molecule* molecule) { mem_alloc_alpha_orbitals(molecule, molecule->alpha_orbital_count); }
void allocate_beta(Molecule* molecule) { mem_alloc_beta_orbitals(molecule, molecule->beta_orbital_count); }

// Makers of the table's entries.

using Allocate = void (*)(Molecule* molecule);
using Values = std::uint64_t (*)(const Molecule& molecule, std::uint64_t count);

constexpr Section count_section(const char* label, Need need, unsigned Molecule::*count,
                                Values values = nullptr, Allocate allocate = nullptr) {
  return {.label = label,
          .need = need,
          .take = take_count,
          .count = count,
          .values = values,
          .allocate = allocate};
}

constexpr Section array_section(const char* label, Need need, void (*take)(FchkInput&, const Section&),
                                unsigned Molecule::*count, Values values, Allocate allocate,
                                const char* failure) {
  return {.label = label,
          .need = need,
          .take = take,
          .count = count,
          .values = values,
          .allocate = allocate,
          .failure = failure};
}

constexpr Section shell_section(const char* label, Need need, void (*take)(FchkInput&, const Section&),
                                unsigned Molecule::*count, const char* failure) {
  return array_section(label, need, take, count, values_of<1>, nullptr, failure);
}

// In the order in which a line is compared with the labels.
constexpr std::array sections = {
    count_section("Number of atoms", Need::always, &Molecule::atom_count, values_of<4>, mem_alloc_atoms),
    Section{"Charge", Need::none, take_charge},
    count_section("Multiplicity", Need::none, &Molecule::multiplicity),
    count_section("Number of electrons", Need::restricted, &Molecule::electron_count),
    count_section("Number of alpha electrons", Need::unrestricted, &Molecule::alpha_electron_count),
    count_section("Number of beta electrons", Need::unrestricted, &Molecule::beta_electron_count),
    count_section("Number of basis functions", Need::always, &Molecule::basis_count, function_values,
                  allocate_as_many_orbitals),
    array_section("Atomic numbers", Need::always, take_atomic_numbers, &Molecule::atom_count, values_of<1>,
                  mem_alloc_atoms, "cannot read atomic numbers"),
    array_section("Current cartesian coordinates", Need::always, take_coordinates, &Molecule::atom_count,
                  values_of<3>, mem_alloc_atoms, "cannot read cartesian coordinates"),
    array_section("Alpha MO coefficients", Need::always, take_coefficients<&Molecule::alpha_orbitals>,
                  &Molecule::alpha_orbital_count, coefficient_values, allocate_alpha,
                  "cannot read alpha MO coefficients"),
    array_section("Beta MO coefficients", Need::beta_orbitals, take_coefficients<&Molecule::beta_orbitals>,
                  &Molecule::beta_orbital_count, coefficient_values, allocate_beta,
                  "cannot read beta MO coefficients"),
    array_section("Alpha Orbital Energies", Need::always, take_energies<&Molecule::alpha_orbitals>,
                  &Molecule::alpha_orbital_count, values_of<1>, allocate_alpha,
                  "cannot read alpha MO energies"),
    array_section("Beta Orbital Energies", Need::beta_orbitals, take_energies<&Molecule::beta_orbitals>,
                  &Molecule::beta_orbital_count, values_of<1>, allocate_beta, "cannot read beta MO energies"),
    count_section("Number of contracted shells", Need::always, &Molecule::shell_count, values_of<3>),
    Section{"Highest angular momentum", Need::none, check_angular_momentum},
    shell_section("Number of primitives per shell", Need::always, take_vector<&ShellTable::primitive_counts>,
                  &Molecule::shell_count, "cannot read number of primitives per shell"),
    shell_section("Shell to atom map", Need::always, take_vector<&ShellTable::atom_map>,
                  &Molecule::shell_count, "cannot read shell to atom indices"),
    shell_section("Shell types", Need::always, take_vector<&ShellTable::types>, &Molecule::shell_count,
                  "cannot read shell types"),
    shell_section("Primitive exponents", Need::always, take_vector<&ShellTable::exponents>,
                  &Molecule::primitive_count, "cannot read primitive exponents"),
    shell_section("Contraction coefficients", Need::always, take_vector<&ShellTable::coefficients>,
                  &Molecule::primitive_count, "cannot read contraction coefficients"),
    shell_section("P(S=P) Contraction coefficients", Need::sp_shells,
                  take_vector<&ShellTable::sp_coefficients>, &Molecule::primitive_count,
                  "cannot read SP contraction coefficients"),
    count_section("Number of primitive shells", Need::always, &Molecule::primitive_count, values_of<2>),
};
static_assert(sections.size() == fcheck_section_count);

FchkState& state_of(FchkInput& input, const Section& section) {
  return input.states[static_cast<std::size_t>(&section - sections.data())];
}

// The number of values that the label line of an array announces.
std::optional<std::uint64_t> announced_length(const char* line, const Section& section) {
  const char* const mark = std::strstr(line + std::min(std::strlen(line), std::strlen(section.label)), "N=");
  char* stop = nullptr;
  const long length = mark != nullptr ? std::strtol(mark + 2, &stop, 10) : 0;
  if (mark == nullptr || stop == mark + 2 || length < 0) {
    return std::nullopt;
  }
  return length;
}

// With INPUT_CONVENTION 1 what is announced takes the place of a count that is missing, and tells how many
// orbitals there are.
void settle_length(FchkInput& input, const Section& section) {
  const Molecule& molecule = *input.molecule;
  const std::uint64_t of_record = section.values(molecule, 1);
  const bool is_of_orbitals = section.allocate == allocate_alpha || section.allocate == allocate_beta;
  auto length = announced_length(input.line.data(), section);
  if (!length && is_of_orbitals && !input.knows(section.count)) {
    length = section.values(molecule, molecule.basis_count);
  }
  if (!length || of_record == 0) {
    return;
  }
  if (!input.knows(section.count)) {
    const std::uint64_t count = *length / of_record;
    if (count > std::numeric_limits<int>::max() || (is_of_orbitals && count > molecule.basis_count) ||
        (is_of_orbitals && !input.reader.may_hold(coefficient_values(molecule, count)))) {
      fail("invalid length", section);
    }
    set_count(input, section, static_cast<unsigned>(count), "invalid length");
  }
  if (section.values(molecule, molecule.*section.count) != *length) {
    fail("contradictory length", section);
  }
}

// Where functions were removed, the values that are missing end the run.
void tell_length(FchkInput& input, const Section& section) {
  const auto length = announced_length(input.line.data(), section);
  const std::uint64_t of_record = section.values(*input.molecule, 1);
  if (section.allocate == allocate_alpha && length && of_record > 0 && *length % of_record == 0 &&
      *length < of_record * input.molecule->alpha_orbital_count) {
    msg_tell("the fchk file has fewer orbitals than basis functions; INPUT_CONVENTION 1 reads it");
  }
}

// Whether there is an array of so many records.
bool has_array_of(FchkInput& input, unsigned Molecule::*count) {
  return std::ranges::any_of(sections, [&](const Section& section) {
    return section.is_array() && section.count == count && state_of(input, section) != FchkState::absent;
  });
}

bool is_needed(Need need, FchkInput& input) {
  const bool is_by_name = conf_input_convention == 0;  // the method's, whether it is restricted
  switch (need) {
    case Need::none:
      return false;
    case Need::always:
      return true;
    case Need::restricted:
      return is_by_name && input.molecule->is_restricted;
    case Need::unrestricted:
      return !is_by_name || !input.molecule->is_restricted;
    case Need::sp_shells:
      return vec_iin(input.shells.types, sp_shell, input.molecule->shell_count) != vec_not_found;
    case Need::beta_orbitals:
      return fcheck_has_beta_orbitals(input);
  }
  return true;
}

}  // namespace

bool FchkInput::knows(unsigned Molecule::*count) const {
  return std::ranges::find(known, count) != known.end();
}

void fcheck_read_sections(FchkInput& input) {
  while (input.reader.line(input.line)) {
    const char* line = input.line.data();
    // Most lines are numbers: their first character tells.
    const auto* section = std::find_if(sections.begin(), sections.end(), [line](const Section& candidate) {
      return *line == *candidate.label && str_sub_bfind(line, candidate.label) != 0;
    });
    if (section == sections.end()) {
      continue;
    }
    if (section->is_array() && conf_input_convention != 0) {
      settle_length(input, *section);
    } else if (section->is_array()) {
      tell_length(input, *section);
    }
    const bool has_values = section->has_values(*input.molecule);
    if (has_values) {
      section->take(input, *section);
    }
    state_of(input, *section) = has_values ? FchkState::read : FchkState::met;
  }
}

bool fcheck_has_beta_orbitals(FchkInput& input) {
  return std::any_of(sections.begin(), sections.end(), [&](const Section& section) {
    return section.need == Need::beta_orbitals && state_of(input, section) != FchkState::absent;
  });
}

void fcheck_check_sections(FchkInput& input) {
  for (const Section& section : sections) {
    const bool is_there =
        section.take == take_count ? input.knows(section.count) : state_of(input, section) == FchkState::read;
    const bool may_be_empty = conf_input_convention == 0 || input.knows(section.count);
    if (!is_there && (section.has_values(*input.molecule) || !may_be_empty) &&
        is_needed(section.need, input)) {
      if (conf_input_convention == 0 && section.take == take_count && has_array_of(input, section.count)) {
        msg_tell("the fchk file lacks a count that follows from its arrays; INPUT_CONVENTION 1 reads it");
      }
      fail("missing section", section);
    }
  }
}

std::vector<std::string_view> fcheck_labels() {
  std::vector<std::string_view> labels(sections.size());
  std::ranges::transform(sections, labels.begin(), &Section::label);
  return labels;
}
