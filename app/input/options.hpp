#pragma once

// The command line.

// Values of inp_format.
inline constexpr int input_fchk = 1;
inline constexpr int input_wfn = 2;

/// Reads the command line into the settings and returns if a run is to follow. `-h`, `-p` and `-P` end the
/// process with status 0 (1 if the sample could not be written completely), a usage error with the usage
/// line, one error line and status 1.
void argument(int argc, char** argv);

/// Sets inp_format from the name of a format, "fchk" or "wfn"; any other name ends the run with
/// "unknown format of input file".
void check_input_format(const char* name);
