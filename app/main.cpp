#include <new>

#include "app/input/config.hpp"
#include "app/input/input.hpp"
#include "app/input/options.hpp"
#include "app/model/cube_definition.hpp"
#include "app/model/memory.hpp"
#include "app/report.hpp"
#include "lib/file.hpp"
#include "lib/message.hpp"

int main(int argc, char** argv) try {
  file_prepare_process();
  argument(argc, argv);

  CubeDefinition cube;
  conf_read(&cube);

  Molecule molecule;
  mem_init_mol(&molecule);
  input_read(&molecule);
  cube_define(&molecule, &cube);

  // Only now: an input that cannot be read leaves an earlier report as it was.
  Report report = {&molecule, &cube};
  report_write(&report);

  mem_clean(&molecule, report.distances);
  return file_is_any_incomplete() ? 1 : 0;
} catch (const std::bad_alloc&) {
  msg_fatal("cannot allocate memory");
}
