#pragma once

#include <array>
#include <cstdio>
#include <functional>
#include <memory>
#include <numeric>
#include <span>
#include <string>
#include <vector>

#include "memory.hpp"
#include "setup.hpp"
#include "shell.hpp"
#include "support.hpp"

// Small wavefunction files, made in memory.

struct SmallAtom {
  unsigned atomic_number;
  double coord[3];  // bohr
};

struct SmallShell {
  int type;
  unsigned atom;  // counted from 1
  std::vector<double> exponents, coefficients, sp_coefficients;
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
};

/// printf's format with one argument.
template <class Argument>
std::string formatted(const char* format, Argument argument) {
  char text[128];
  std::snprintf(text, sizeof text, format, argument);
  return text;
}

/// The numbers that `get` makes of each record , one behind the other.
template <class Records, class Get>
std::vector<double> collected(const Records& records, Get get) {
  std::vector<double> all;
  for (const auto& record : records) {
    const std::vector<double> numbers = get(record);
    all.insert(all.end(), numbers.begin(), numbers.end());
  }
  return all;
}

/// Numbers in lines, each after a label and of at most `per_line`.
inline std::string lines_of(const std::vector<double>& numbers, const char* format, std::size_t per_line,
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
  std::string text = fields.title + "\nSP        " + fields.method + "       small\n";
  const auto scalar = [&](const char* label, std::size_t value) {
    text += formatted("%-43sI     ", label) + formatted("%12zu\n", value);
  };
  const auto numbers = [&](const char* label, const char* format, const std::vector<double>& values) {
    text +=
        formatted("%-43s    N=", label) + formatted("%12zu\n", values.size()) + lines_of(values, format, 5);
  };
  const auto of_atoms = [&](const char* label, const char* format, auto get) {
    numbers(label, format, collected(fields.atoms, get));
  };
  const auto of_shells = [&](const char* label, const char* format, auto get) {
    numbers(label, format, collected(fields.shells, get));
  };
  std::size_t primitive_count = 0;
  std::vector<unsigned> indices;  // of basis functions and orbitals
  for (const SmallShell& shell : fields.shells) {
    primitive_count += shell.exponents.size();
    indices.resize(indices.size() + shell_function_count(shell.type));
  }
  std::iota(indices.begin(), indices.end(), 0U);

  scalar("Number of atoms", fields.atoms.size());
  scalar("Charge", 1);
  scalar("Multiplicity", 3);
  scalar("Number of electrons", fields.electrons);
  scalar("Number of alpha electrons", fields.alpha_electrons);
  scalar("Number of beta electrons", fields.beta_electrons);
  scalar("Number of basis functions", indices.size());
  using Numbers = std::vector<double>;
  constexpr const char* integer = "%12.0f";
  constexpr const char* real = "%24.16E";
  const auto coordinates = [](const SmallAtom& atom) { return Numbers(atom.coord, atom.coord + 3); };
  of_atoms("Atomic numbers", integer, [](const SmallAtom& atom) { return Numbers(1, atom.atomic_number); });
  of_atoms("Number nobody reads", real, coordinates);
  of_atoms("Current cartesian coordinates", real, coordinates);
  scalar("Number of contracted shells", fields.shells.size());
  scalar("Number of primitive shells", primitive_count);
  scalar("Highest angular momentum", 4);
  of_shells("Shell types", integer, [](const SmallShell& shell) { return Numbers(1, shell.type); });
  of_shells("Number of primitives per shell", integer,
            [](const SmallShell& shell) { return Numbers(1, static_cast<double>(shell.exponents.size())); });
  of_shells("Shell to atom map", integer, [](const SmallShell& shell) { return Numbers(1, shell.atom); });
  of_shells("Primitive exponents", real, [](const SmallShell& shell) { return shell.exponents; });
  of_shells("Contraction coefficients", real, [](const SmallShell& shell) { return shell.coefficients; });
  of_shells("P(S=P) Contraction coefficients", real, [](SmallShell shell) {
    shell.sp_coefficients.resize(shell.exponents.size());
    return shell.sp_coefficients;
  });
  const auto orbitals = [&](const std::string& spin, double sign) {
    numbers((spin + " Orbital Energies").c_str(), real,
            collected(indices, [&](unsigned i) { return Numbers{fields.energy(i)}; }));
    numbers((spin + " MO coefficients").c_str(), real, collected(indices, [&](unsigned i) {
              return collected(indices, [&](unsigned j) { return Numbers{sign * fields.coefficient(i, j)}; });
            }));
  };
  orbitals("Alpha", 1.0);
  if (fields.method[0] != 'R') {
    orbitals("Beta", -1.0);
  }
  return text;
}

/// The occupied orbitals of a restricted wavefunction over Cartesian shells as the text of a WFN file: every
/// primitive of a contraction on its own, with the product of contraction and orbital coefficient.
inline std::string wfn_text(const Molecule& molecule) {
  constexpr std::array first_types = {1, 2, 5, 11, 21};  // by shell type code
  using Numbers = std::vector<double>;
  const std::span basis(molecule.basis, molecule.basis_count);
  const auto of_primitives = [&](auto get) {
    return collected(basis, [&](const BasisFunction& function) {
      Numbers numbers;
      for (unsigned k = 0; k < function.primitive_count; ++k) {
        numbers.push_back(get(function, k));
      }
      return numbers;
    });
  };
  const Numbers exponents =
      of_primitives([](const BasisFunction& function, unsigned k) { return function.exponents[k]; });
  const unsigned orbital_count = molecule.electron_count / 2;
  std::string text = std::string(molecule.title) + "\n" + formatted("GAUSSIAN     %5u", orbital_count) +
                     formatted(" MOL ORBITALS      %5zu", exponents.size()) +
                     formatted(" PRIMITIVES   %5u NUCLEI\n", molecule.atom_count);
  for (const Atom& atom : std::span(molecule.atoms, molecule.atom_count)) {
    text += formatted("  %-22s", atom.symbol) + lines_of({atom.coord, atom.coord + 3}, "%24.16E", 3);
  }
  text += lines_of(of_primitives([](const auto& function, unsigned) { return function.atom_index + 1; }),
                   "%4.0f", 20, "CENTRE ASSIGNMENTS  ");
  text += lines_of(of_primitives([&](const auto& function, unsigned) {
                     return first_types.at(static_cast<unsigned>(function.type)) + function.component;
                   }),
                   "%4.0f", 20, "TYPE ASSIGNMENTS    ");
  text += lines_of(exponents, "%24.16E", 5, "EXPONENTS ");
  for (const Orbital& orbital : std::span(molecule.alpha_orbitals, orbital_count)) {
    text += formatted("%-62s", "MO  OCC NO = 2.0") + formatted("%24.16E\n", orbital.energy);
    text += lines_of(of_primitives([&](const BasisFunction& function, unsigned k) {
                       return orbital.coefficients[&function - basis.data()] * function.coefficients[k];
                     }),
                     "%24.16E", 5);
  }
  return text + "END DATA\n";
}

struct MoleculeCleaner {
  void operator()(Molecule* molecule) const {
    mem_clean(molecule, nullptr);
    delete molecule;
  }
};

/// Makes a text the input file of the run, as long as this lives.
class InputFile {
 public:
  explicit InputFile(const std::string& text) {
    write_file(scratch_ / "input", text);
    std::snprintf(glob_file_input, sizeof glob_file_input, "%s", (scratch_ / "input").c_str());
  }

 private:
  Scratch scratch_;
};

/// fcheck_read or wfn_read.
using ReadInput = void (*)(Molecule* molecule);

/// The molecule that a reader makes of a text.
inline std::unique_ptr<Molecule, MoleculeCleaner> read_text(ReadInput read, const std::string& text) {
  const InputFile input(text);
  std::unique_ptr<Molecule, MoleculeCleaner> molecule(new Molecule{});
  read(molecule.get());
  return molecule;
}

/// Reads a text in a child process, which must end with the message.
inline void expect_rejected(ReadInput read, const std::string& text, const std::string& message) {
  const InputFile input(text);
  Molecule molecule{};
  expect_error([&] { read(&molecule); }, message);
}

/// A way to break a file: `from`, which must occur in it, becomes `to`, or the file ends there if `to` is
/// null.
struct Breakage {
  const char* from;
  const char* to;
  const char* message;
};

inline std::string broken(std::string text, const char* from, const char* to) {
  const std::size_t place = text.find(from);
  EXPECT_NE(place, std::string::npos) << from;
  return to == nullptr ? text.substr(0, place) : text.replace(place, std::string(from).size(), to);
}
