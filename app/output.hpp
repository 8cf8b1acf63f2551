#pragma once

#include <cstdio>

// The stream of the report.

/// The file named by glob_file_output, created or emptied, or standard output if there is no name.
/// A file that cannot be opened ends the run.
std::FILE* set_output();

/// Closes the stream of set_output; standard output is flushed and stays open. Text that could not be written
/// is told by the warning "file closing failured".
void close_output(std::FILE* stream);
