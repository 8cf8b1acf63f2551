#pragma once

// WFN files: orbitals over single primitives, all doubly occupied unless INPUT_CONVENTION says otherwise.

class Reader;
struct Molecule;

/// Fills a molecule that mem_init_mol has cleared from the WFN file named by glob_file_input, and sets
/// inp_rest_scf to 1. INPUT_CONVENTION tells what a file means. Every primitive becomes a basis function with
/// the contraction coefficient 1. Lengths are in bohr, energies in hartree, as in the file. Whatever is
/// missing, cut off or not a number ends the run.
void wfn_read(Molecule* molecule);

// The sections of the file, in this order. Each ends the run with a message of its own.

/// One line per atom: the symbol and, from column 25 on, the coordinates.
void wfn_read_atoms(Molecule* molecule, Reader& reader);

/// The centre, type and exponent blocks, made into `basis_count` basis functions.
void wfn_read_basis(Molecule* molecule, Reader& reader);

/// `electron_count` / 2 orbitals: a header line with the energy from column 64 on, and the coefficients.
void wfn_read_orbitals(Molecule* molecule, Reader& reader);

/// A block of `count` numbers, `per_line` to a line, each line after a label of `label_width` characters.
void wfn_read_udata(unsigned* values, unsigned count, unsigned per_line, unsigned label_width,
                    Reader& reader);
void wfn_read_fdata(double* values, unsigned count, unsigned per_line, unsigned label_width, Reader& reader);
