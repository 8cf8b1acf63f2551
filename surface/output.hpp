#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "app/model/molecule.hpp"
#include "surface/options.hpp"

/// The part of a molecule's output that only its surface tells. In a line of JSON it begins behind the first
/// keys.
void output_surface(std::FILE* stream, const std::string& input, const Molecule& molecule,
                    const Surface& surface, const SurfaceOptions& options);

/// What stands before the outputs of all molecules: the names of a table's columns.
std::string output_heading(const SurfaceOptions& options);

/// The beginning of a line of JSON, with the keys `input`, `error` if there is one, and `warnings`.
std::string output_json_beginning(const std::string& input, const std::string& error,
                                  const std::vector<std::string>& warnings);

/// A text between quotation marks as JSON has it; bytes that are not UTF-8 become U+FFFD.
std::string output_json_text(const std::string& text);

/// The mesh as a PLY file: places in bohr, values in hartree. What cannot be written is told as for
/// file_close.
void output_mesh(const std::string& path, const Surface& surface);
