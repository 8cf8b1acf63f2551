#include "app/input/reorder.hpp"

#include <algorithm>

#include "app/model/memory.hpp"
#include "app/model/shell.hpp"
#include "lib/message.hpp"
#include "lib/vec_base.hpp"

namespace {

constexpr const char* wrong_functions = "wrong base reorder - number of basis functions";
constexpr const char* wrong_primitives = "wrong base reorder - number of primitives";

constexpr const char* missing_array = "wrong base reorder - missing array";

double* copy(const double* values, unsigned count) {
  double* vector = vec_falloc(count);
  std::copy_n(values, count, vector);
  return vector;
}

// What the functions of a shell, or of the s or p part of an sp shell, have in common.
struct Kind {
  short type;
  short shell_type;
  unsigned function_count;
  const double* coefficients;  // of the primitives of all shells
};

void check_arrays(const ShellTable* shells) {
  if (shells->types == nullptr || shells->atom_map == nullptr || shells->primitive_counts == nullptr ||
      shells->exponents == nullptr || shells->coefficients == nullptr) {
    msg_fatal(missing_array);
  }
}

void make_functions(Molecule* molecule, const ShellTable* shells, unsigned shell, unsigned& function,
                    unsigned& primitive, const Kind& kind) {
  const unsigned primitive_count = shells->primitive_counts[shell];
  if (kind.function_count > molecule->basis_count - function) {
    msg_fatal(wrong_functions);
  }
  if (primitive_count > molecule->primitive_count - primitive) {
    msg_fatal(wrong_primitives);
  }
  const Atom* atom = reorder_atom_pointer(molecule, shells, shell);
  for (unsigned component = 0; component < kind.function_count; ++component) {
    molecule->basis[function++] = {
        .type = kind.type,
        .component = static_cast<short>(component),
        .shell_type = kind.shell_type,
        .primitive_count = primitive_count,
        .atom_index = shells->atom_map[shell] - 1,
        .exponents = copy(shells->exponents + primitive, primitive_count),
        .coefficients = copy(kind.coefficients + primitive, primitive_count),
        .atom = atom,
    };
  }
  primitive += primitive_count;
}

}  // namespace

void reorder_shell_init(ShellTable* shells) { *shells = ShellTable{}; }

void reorder_free(ShellTable* shells) {
  vec_ifree(shells->types);
  vec_ufree(shells->atom_map);
  vec_ufree(shells->primitive_counts);
  vec_ffree(shells->sp_coefficients);
  vec_ffree(shells->coefficients);
  vec_ffree(shells->exponents);
  reorder_shell_init(shells);
}

void reorder_basis(Molecule* molecule, ShellTable* shells) {
  if (molecule->shell_count > 0) {
    check_arrays(shells);
  }
  mem_alloc_basis(molecule);
  unsigned function = 0;
  unsigned primitive = 0;
  for (unsigned shell = 0; shell < molecule->shell_count; ++shell) {
    const int code = shells->types[shell];
    if (code < -shell_max || code > shell_max) {
      msg_fatal_format("unknown shell type %d", code);
    }
    const auto type = static_cast<short>(code);
    switch (code) {
      case 0:
        reorder_shell_s(molecule, shells, shell, function, primitive, type);
        break;
      case 1:
        reorder_shell_p(molecule, shells, shell, function, primitive, type);
        break;
      case sp_shell:
        reorder_shell_sp(molecule, shells, shell, function, primitive);
        break;
      default:
        reorder_shell(molecule, shells, shell, function, primitive, type, shell_function_count(code));
    }
  }
  if (function != molecule->basis_count) {
    msg_fatal(wrong_functions);
  }
  if (primitive != molecule->primitive_count) {
    msg_fatal(wrong_primitives);
  }
  reorder_free(shells);
}

void reorder_shell(Molecule* molecule, const ShellTable* shells, unsigned shell, unsigned& function,
                   unsigned& primitive, short type, unsigned count) {
  make_functions(molecule, shells, shell, function, primitive, {type, type, count, shells->coefficients});
}

void reorder_shell_s(Molecule* molecule, const ShellTable* shells, unsigned shell, unsigned& function,
                     unsigned& primitive, short shell_type) {
  make_functions(molecule, shells, shell, function, primitive, {0, shell_type, 1, shells->coefficients});
}

void reorder_shell_p(Molecule* molecule, const ShellTable* shells, unsigned shell, unsigned& function,
                     unsigned& primitive, short shell_type) {
  const double* coefficients = shell_type == sp_shell ? shells->sp_coefficients : shells->coefficients;
  make_functions(molecule, shells, shell, function, primitive, {1, shell_type, 3, coefficients});
}

void reorder_shell_sp(Molecule* molecule, const ShellTable* shells, unsigned shell, unsigned& function,
                      unsigned& primitive) {
  if (shells->sp_coefficients == nullptr) {
    msg_fatal(missing_array);
  }
  reorder_shell_s(molecule, shells, shell, function, primitive, sp_shell);
  primitive -= shells->primitive_counts[shell];
  reorder_shell_p(molecule, shells, shell, function, primitive, sp_shell);
}

const Atom* reorder_atom_pointer(const Molecule* molecule, const ShellTable* shells, unsigned shell) {
  return mem_centre(molecule, shells->atom_map[shell]);
}
