#pragma once

// Formatted checkpoint files.

struct Molecule;

/// Fills a molecule that mem_init_mol has cleared from the formatted checkpoint file named by
/// glob_file_input, and sets inp_rest_scf. Lengths are in bohr, energies in hartree, as in the file. Whatever
/// is missing, contradictory, cut off or not a number in the file ends the run. Only the beta orbitals of a
/// wavefunction that does not count as restricted may all be absent: they are zeros then, which a warning
/// tells unless arg_quiet is set.
void fcheck_read(Molecule* molecule);

/// Sets inp_rest_scf from the second line of the file: 1 if its second word begins with R, else 0. Without a
/// second word the run ends with "cannot find method which was used to compute MOs".
void fcheck_input_method(const char* line);

/// The last word of a line as an integer; a newline belongs to the word before it. If that word is no
/// integer, the run ends with "cannot convert last word into integer".
int fcheck_last_int(const char* line);
