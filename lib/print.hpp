#pragma once

#include <cstdio>

// Text on a page of 80 columns. An f after the prefix marks the version that writes to a given stream; the
// others write to standard output.

/// The text centred; one of 80 characters or more as it is.
void print_fcenter(std::FILE* stream, const char* text);
void print_center(const char* text);

/// The text, a blank on each side, centred in a line of `fill`; one of 80 characters or more as it is.
void print_fccenter(std::FILE* stream, const char* text, char fill);
void print_ccenter(const char* text, char fill);

/// A line of hyphens over the whole page.
void print_fhline(std::FILE* stream);
void print_hline();

/// A line of `count` times `character`.
void print_fHline(std::FILE* stream, char character, unsigned count);
void print_Hline(char character, unsigned count);

/// A line of `width` characters: the label at its left, the value at its right end
/// (s text, i int, u unsigned, lu unsigned long, lo unsigned long in octal).
void print_fswfix(std::FILE* stream, const char* label, const char* text, int width);
void print_fiwfix(std::FILE* stream, const char* label, int value, int width);
void print_fuwfix(std::FILE* stream, const char* label, unsigned value, int width);
void print_fluwfix(std::FILE* stream, const char* label, unsigned long value, int width);
void print_flowfix(std::FILE* stream, const char* label, unsigned long value, int width);
void print_swfix(const char* label, const char* text, int width);
void print_iwfix(const char* label, int value, int width);
void print_uwfix(const char* label, unsigned value, int width);
void print_luwfix(const char* label, unsigned long value, int width);
void print_lowfix(const char* label, unsigned long value, int width);

/// The same for a double in printf's `format`, cut to 79 characters.
void print_ffwfix(std::FILE* stream, const char* label, const char* format, int width, double value);

/// The same for any values in printf's `format`, cut to 79 characters; on standard output, the f of the name
/// stands for the format.
__attribute__((format(printf, 2, 4))) void print_fwfix(const char* label, const char* format, int width, ...);
