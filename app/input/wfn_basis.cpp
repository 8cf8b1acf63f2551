#include "app/input/wfn_basis.hpp"

#include "app/model/memory.hpp"
#include "lib/vec_base.hpp"

namespace {

// Type numbers count from 1 through the components of the Cartesian shells. Any other is an s function, as a
// function is whose type and component are left 0.
void set_type(BasisFunction& function, unsigned type_number) {
  unsigned first = 1;
  for (short type = 0; type <= shell_max; ++type) {
    const unsigned component = type_number - first;  // huge if the number lies before
    const unsigned count = shell_function_count(type);
    if (component < count) {
      function.type = function.shell_type = type;
      function.component = static_cast<short>(component);
    }
    first += count;
  }
}

}  // namespace

void wfn_basis_reorder(Molecule* molecule, const unsigned* centres, const unsigned* types,
                       const double* exponents) {
  for (unsigned i = 0; i < molecule->basis_count; ++i) {
    BasisFunction& function = molecule->basis[i];
    set_type(function, types[i]);
    function.primitive_count = 1;
    function.atom = mem_centre(molecule, centres[i]);
    function.atom_index = centres[i] - 1;
    function.exponents = vec_falloc(1);
    function.exponents[0] = exponents[i];
    function.coefficients = vec_falloc(1);
    function.coefficients[0] = 1.0;
  }
}
