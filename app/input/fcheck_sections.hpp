#pragma once

#include <array>
#include <cstdio>
#include <string_view>
#include <vector>

#include "app/input/reorder.hpp"
#include "app/model/molecule.hpp"
#include "lib/reader.hpp"

// The labelled sections of formatted checkpoint files.

inline constexpr unsigned fcheck_section_count = 22;

enum class FchkState : unsigned char { absent, met, read };  // met: too early, before the count of its values

/// A file that is being read, and what is known of it so far.
struct FchkInput {
  FchkInput(std::FILE* stream, Molecule* to) : reader(stream), molecule(to) {}

  bool knows(unsigned Molecule::*count) const;

  Reader reader;
  Molecule* molecule;
  ShellTable shells{};
  std::array<char, sizeof Molecule::title> line{};       // the label line
  std::array<FchkState, fcheck_section_count> states{};  // of the sections
  std::vector<unsigned Molecule::*> known;               // the counts that are
  std::vector<double> coordinates;                       // of the last geometry, bohr
  bool has_orbitals = false;                             // their coefficients
};

/// Reads to the end of the file and takes what its sections hold. With INPUT_CONVENTION 1 the lengths that
/// arrays announce take the place of counts that are missing, and tell how many orbitals there are, and of
/// several geometries the last one before the orbitals holds. What is contradictory, cut off or not a number
/// ends the run.
void fcheck_read_sections(FchkInput& input);

/// Ends the run with "missing section in fchk file - ..." if one is.
void fcheck_check_sections(FchkInput& input);

/// Whether there is a section of beta orbitals: a file without any of them has none, one with a part of them
/// was cut off, or has them before the count that they need.
bool fcheck_has_beta_orbitals(FchkInput& input);

/// The labels of all sections that are read.
std::vector<std::string_view> fcheck_labels();
