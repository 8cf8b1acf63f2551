#pragma once

#include <cstdio>

#include "app/cube/cube.hpp"
#include "app/model/memory.hpp"

// The report of a run, in its order, and the choice of the cube files.

/// What the report is made of. The caller opens and closes the stream and releases the distance matrix.
struct Report {
  const Molecule* molecule;
  const CubeDefinition* cube;
  std::FILE* stream;
  double** distances;  // atom × atom, bohr; null until a listing needs it
};

/// The file named by glob_file_output, created or emptied, or standard output if there is no name.
/// A file that cannot be opened ends the run.
std::FILE* set_output();

/// Closes the stream of set_output; standard output is flushed and stays open. Text that could not be written
/// is told by the warning "file closing failured".
void close_output(std::FILE* stream);

/// Prints the name of the program in a frame, unless the run is quiet.
void report_banner(const Report& report);

/// Prints the listings that the settings ask for, each under its heading, unless the run is quiet.
/// Makes the distance matrix when the first listing needs it.
void report_listings(Report* report);

/// Ends the run, before any file is opened for writing, if the settings ask for what cannot be done (see
/// cube_check), or if two of the files that the run reads and writes are the same one.
void report_check(const Molecule* molecule);

/// Writes the cube files that the settings ask for, quiet or not: at most one kind of orbital file and one
/// kind of density file. Progress is told in the report.
void report_cubes(const Report& report);

/// Prints the closing line, unless the run is quiet.
void report_end(const Report& report);
