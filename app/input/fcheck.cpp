#include "app/input/fcheck.hpp"

#include <algorithm>
#include <span>

#include "app/input/convention.hpp"
#include "app/input/fcheck_line.hpp"
#include "app/input/fcheck_sections.hpp"
#include "app/input/reorder.hpp"
#include "app/model/molecule.hpp"
#include "app/model/setup.hpp"
#include "lib/file.hpp"
#include "lib/message.hpp"
#include "lib/str_trim.hpp"

namespace {

void read_heading(FchkInput& input) {
  if (!input.reader.line(input.line)) {
    msg_fatal("unexpected end of fchk file while reading comment line");
  }
  str_ctrim(input.line.data(), input.molecule->title);
  if (!input.reader.line(input.line)) {
    msg_fatal("unexpected end of input file");
  }
  fcheck_input_method(input.line.data());
  input.molecule->is_restricted = inp_rest_scf != 0;
}

// A closed shell need not tell the electrons of each spin.
void settle_electrons(FchkInput& input) {
  Molecule& molecule = *input.molecule;
  if (!input.knows(&Molecule::alpha_electron_count) && !input.knows(&Molecule::beta_electron_count) &&
      input.knows(&Molecule::electron_count) && molecule.electron_count % 2 == 0 &&
      molecule.multiplicity <= 1) {
    molecule.alpha_electron_count = molecule.beta_electron_count = molecule.electron_count / 2;
    input.known.insert(input.known.end(), {&Molecule::alpha_electron_count, &Molecule::beta_electron_count});
  }
}

void tell_electrons(FchkInput& input) {
  const Molecule& molecule = *input.molecule;
  if (!molecule.is_restricted && !fcheck_has_beta_orbitals(input) && molecule.beta_electron_count > 0) {
    msg_tell("no beta orbitals in fchk file, beta electrons are left out; INPUT_CONVENTION 1 has them");
  }
  const std::span beta(molecule.beta_orbitals,
                       std::min(molecule.beta_electron_count, molecule.beta_orbital_count));
  const auto is_zero = [&](const Orbital& orbital) {
    return std::all_of(orbital.coefficients, orbital.coefficients + molecule.basis_count,
                       [](double c) { return c == 0.0; });
  };
  if (fcheck_has_beta_orbitals(input) && !beta.empty() && std::ranges::all_of(beta, is_zero)) {
    msg_tell("beta orbitals in fchk file are zeros, beta electrons are left out");
  }
  if (molecule.is_restricted && molecule.alpha_electron_count != molecule.beta_electron_count &&
      input.knows(&Molecule::alpha_electron_count) && input.knows(&Molecule::beta_electron_count)) {
    msg_tell("%u alpha and %u beta electrons are taken for pairs; INPUT_CONVENTION 1 tells them apart",
             molecule.alpha_electron_count, molecule.beta_electron_count);
  }
}

void check_electrons(const Molecule& molecule) {
  const bool are_pairs = molecule.is_restricted && conf_input_convention == 0;
  const unsigned alpha = are_pairs ? molecule.electron_count / 2 : molecule.alpha_electron_count;
  const unsigned beta = are_pairs ? 0 : molecule.beta_electron_count;
  if (alpha > molecule.alpha_orbital_count ||
      beta > (molecule.is_restricted ? molecule.alpha_orbital_count : molecule.beta_orbital_count)) {
    msg_fatal("number of electrons exceeds number of orbitals in fchk file");
  }
}

}  // namespace

void fcheck_read(Molecule* molecule) {
  std::FILE* stream = file_open(glob_file_input, "r");
  FchkInput input(stream, molecule);
  convention_tell_format(input.reader.at_hand());
  reorder_shell_init(&input.shells);
  read_heading(input);
  fcheck_read_sections(input);
  file_close(stream);

  if (conf_input_convention != 0) {
    settle_electrons(input);
  }
  fcheck_check_sections(input);
  reorder_basis(molecule, &input.shells);
  if (conf_input_convention != 0) {
    convention_place_electrons(molecule);
  } else {
    tell_electrons(input);
  }
  check_electrons(*molecule);
  convention_settle_fchk(molecule);
}
