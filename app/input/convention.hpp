#pragma once

#include <cstddef>
#include <string_view>

struct Molecule;

// What an input file means. Its format leaves open what orbital coefficients multiply, in which order some
// functions stand, and which orbitals are occupied; INPUT_CONVENTION 0 takes this program's own view, 1 that
// of the programs that write such files. Whatever looks as if a file was not meant as it is read is told.

/// Of a file, so many bytes are looked into to know its format.
inline constexpr std::size_t convention_beginning = 4096;

/// The format that the beginning of a file shows, input_fchk or input_wfn; 0 if it shows none, or both.
int convention_format_of(std::string_view beginning);

/// Tells if the beginning of the input is of the other format than inp_format's.
void convention_tell_format(std::string_view beginning);

/// For a molecule as read from a WFN file. With 1: coefficients multiply bare primitives x^i y^j z^k
/// exp(-αr²), f functions stand in the order of atoms-in-molecules programs, and orbitals have the
/// occupations of the file; one below -0.01 ends the run. Tells if norms of occupied orbitals show the other
/// convention (0) or are not 1 (1), and which occupations look wrong (1).
void convention_settle_wfn(Molecule* molecule);

/// For INPUT_CONVENTION 1 and a molecule as read from a formatted checkpoint file: sets inp_rest_scf and
/// which orbitals are occupied. Without beta orbitals all electrons are in the alpha orbitals, some of them
/// perhaps singly. The beta orbitals of a closed shell go if they are the alpha ones once more.
void convention_place_electrons(Molecule* molecule);

/// For a molecule as read from a formatted checkpoint file. With 1: pure g functions have norm 1, and
/// Cartesian g functions stand in that of two orders which brings the orbitals' norms nearer to 1. Tells as
/// for WFN files.
void convention_settle_fchk(Molecule* molecule);
