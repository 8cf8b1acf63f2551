#include "app/input/input.hpp"

#include "app/input/fcheck.hpp"
#include "app/input/options.hpp"
#include "app/input/wfn.hpp"
#include "app/model/setup.hpp"

void input_read(Molecule* molecule) {
  if (inp_format == input_fchk) {
    fcheck_read(molecule);
  } else {
    wfn_read(molecule);
  }
}
