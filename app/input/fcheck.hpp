#pragma once

// Formatted checkpoint files.

struct Molecule;

/// Fills a molecule that mem_init_mol has cleared from the formatted checkpoint file named by
/// glob_file_input, and sets inp_rest_scf. Lengths are in bohr, energies in hartree, as in the file. Whatever
/// is missing, contradictory, cut off or not a number in the file ends the run. Only the beta orbitals of a
/// wavefunction that does not count as restricted may all be absent: that is told, and they
/// are zeros then, or left out with INPUT_CONVENTION 1.
void fcheck_read(Molecule* molecule);
