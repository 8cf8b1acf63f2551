#include "dmat.hpp"

#include "distance.hpp"
#include "mat_base.hpp"

double** dmat_alloc(const Molecule* molecule) {
  const unsigned n = molecule->atom_count;
  double** distances = mat_falloc(n, n);  // zero-filled, the diagonal too
  for (unsigned i = 0; i < n; ++i) {
    for (unsigned j = 0; j < i; ++j) {
      const double distance = dist_r(molecule->atoms[i].coord, molecule->atoms[j].coord, 3);
      distances[i][j] = distance;
      distances[j][i] = distance;
    }
  }
  return distances;
}
