#pragma once

// The elements, from hydrogen to roentgenium.

inline constexpr unsigned atom_last = 111;  // highest atomic number

/// Symbol and standard atomic mass (unified atomic mass units) at atomic number minus 1; the masses end with
/// a 0.0 for no element.
extern const char atom_names[atom_last][3];
extern const double atom_masses[atom_last + 1];

/// Atomic number of a symbol in any case; 0 if it names no element.
unsigned atom_num(const char* symbol);

/// Copies the symbol of an element, or "X" for any other number; `name` must hold 3 characters. Returns it.
char* atom_name(char* name, int atomic_number);

/// Mass of an element in unified atomic mass units; 0.0 if there is none.
double atom_mass(unsigned atomic_number);
double atom_smass(const char* symbol);
