#pragma once

#include <cstdint>

// The tree that connects all atoms over the shortest total length, rooted at the first atom.

/// The children of atom v are child[first[v]] up to, but not including, child[graph_end(graph, v)],
/// in increasing atom number.
struct Graph {
  int* first;
  int* child;
  std::uint32_t nvert;  // atoms, at least 1
  std::uint32_t nedge;  // edges of the tree, nvert - 1
};

/// State of a pair of atoms in a square matrix, the same at (i, j) and (j, i).
enum GraphEdge : int {
  graph_edge_rejected = -1,  // its atoms were already connected
  graph_edge_undecided = 0,
  graph_edge_tree = 1,
  graph_edge_walked = 2  // of the tree, and already passed while rooting it
};

/// Pairs at this distance (bohr) or more are never joined.
inline constexpr double graph_reach = 1e6;

/// The tree over the symmetric distances (bohr) of n atoms, n at least 1: what graph_connect and graph_fill
/// make, without a matrix of states. Ends the run if an atom is out of reach of the others.
Graph* graph_create(const double* const* distances, unsigned n);

/// Releases the tree; null is allowed.
void graph_free(Graph* graph);

/// Position in `child` behind the children of an atom.
unsigned graph_end(const Graph* graph, unsigned atom);

// The same in steps, over a matrix of states. The program itself takes graph_create.

/// Fills the matrix of edge states, n at least 1, as if by repeated search: the nearest undecided pair is
/// joined, or rejected if it is connected already, until the tree is complete. Ends the run if an atom is out
/// of reach of the others.
void graph_connect(const double* const* distances, int** edges, unsigned n);

/// The nearest undecided pair, row > column; of equal distances the one with the smallest row, then column.
/// (0, 0) if there is none closer than graph_reach.
void graph_find_nearest(const double* const* distances, const int* const* edges, unsigned n, unsigned* row,
                        unsigned* column);

/// Joins the component of atom b to that of atom a: every label equal to b's becomes a's.
void graph_merge_comp(unsigned* labels, unsigned n, unsigned a, unsigned b);

/// Roots the tree in `edges` at atom 0 and fills `first` and `child`; the tree's edges become walked.
void graph_fill(Graph* graph, int** edges, unsigned n);

/// Turns `first` and `child` from visit order into atom order; order[p] is the atom of visit p.
void graph_reorder(Graph* graph, const int* order);
