#pragma once

/// Copies without leading blanks and tabs and without trailing blanks, tabs and newlines.
/// The destination must hold the source and its terminator.
void str_ctrim(const char* source, char* destination);

/// The same in place.
void str_trim(char* string);

/// Removes trailing blanks, tabs and newlines.
void str_rtrim(char* string);
