#pragma once

#include <cstddef>
#include <vector>

#include "app/model/cube_definition.hpp"
#include "app/model/molecule.hpp"
#include "surface/vectors.hpp"

// The grid on which the surface is looked for, and which of its rows can come near it.

/// Rows run along the longest axis of the molecule; the axes keep their cyclic order.
struct Lattice {
  CubeDefinition cube;
  Point steps[3];                   // of the three indices, bohr
  std::vector<unsigned char> rows;  // [i · npoints[1] + j]: whether any nucleus is near
  bool has_row(long i, long j) const;
  Point point(unsigned i, unsigned j, unsigned k) const;
};

/// A grid of the given step that reaches `reach` beyond the nuclei, bohr. Ends the run if it would be too
/// large, or the molecule lies nowhere.
Lattice lattice_make(const Molecule* molecule, double step, double reach);

/// How far from the nuclei a surface of this density (bohr^-3) usually lies at most, bohr: where to begin.
double lattice_first_reach(double level);
