#include "app/listing/zmat.hpp"

#include <algorithm>
#include <span>
#include <vector>

#include "app/model/units.hpp"
#include "lib/icoord.hpp"
#include "lib/vec_base.hpp"

namespace {

constexpr unsigned own = 3;  // slot of the row's own atom

std::span<const int> children_of(const Graph* graph, int atom) {
  const auto vertex = static_cast<unsigned>(atom);
  return {graph->child + graph->first[vertex], graph->child + graph_end(graph, vertex)};
}

// A stack of atoms to which all children of an atom are pushed at once: they may be many, and few are popped.
class SearchStack {
 public:
  void push(std::span<const int> atoms) {
    if (!atoms.empty()) {
      runs_.push_back(atoms);
    }
  }

  int pop() {
    std::span<const int>& run = runs_.back();
    const int atom = run.back();
    run = run.first(run.size() - 1);
    if (run.empty()) {
      runs_.pop_back();
    }
    return atom;
  }

  bool is_empty() const { return runs_.empty(); }

 private:
  std::vector<std::span<const int>> runs_;
};

// The atom's parent, -1 for the root.
int find_parent(const Graph* graph, int atom) {
  const unsigned position = vec_iin(graph->child, atom, graph->nedge);
  if (position == vec_not_found) {
    return -1;
  }
  const int* behind = std::upper_bound(graph->first, graph->first + graph->nvert, static_cast<int>(position));
  return static_cast<int>(behind - graph->first) - 1;
}

}  // namespace

void zmat_print(const Molecule* molecule, std::FILE* stream, const double* const* distances) {
  const unsigned n = molecule->atom_count;
  if (n == 0) {
    return;
  }
  Graph* graph = graph_create(distances, n);
  std::vector<int> rows(n, -1);
  Stack* stack = stack_alloc();
  stack_iadd(stack, 0);
  for (unsigned row_index = 0; stack->count > 0; ++row_index) {
    unsigned atom = 0;
    stack_uget(stack, &atom);
    ZmatSlots slots;
    zmat_define_row(stack, graph, rows.data(), row_index, static_cast<int>(atom), slots);
    zmat_print_row(molecule, stream, distances, slots, rows.data());
  }
  graph_free(graph);
  stack_free(stack);
}

void zmat_define_row(Stack* stack, const Graph* graph, int* rows, unsigned row_index, int atom,
                     ZmatSlots& slots) {
  slots.fill(-1);
  slots[own] = atom;
  rows[atom] = static_cast<int>(row_index) + 1;
  zmat_backtrack(graph, rows, row_index + 1, slots);
  for (const int child : children_of(graph, atom)) {
    stack_iadd(stack, child);
  }
}

void zmat_backtrack(const Graph* graph, const int* rows, unsigned row_number, ZmatSlots& slots) {
  const unsigned last = own - std::min(row_number - 1, own);  // the slot that completes the row
  unsigned lowest = own;
  SearchStack stack;
  while (lowest > last) {
    const int parent = find_parent(graph, slots[lowest]);
    if (parent < 0) {
      stack.push({&slots[lowest], 1});
      break;
    }
    slots[--lowest] = parent;
    stack.push(children_of(graph, parent));
  }
  while (lowest > last && !stack.is_empty()) {
    const int atom = stack.pop();
    if (!zmat_atom_used(slots, lowest, atom) && rows[atom] >= 0) {
      slots[--lowest] = atom;
    } else {
      stack.push(children_of(graph, atom));
    }
  }
}

bool zmat_atom_used(const ZmatSlots& slots, unsigned lowest, int atom) {
  return std::find(slots.begin() + lowest, slots.end(), atom) != slots.end();
}

void zmat_print_row(const Molecule* molecule, std::FILE* stream, const double* const* distances,
                    const ZmatSlots& slots, const int* rows) {
  const auto [dihedral, angle, bond, atom] = slots;
  const auto coord = [=](int index) { return molecule->atoms[index].coord; };
  std::fprintf(stream, "    %-3s", molecule->atoms[atom].symbol);
  if (bond >= 0) {
    std::fprintf(stream, " %-3d %9.6f", rows[bond], distances[bond][atom] * angstrom_per_bohr);
    if (angle >= 0) {
      std::fprintf(stream, "  %-3d %10.6f", rows[angle],
                   icoord_angle(coord(atom), coord(bond), coord(angle)));
      if (dihedral >= 0) {
        std::fprintf(stream, "  %-3d %11.6f", rows[dihedral],
                     icoord_dihedral(coord(atom), coord(bond), coord(angle), coord(dihedral)));
      }
    }
  }
  std::fputc('\n', stream);
}
