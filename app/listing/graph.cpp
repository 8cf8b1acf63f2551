#include "app/listing/graph.hpp"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <numeric>
#include <span>
#include <tuple>
#include <vector>

#include "lib/allocate.hpp"
#include "lib/message.hpp"
#include "lib/stack.hpp"
#include "lib/vec_base.hpp"

namespace {

// A pair of atoms, in the order in which pairs are joined: that of graph_find_nearest.
struct Pair {
  double distance;  // bohr
  unsigned row;
  unsigned column;  // below row

  bool is_nearer(const Pair& other) const {
    return std::tie(distance, row, column) < std::tie(other.distance, other.row, other.column);
  }
};

using Neighbours = std::vector<std::vector<unsigned>>;  // of each atom in the tree, ascending

constexpr Pair out_of_reach = {graph_reach, 0, 0};

Pair pair_of(const double* const* distances, unsigned i, unsigned j) {
  return {distances[i][j], std::max(i, j), std::min(i, j)};
}

bool is_in_reach(const Pair& pair) { return pair.distance < graph_reach; }  // NaN is not

// The edges of the tree. As no two pairs are equal in their order, joining the nearest pair again and again
// gives the same tree as growing it from the first atom, always by the nearest pair that leads out of it.
// That looks at every pair once and keeps none but the nearest of each atom.
std::vector<Pair> grow_tree(const double* const* distances, unsigned n) {
  std::vector<Pair> nearest(n, out_of_reach);  // of each atom to those in the tree
  std::vector<unsigned> outside(n - 1);
  std::iota(outside.begin(), outside.end(), 1U);
  std::vector<Pair> edges;
  for (unsigned newest = 0; !outside.empty();) {
    auto best = outside.begin();
    for (auto atom = outside.begin(); atom != outside.end(); ++atom) {
      const Pair pair = pair_of(distances, newest, *atom);
      if (is_in_reach(pair) && pair.is_nearer(nearest[*atom])) {
        nearest[*atom] = pair;
      }
      if (nearest[*atom].is_nearer(nearest[*best])) {
        best = atom;
      }
    }
    newest = *best;
    if (!is_in_reach(nearest[newest])) {
      // A molecule with an atom at infinity or nowhere has no tree.
      msg_fatal_format("cannot connect atom %u with atom 1: distance is not below %g bohr",
                       *std::ranges::min_element(outside) + 1, graph_reach);
    }
    edges.push_back(nearest[newest]);
    *best = outside.back();
    outside.pop_back();
  }
  return edges;
}

Neighbours neighbours_of(std::span<const Pair> edges, unsigned n) {
  Neighbours neighbours(n);
  for (const auto& [distance, row, column] : edges) {
    neighbours[row].push_back(column);
    neighbours[column].push_back(row);
  }
  for (auto& list : neighbours) {
    std::ranges::sort(list);
  }
  return neighbours;
}

// Roots the tree at atom 0 and fills `first` and `child`.
void root_tree(Graph* graph, const Neighbours& neighbours) {
  std::vector<int> order;
  std::vector<unsigned> parents(graph->nvert, graph->nvert);  // the root has none
  Stack* stack = stack_alloc();
  stack_iadd(stack, 0);
  int child_count = 0;
  while (stack->count > 0) {
    unsigned atom = 0;
    stack_uget(stack, &atom);
    graph->first[order.size()] = child_count;
    order.push_back(static_cast<int>(atom));
    for (const unsigned neighbour : neighbours[atom]) {
      if (neighbour != parents[atom]) {
        parents[neighbour] = atom;
        stack_iadd(stack, static_cast<int>(neighbour));
        graph->child[child_count++] = static_cast<int>(neighbour);
      }
    }
  }
  stack_free(stack);
  graph_reorder(graph, order.data());
}

void set_edge(int** edges, unsigned i, unsigned j, GraphEdge state) {
  edges[i][j] = state;
  edges[j][i] = state;
}

}  // namespace

Graph* graph_create(const double* const* distances, unsigned n) {
  auto* graph = allocate<Graph>(1, "cannot allocate graph structure");
  graph->first = vec_ialloc(n);
  graph->child = vec_ialloc(n);
  graph->nvert = n;
  graph->nedge = n - 1;
  root_tree(graph, neighbours_of(grow_tree(distances, n), n));
  return graph;
}

void graph_free(Graph* graph) {
  if (graph != nullptr) {
    vec_ifree(graph->first);
    vec_ifree(graph->child);
    std::free(graph);
  }
}

unsigned graph_end(const Graph* graph, unsigned atom) {
  return atom + 1 < graph->nvert ? static_cast<unsigned>(graph->first[atom + 1]) : graph->nedge;
}

void graph_connect(const double* const* distances, int** edges, unsigned n) {
  const std::vector<Pair> tree = grow_tree(distances, n);
  const auto last = std::ranges::max_element(tree, std::mem_fn(&Pair::is_nearer));
  for (unsigned i = 0; i < n; ++i) {
    for (unsigned j = 0; j < n; ++j) {
      const Pair pair = pair_of(distances, i, j);
      // Pairs were offered up to the last one that was joined.
      const bool is_decided = i != j && is_in_reach(pair) && pair.is_nearer(*last);
      edges[i][j] = is_decided ? graph_edge_rejected : graph_edge_undecided;
    }
  }
  for (const auto& [distance, row, column] : tree) {
    set_edge(edges, row, column, graph_edge_tree);
  }
}

void graph_find_nearest(const double* const* distances, const int* const* edges, unsigned n, unsigned* row,
                        unsigned* column) {
  double best = graph_reach;
  *row = 0;
  *column = 0;
  for (unsigned i = 1; i < n; ++i) {
    for (unsigned j = 0; j < i; ++j) {
      if (edges[i][j] == graph_edge_undecided && distances[i][j] < best) {
        best = distances[i][j];
        *row = i;
        *column = j;
      }
    }
  }
}

void graph_merge_comp(unsigned* labels, unsigned n, unsigned a, unsigned b) {
  std::replace(labels, labels + n, unsigned{labels[b]}, unsigned{labels[a]});
}

void graph_fill(Graph* graph, int** edges, unsigned n) {
  Neighbours neighbours(n);
  for (unsigned i = 0; i < n; ++i) {
    for (unsigned j = 0; j < n; ++j) {
      if (edges[i][j] == graph_edge_tree) {
        neighbours[i].push_back(j);
      }
    }
  }
  root_tree(graph, neighbours);
  for (unsigned i = 0; i < n; ++i) {
    std::replace(edges[i], edges[i] + n, +graph_edge_tree, +graph_edge_walked);
  }
}

void graph_reorder(Graph* graph, const int* order) {
  const unsigned n = graph->nvert;
  std::vector<int> first;
  std::vector<int> child;
  for (unsigned atom = 0; atom < n; ++atom) {
    const unsigned visit = vec_iin(order, static_cast<int>(atom), n);
    first.push_back(static_cast<int>(child.size()));
    child.insert(child.end(), graph->child + graph->first[visit], graph->child + graph_end(graph, visit));
  }
  std::ranges::copy(first, graph->first);
  std::ranges::copy(child, graph->child);
}
