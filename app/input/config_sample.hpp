#pragma once

#include <cstdio>

// Sample configuration files to start from.

/// Writes the short sample to "config" in the working directory, replacing any file of that name, and says so
/// on standard output. A file that cannot be created ends the run with `cannot open file "config"`.
void conf_print_simple();

/// The same with the sample that explains every item.
void conf_print_verbose();

/// Writes the comment that tells the default of an item that is 0 or 1.
void default_bool(std::FILE* stream, int value);

/// Writes the comment that tells the default of an item that is a file name.
void default_str(std::FILE* stream, const char* text);
