#pragma once

#include <cstdio>

#include "app/model/cube_definition.hpp"
#include "app/model/molecule.hpp"

// The report of a run, in its order, and the choice of the cube files.

/// What the report is made of. The caller releases the distance matrix.
struct Report {
  const Molecule* molecule;
  const CubeDefinition* cube;
  std::FILE* stream = nullptr;   // while it is written
  double** distances = nullptr;  // atom × atom, bohr; null until a listing needs it
};

/// The run once its input is read and its grid is complete: opens the report, prints the banner, the listings
/// that the settings ask for, each under its heading, and the closing line, all unless the run is quiet, and
/// writes the cube files, quiet or not: at most one kind of orbital file and one kind of density file. Their
/// progress is told in the report. Ends the run before any file is opened for writing, if the settings ask
/// for what cannot be done (see cube_check), or if two of the files that the run reads and writes are the
/// same one.
void report_write(Report* report);
