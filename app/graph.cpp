#include "graph.hpp"

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <tuple>

#include "allocate.hpp"
#include "mat_base.hpp"
#include "message.hpp"
#include "stack.hpp"
#include "vec_base.hpp"

namespace {

struct Pair {
  double distance;  // bohr
  unsigned row;
  unsigned column;  // below row
};

// In the order of graph_find_nearest.
struct IsFarther {
  bool operator()(const Pair& a, const Pair& b) const {
    return std::tie(a.distance, a.row, a.column) > std::tie(b.distance, b.row, b.column);
  }
};

bool is_in_reach(double distance) { return distance < graph_reach; }  // NaN is not

// Stores the pairs that may be joined and returns their end.
Pair* collect_pairs(const double* const* distances, unsigned n, Pair* pairs) {
  for (unsigned row = 1; row < n; ++row) {
    for (unsigned column = 0; column < row; ++column) {
      if (is_in_reach(distances[row][column])) {
        *pairs++ = {distances[row][column], row, column};
      }
    }
  }
  return pairs;
}

void set_edge(int** edges, unsigned i, unsigned j, GraphEdge state) {
  edges[i][j] = state;
  edges[j][i] = state;
}

// A molecule with an atom at infinity or nowhere has no tree.
void check_complete(const unsigned* labels, unsigned n) {
  const auto* const lost =
      std::find_if(labels, labels + n, [=](unsigned label) { return label != labels[0]; });
  if (lost != labels + n) {
    msg_fatal_format("cannot connect atom %u with atom 1: distance is not below %g bohr",
                     static_cast<unsigned>(lost - labels) + 1, graph_reach);
  }
}

}  // namespace

Graph* graph_create(const double* const* distances, unsigned n) {
  int** edges = mat_ialloc(n, n);
  graph_connect(distances, edges, n);
  auto* graph = allocate<Graph>(1, "cannot allocate graph structure");
  graph->first = vec_ialloc(n);
  graph->child = vec_ialloc(n);
  graph->nvert = n;
  graph->nedge = n - 1;
  graph_fill(graph, edges, n);
  mat_ifree(edges, n);
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

// Every pair is looked at once, in the order in which repeated calls of graph_find_nearest would offer it: a
// tree is complete after few of the pairs, so a heap of all of them costs less than sorting, let alone
// searching them again for each.
void graph_connect(const double* const* distances, int** edges, unsigned n) {
  for (unsigned i = 0; i < n; ++i) {
    vec_iset(edges[i], graph_edge_undecided, n);
  }
  unsigned* labels = vec_ualloc(n);
  std::iota(labels, labels + n, 0U);
  auto* pairs = allocate<Pair>(std::size_t{n} * (n - 1) / 2, "cannot allocate memory for pairs of atoms");
  Pair* end = collect_pairs(distances, n, pairs);
  std::make_heap(pairs, end, IsFarther());
  for (unsigned count = 0; count + 1 < n && end != pairs;) {
    std::pop_heap(pairs, end, IsFarther());
    const auto [distance, row, column] = *--end;
    if (labels[row] == labels[column]) {
      set_edge(edges, row, column, graph_edge_rejected);
    } else {
      graph_merge_comp(labels, n, row, column);
      set_edge(edges, row, column, graph_edge_tree);
      ++count;
    }
  }
  check_complete(labels, n);
  std::free(pairs);
  vec_ufree(labels);
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
  int* order = vec_ialloc(n);
  Stack* stack = stack_alloc();
  stack_uadd(stack, 0);
  int child_count = 0;
  for (unsigned visit = 0; stack->count > 0; ++visit) {
    unsigned atom = 0;
    stack_uget(stack, &atom);
    order[visit] = static_cast<int>(atom);
    graph->first[visit] = child_count;
    for (unsigned j = 0; j < n; ++j) {
      if (edges[atom][j] == graph_edge_tree) {
        set_edge(edges, atom, j, graph_edge_walked);
        stack_uadd(stack, j);
        graph->child[child_count++] = static_cast<int>(j);
      }
    }
  }
  stack_free(stack);
  graph_reorder(graph, order);
  vec_ifree(order);
}

void graph_reorder(Graph* graph, const int* order) {
  const unsigned n = graph->nvert;
  int* first = vec_ialloc(n);
  int* child = vec_ialloc(n);
  int* next = child;
  for (unsigned atom = 0; atom < n; ++atom) {
    const unsigned visit = vec_iin(order, static_cast<int>(atom), n);
    first[atom] = static_cast<int>(next - child);
    next = std::copy(graph->child + graph->first[visit], graph->child + graph_end(graph, visit), next);
  }
  std::copy_n(first, n, graph->first);
  std::copy_n(child, n, graph->child);
  vec_ifree(first);
  vec_ifree(child);
}
