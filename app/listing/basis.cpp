#include "app/listing/basis.hpp"

#include <algorithm>
#include <array>
#include <span>
#include <string>

#include "app/model/shell.hpp"
#include "lib/atom.hpp"

namespace {

struct Symbol {
  short type;
  const char* text;
};

constexpr unsigned symbol_size = 4;  // of the longest, terminator included

constexpr std::array symbols = {
    Symbol{0, "S"},   Symbol{1, "P"},   Symbol{sp_shell, "SP"}, Symbol{2, "D6"},
    Symbol{-2, "D5"}, Symbol{3, "F10"}, Symbol{-3, "F7"},
};

const char* symbol_of(short type) {
  const auto symbol = std::ranges::find(symbols, type, &Symbol::type);
  return symbol != symbols.end() ? symbol->text : "X";
}

// Element and number of the centre, such as "H12".
std::string atom_label(const BasisFunction& function) {
  char symbol[4];
  atom_name(symbol, static_cast<int>(function.atom->atomic_number));
  return symbol + std::to_string(function.atom_index + 1);
}

// What a line of a listing says of a function after its number.
void print_centre(std::FILE* stream, const BasisFunction& function, short type) {
  std::fprintf(stream, ", Atom %5s, Type %3s, Num primitive %3u\n", atom_label(function).c_str(),
               symbol_of(type), function.primitive_count);
}

}  // namespace

char* basis_shell_sym(char* symbol, short type) {
  std::snprintf(symbol, symbol_size, "%s", symbol_of(type));
  return symbol;
}

void basis_print_shell(const Molecule* molecule, std::FILE* stream) {
  unsigned shell = 1;
  for (unsigned i = 0; i < molecule->basis_count; ++shell) {
    const BasisFunction& function = molecule->basis[i];
    std::fprintf(stream, "  Shell %3u", shell);
    print_centre(stream, function, function.shell_type);
    for (unsigned p = 0; p < function.primitive_count; ++p) {
      std::fprintf(stream, "%19.8e  %15.8e", function.exponents[p], function.coefficients[p]);
      if (function.shell_type == sp_shell) {
        std::fprintf(stream, " %15.8e", molecule->basis[i + 1].coefficients[p]);
      }
      std::fputc('\n', stream);
    }
    i += shell_function_count(function.shell_type);
  }
}

void basis_print(const Molecule* molecule, std::FILE* stream) {
  unsigned number = 0;
  for (const BasisFunction& function : std::span(molecule->basis, molecule->basis_count)) {
    std::fprintf(stream, "  Base function %3u", ++number);
    print_centre(stream, function, function.type);
    for (unsigned p = 0; p < function.primitive_count; ++p) {
      std::fprintf(stream, "    Exp[%u] = %15.8e  Coeff[%u] = %15.8e\n", p + 1, function.exponents[p], p + 1,
                   function.coefficients[p]);
    }
  }
}
