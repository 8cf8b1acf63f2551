#include "atom.hpp"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>

#include "str_case.hpp"

constexpr char atom_names[atom_last][3] = {
    "H",  "He", "Li", "Be", "B",  "C",  "N",  "O",  "F",  "Ne", "Na", "Mg", "Al", "Si", "P",  "S",
    "Cl", "Ar", "K",  "Ca", "Sc", "Ti", "V",  "Cr", "Mn", "Fe", "Co", "Ni", "Cu", "Zn", "Ga", "Ge",
    "As", "Se", "Br", "Kr", "Rb", "Sr", "Y",  "Zr", "Nb", "Mo", "Tc", "Ru", "Rh", "Pd", "Ag", "Cd",
    "In", "Sn", "Sb", "Te", "I",  "Xe", "Cs", "Ba", "La", "Ce", "Pr", "Nd", "Pm", "Sm", "Eu", "Gd",
    "Tb", "Dy", "Ho", "Er", "Tm", "Yb", "Lu", "Hf", "Ta", "W",  "Re", "Os", "Ir", "Pt", "Au", "Hg",
    "Tl", "Pb", "Bi", "Po", "At", "Rn", "Fr", "Ra", "Ac", "Th", "Pa", "U",  "Np", "Pu", "Am", "Cm",
    "Bk", "Cf", "Es", "Fm", "Md", "No", "Lr", "Rf", "Db", "Sg", "Bh", "Hs", "Mt", "Ds", "Rg",
};

constexpr double atom_masses[atom_last + 1] = {
    1.00794,   4.002602, 6.941,     9.012182, 10.811,    12.0107, 14.00674,  15.9994, 18.998403, 20.1797,
    22.98977,  24.305,   26.981538, 28.0855,  30.973761, 32.066,  35.4527,   39.948,  39.0983,   40.078,
    44.95591,  47.867,   50.9415,   51.9961,  54.938049, 55.845,  58.9332,   58.6934, 63.546,    65.39,
    69.723,    72.61,    74.9216,   78.96,    79.904,    83.8,    85.4678,   87.62,   88.90585,  91.224,
    92.90638,  95.94,    98.0,      101.07,   102.9055,  106.42,  107.8682,  112.411, 114.818,   118.71,
    121.76,    127.6,    126.90447, 131.29,   132.90545, 137.327, 138.9055,  140.116, 140.90765, 144.24,
    145.0,     150.36,   151.964,   157.25,   158.92534, 162.5,   164.93032, 167.26,  168.93421, 173.04,
    174.967,   178.49,   180.9479,  183.84,   186.207,   190.23,  192.217,   195.078, 196.96655, 200.59,
    204.3833,  207.2,    208.98038, 209.0,    210.0,     222.0,   223.0,     226.0,   227.0,     232.0381,
    231.03588, 238.0289, 237.0,     244.0,    243.0,     247.0,   247.0,     251.0,   252.0,     257.0,
    258.0,     259.0,    262.0,     261.0,    262.0,     263.0,   262.0,     265.0,   266.0,     269.0,
    272.0,     0.0,
};

namespace {

constexpr std::size_t symbol_size = 16;  // of a symbol to look up, terminator included

constexpr char no_element[3] = "X";

constexpr bool is_entry(unsigned atomic_number, std::string_view symbol, double mass) {
  return atom_names[atomic_number - 1] == symbol && atom_masses[atomic_number - 1] == mass;
}
static_assert(std::size(atom_names) == 111 && std::size(atom_masses) == 112);
static_assert(is_entry(1, "H", 1.00794) && is_entry(6, "C", 12.0107) && is_entry(26, "Fe", 55.845));
static_assert(is_entry(43, "Tc", 98.0) && is_entry(79, "Au", 196.96655) && is_entry(111, "Rg", 272.0));
static_assert(atom_masses[atom_last] == 0.0);

}  // namespace

unsigned atom_num(const char* symbol) {
  if (std::strlen(symbol) >= symbol_size) {
    return 0;
  }
  char standard[symbol_size];
  str_cLowcase(symbol, standard);
  for (unsigned i = 0; i < atom_last; ++i) {
    if (std::strcmp(atom_names[i], standard) == 0) {
      return i + 1;
    }
  }
  return 0;
}

char* atom_name(char* name, int atomic_number) {
  const bool is_element = atomic_number >= 1 && atomic_number <= static_cast<int>(atom_last);
  std::memcpy(name, is_element ? atom_names[atomic_number - 1] : no_element, sizeof no_element);
  return name;
}

double atom_mass(unsigned atomic_number) {
  return atom_masses[std::min(atomic_number - 1, atom_last)];  // number 0 wraps round to the last entry
}

double atom_smass(const char* symbol) { return atom_mass(atom_num(symbol)); }
