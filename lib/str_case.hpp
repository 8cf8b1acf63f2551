#pragma once

// Case of the ASCII letters. A c after the prefix marks the version that writes into a destination, which
// must hold the source and its terminator, and returns the length.

/// Upper case.
unsigned str_cupcase(const char* source, char* destination);
void str_upcase(char* string);

/// Lower case.
unsigned str_clowcase(const char* source, char* destination);
void str_lowcase(char* string);

/// First character in upper case, the rest in lower case.
unsigned str_cLowcase(const char* source, char* destination);
void str_Lowcase(char* string);
