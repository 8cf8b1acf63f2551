#pragma once

// What single lines of formatted checkpoint files tell.

/// Sets inp_rest_scf from the second line of the file: 1 if its second word begins with R, else 0. Without a
/// second word the run ends with "cannot find method which was used to compute MOs".
void fcheck_input_method(const char* line);

/// The last word of a line as an integer; a newline belongs to the word before it. If that word is no
/// integer, the run ends with "cannot convert last word into integer".
int fcheck_last_int(const char* line);
