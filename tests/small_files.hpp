#pragma once

#include <optional>

#include "app/model/memory.hpp"
#include "app/model/setup.hpp"
#include "app/model/shell.hpp"
#include "lib/message.hpp"
#include "support.hpp"

// Small wavefunction files, made in memory.

struct SmallAtom {
  unsigned atomic_number;
  double coord[3];  // bohr
};

struct SmallShell {
  int type;
  unsigned atom;  // counted from 1
  Numbers exponents, coefficients, sp_coefficients;
};

/// What stands in a formatted checkpoint file. The orbitals are made up: a formula of their numbers.
struct SmallFchk {
  std::string title = "small molecule";
  std::string method = "RHF";
  unsigned electrons = 4, alpha_electrons = 2, beta_electrons = 2;
  std::vector<SmallAtom> atoms = {{3, {0.0, 0.0, 0.0}}, {1, {0.0, 0.5, 3.0}}};
  std::vector<SmallShell> shells = {
      {-1, 1, {16.0, 3.0, 0.75}, {0.25, 0.5, 0.375}, {0.125, 0.0625, 1.0}},
      {0, 2, {3.5, 0.5}, {0.75, 0.5}, {0.0, 0.0}},
  };
  std::function<double(unsigned, unsigned)> coefficient = [](unsigned orbital, unsigned function) {
    return 0.5 * (orbital + 1) - 0.125 * function;
  };
  std::function<double(unsigned)> energy = [](unsigned orbital) { return 0.25 * orbital - 2.0; };
  unsigned removed = 0;  // orbitals that the file lacks
};

/// Numbers in lines, each after a label and of at most `per_line`.
inline std::string lines_of(const Numbers& numbers, const char* format, std::size_t per_line,
                            const std::string& label = "") {
  std::string text;
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    text += (i % per_line == 0 ? label : "") + formatted(format, numbers[i]);
    text += i + 1 == numbers.size() || i % per_line == per_line - 1 ? "\n" : "";
  }
  return text;
}

/// The text of a formatted checkpoint file; beta orbitals (negatives of the alpha ones) unless the method
/// begins with R.
inline std::string fchk_text(const SmallFchk& fields = {}) {
  Numbers atomic_numbers, coordinates, types, lengths, centres, exponents, coefficients, sp_coefficients;
  for (const SmallAtom& atom : fields.atoms) {
    atomic_numbers.push_back(atom.atomic_number);
    append(coordinates, {atom.coord, atom.coord + 3});
  }
  unsigned basis_count = 0;
  for (const SmallShell& shell : fields.shells) {
    basis_count += shell_function_count(shell.type);
    types.push_back(shell.type), centres.push_back(shell.atom);
    lengths.push_back(static_cast<double>(shell.exponents.size()));
    append(exponents, shell.exponents), append(coefficients, shell.coefficients);
    append(sp_coefficients, shell.sp_coefficients), sp_coefficients.resize(exponents.size());
  }
  Numbers energies, alpha, beta;
  for (unsigned i = 0; i < basis_count - fields.removed; ++i) {
    energies.push_back(fields.energy(i));
    for (unsigned j = 0; j < basis_count; ++j) {
      alpha.push_back(fields.coefficient(i, j)), beta.push_back(-alpha.back());
    }
  }
  constexpr const char *integers = "%12.0f", *reals = "%24.16E";
  std::string text = fields.title + "\nSP        " + fields.method + "       small\n";
  const auto scalar = [&](const char* label, std::size_t value) {
    text += formatted("%-43sI     ", label) + formatted("%12zu\n", value);
  };
  const auto array = [&](const char* label, const char* format, const Numbers& numbers) {
    text +=
        formatted("%-43s    N=", label) + formatted("%12zu\n", numbers.size()) + lines_of(numbers, format, 5);
  };
  scalar("Number of atoms", fields.atoms.size());
  scalar("Charge", 1);
  scalar("Multiplicity", 3);
  scalar("Number of electrons", fields.electrons);
  scalar("Number of alpha electrons", fields.alpha_electrons);
  scalar("Number of beta electrons", fields.beta_electrons);
  scalar("Number of basis functions", basis_count);
  array("Atomic numbers", integers, atomic_numbers);
  array("Number nobody reads", reals, coordinates);
  array("Current cartesian coordinates", reals, coordinates);
  scalar("Number of contracted shells", fields.shells.size());
  scalar("Number of primitive shells", exponents.size());
  scalar("Highest angular momentum", 4);
  array("Shell types", integers, types);
  array("Number of primitives per shell", integers, lengths);
  array("Shell to atom map", integers, centres);
  array("Primitive exponents", reals, exponents);
  array("Contraction coefficients", reals, coefficients);
  array("P(S=P) Contraction coefficients", reals, sp_coefficients);
  array("Alpha Orbital Energies", reals, energies);
  array("Alpha MO coefficients", reals, alpha);
  if (fields.method[0] != 'R') {
    array("Beta Orbital Energies", reals, energies);
    array("Beta MO coefficients", reals, beta);
  }
  return text;
}

/// The occupied orbitals of a restricted wavefunction over Cartesian shells as the text of a WFN file: every
/// primitive of a contraction on its own, with the product of contraction and orbital coefficient.
inline std::string wfn_text(const Molecule& molecule) {
  constexpr std::array first_types = {1, 2, 5, 11, 21};  // by shell type code
  const unsigned orbital_count = molecule.electron_count / 2;
  Numbers centres, types, exponents;
  std::vector<Numbers> coefficients(orbital_count);
  for (unsigned i = 0; i < molecule.basis_count; ++i) {
    const BasisFunction& function = molecule.basis[i];
    for (unsigned k = 0; k < function.primitive_count; ++k) {
      centres.push_back(function.atom_index + 1);
      types.push_back(first_types.at(static_cast<unsigned>(function.type)) + function.component);
      exponents.push_back(function.exponents[k]);
      for (unsigned r = 0; r < orbital_count; ++r) {
        coefficients[r].push_back(molecule.alpha_orbitals[r].coefficients[i] * function.coefficients[k]);
      }
    }
  }
  std::string text = std::string(molecule.title) + "\n" + formatted("GAUSSIAN     %5u", orbital_count) +
                     formatted(" MOL ORBITALS      %5zu", exponents.size()) +
                     formatted(" PRIMITIVES   %5u NUCLEI\n", molecule.atom_count);
  for (const Atom& atom : std::span(molecule.atoms, molecule.atom_count)) {
    text += formatted("  %-22s", atom.symbol) + lines_of({atom.coord, atom.coord + 3}, "%24.16E", 3);
  }
  text += lines_of(centres, "%4.0f", 20, "CENTRE ASSIGNMENTS  ");
  text += lines_of(types, "%4.0f", 20, "TYPE ASSIGNMENTS    ");
  text += lines_of(exponents, "%24.16E", 5, "EXPONENTS ");
  for (unsigned r = 0; r < orbital_count; ++r) {
    text +=
        formatted("%-62s", "MO  OCC NO = 2.0") + formatted("%24.16E\n", molecule.alpha_orbitals[r].energy);
    text += lines_of(coefficients[r], "%24.16E", 5);
  }
  return text + "END DATA\n";
}

/// Makes a text the input file of the run.
inline void set_input(const Scratch& scratch, const std::string& text) {
  write_file(scratch / "input", text);
  set_name(glob_file_input, scratch / "input");
}

using ReadInput = void (*)(Molecule* molecule);  // fcheck_read or wfn_read

/// The molecule that a reader makes of a text.
inline auto read_text(ReadInput read, const std::string& text) {
  const Scratch scratch;
  set_input(scratch, text);
  const auto clean = [](Molecule* molecule) { mem_clean(molecule, nullptr), delete molecule; };
  std::unique_ptr<Molecule, decltype(clean)> molecule(new Molecule{});
  const int descriptor = next_descriptor();
  read(molecule.get());
  EXPECT_EQ(next_descriptor(), descriptor) << "the file is left open";
  return molecule;
}

/// All numbers that a reader has taken: those of a WFN file, and the beta orbitals.
inline std::string all_numbers(const Molecule& molecule) {
  std::string text = wfn_text(molecule);
  for (const Orbital& orbital :
       std::span(molecule.beta_orbitals, molecule.beta_orbitals != nullptr ? molecule.basis_count : 0)) {
    const double* const coefficients = orbital.coefficients;
    text += formatted("%a", orbital.energy) +
            lines_of({coefficients, coefficients + molecule.basis_count}, "%a ", 9);
  }
  return text;
}

/// The rows of a table in tests/data: texts between bars, in which \n stands for a newline and \r for a
/// return.
inline std::vector<std::vector<std::string>> rows_of(const std::string& name) {
  std::vector<std::vector<std::string>> rows;
  std::istringstream table(read_file(std::string(ORVA_TEST_DATA "/") + name));
  for (std::string line; std::getline(table, line);) {
    std::vector<std::string>& row = rows.emplace_back(1);
    for (auto c = line.begin(); c != line.end(); ++c) {
      if (*c == '|') {
        row.emplace_back();
      } else {
        row.back() += *c != '\\' ? *c : *++c == 'n' ? '\n' : '\r';
      }
    }
  }
  return rows;
}

/// What an input means, for a scope.
class Convention {
 public:
  explicit Convention(std::int16_t number) { conf_input_convention = number; }
  ~Convention() { conf_input_convention = 0; }
  Convention(const Convention&) = delete;
};

/// A way to break a file: `from`, which must occur in it, becomes `to`, or the file ends there without one.
struct Breakage {
  std::string from;
  std::optional<std::string> to;
  std::string message;
};

/// Those of a table: <end> in the second column ends the file.
inline std::vector<Breakage> breakages_of(const std::string& table) {
  std::vector<Breakage> breakages;
  for (const std::vector<std::string>& row : rows_of(table)) {
    breakages.push_back({row[0], row[1] != "<end>" ? std::optional(row[1]) : std::nullopt, row[2]});
  }
  return breakages;
}

inline std::string broken(std::string text, const std::string& from, const std::optional<std::string>& to) {
  const std::size_t place = text.find(from);
  EXPECT_NE(place, std::string::npos) << from;
  return to ? text.replace(place, from.size(), *to) : text.substr(0, place);
}

/// Breaks a text in each of the ways and reads it in a child process, which must end with the message,
/// perhaps behind a line that is told.
inline void expect_rejected(ReadInput read, const std::string& text, const std::vector<Breakage>& breakages,
                            const std::string& warning = "") {
  const Scratch scratch;
  for (const auto& [from, to, message] : breakages) {
    SCOPED_TRACE(from);
    set_input(scratch, broken(text, from, to));
    Molecule molecule{};
    expect_exit([&] { read(&molecule); }, 1, warning + "error: " + message + "\n");
  }
}

/// A file that holds `numbers` numbers of a digit behind `text`, or could, is read on, to its next fault. One
/// byte less is too short for the last count in `text`.
inline void expect_doubted(ReadInput read, const std::string& text, std::uint64_t numbers,
                           const std::string& doubt, const std::string& next_fault) {
  const Scratch scratch;
  for (const auto& [size, message] : {std::pair{2 * numbers - 2, doubt}, {2 * numbers - 1, next_fault}}) {
    set_input(scratch, text);
    std::filesystem::resize_file(glob_file_input, text.size() + size);
    Molecule molecule{};
    expect_error([&] { read(&molecule); }, message);
  }
}

/// Reads every beginning of a text in a child process. Those shorter than `needed` must be rejected, all
/// others give the same molecule as the whole. Only the one that is a whole file of its own may give another.
inline void expect_cuts_rejected(ReadInput read, const std::string& text, std::size_t needed,
                                 std::size_t whole = std::string::npos) {
  struct FatalError {};  // thrown in the place of the end of the process
  const auto read_cuts = [&] {
    const int found = dup(STDERR_FILENO);
    std::freopen("/dev/null", "w", stdout);
    std::freopen("/dev/null", "w", stderr);
    const std::string expected = all_numbers(*read_text(read, text));
    msg_error_fce_set([](void*, void*) { throw FatalError(); }, nullptr, nullptr);
    const Scratch scratch;
    set_input(scratch, text);
    const int descriptor = next_descriptor();
    for (std::size_t length = text.size(); length-- > 0;) {
      std::filesystem::resize_file(glob_file_input, length);
      std::string result = "rejected";
      Molecule molecule{};
      msg_ef.armed = 1;
      try {
        read(&molecule);
        result = all_numbers(molecule) == expected ? "the whole" : "another";
      } catch (const FatalError&) {
        close(descriptor);  // that of the file
      }
      if (result != (length == whole ? "another" : length < needed ? "rejected" : "the whole")) {
        dprintf(found, "%s: the first %zu characters\n", result.c_str(), length);
      }
    }
    std::filesystem::remove_all(scratch.path());
    _exit(0);  // what was left behind by the errors is not to be missed
  };
  EXPECT_EXIT(read_cuts(), testing::ExitedWithCode(0), testing::Eq(""));
}

/// Shells of every kind, with heads that fade at different distances, an order that does not, and a function
/// without primitives. Some energies are positive.
inline SmallFchk every_shell(const std::string& method) {
  SmallFchk fields = {.method = method, .electrons = 15, .alpha_electrons = 8, .beta_electrons = 5};
  for (const int type : {0, 1, 2, 3, 4, -2, -3, -4}) {
    if (type >= 0 || method[0] == 'U') {
      fields.shells.push_back({type, 1, {800.0, 90.0, 7.0, 0.9}, {0.1, -0.2, 0.5, 0.25}, {}});
      fields.shells.push_back({type, 2, {0.4, 30.0, 3.0}, {0.5, 0.125, 1e-9}, {}});
    }
  }
  fields.shells.push_back({0, 2, {}, {}, {}});
  fields.coefficient = [](unsigned i, unsigned j) { return std::sin(1.0 + i + 0.7 * j * (i + 1)); };
  fields.energy = [](unsigned i) { return i % 3 == 1 ? 0.25 : -0.5 - i; };
  return fields;
}
