#include "app/model/dmat.hpp"

#include "app/model/molecule.hpp"
#include "lib/distance.hpp"
#include "lib/mat_base.hpp"

double** dmat_alloc(const Molecule* molecule) {
  const unsigned n = molecule->atom_count;
  double** distances = mat_falloc(n, n);
  // Row by row, both halves: to compute a distance again costs less than to store it far away.
  for (unsigned i = 0; i < n; ++i) {
    for (unsigned j = 0; j < n; ++j) {
      distances[i][j] = i == j ? 0.0 : dist_r(molecule->atoms[i].coord, molecule->atoms[j].coord, 3);
    }
  }
  return distances;
}

void dmat_free(const Molecule* molecule, double** distances) {
  if (distances != nullptr) {
    mat_ffree(distances, molecule->atom_count);
  }
}
