#pragma once

#include <cstdint>

#include "app/model/cube_definition.hpp"
#include "lib/reader.hpp"

// The configuration file: lines of an item name and a setting.

/// Reads glob_file_config, or "config" if that cannot be opened, into the settings, and an explicit grid into
/// `cube` (bohr). Without either file the defaults stay in force, with a warning if arg_warning is set.
/// Afterwards glob_file_config names the file that was read; it is empty if there was none.
/// The first bad line ends the run.
void conf_read(CubeDefinition* cube);

/// Takes one line: skips a blank line and a comment ("#"), and hands item name and setting to conf_assign.
/// The grid block of DEFINE_CUBE is read on from `stream`. A name or setting that is absent, longer than 31
/// characters or not ended within the 1023 characters of a line ends the run with
/// "wrong format of config file - item name" or "- setting". Text behind a file name that no "#" announces is
/// told.
void conf_analyze_line(Reader* stream, CubeDefinition* cube, const char* line);

/// Sets the item of that name. A setting that is no number where one is needed, or out of its range, is told.
/// An unknown name ends the run with "invalid option in config file 'NAME'".
void conf_assign(Reader* stream, CubeDefinition* cube, const char* name, const char* setting);

/// The setting as 0 or 1. Any other number ends the run with
/// "invalid value in config file - 0 or 1 expected"; a word counts as 0.
std::int16_t check_bool(const char* setting);

/// The setting as a number above `bound`. Any other number, or one beyond 32767, ends the run with
/// "invalid value in config file - integer greater than BOUND expected"; a word counts as 0.
std::int16_t conf_check_intgt(const char* setting, int bound);

/// Reads the block of a DEFINE_CUBE line into `cube` and sets conf_cube_def: 1 origin, three lines of a step
/// vector and three point counts; 2 points A, B, C, D and three point counts; 0 has no block and changes
/// nothing. Lengths in bohr. Another type or a block that cannot be read ends the run.
void conf_read_cube(Reader* stream, CubeDefinition* cube, unsigned type);
