#pragma once

#include <string_view>

/// One execution, defined by each harness; there are many in one process. The input is also the file that
/// glob_file_input and glob_file_config name; all other settings have their defaults, and what is written
/// goes to /dev/null. A fatal error or exit (beneath nothing that has to be destroyed) ends the execution.
/// One that returns must have released all that calloc gave and closed all streams.
void fuzz_pass(std::string_view input);
