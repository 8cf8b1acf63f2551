#pragma once

#include <cstdint>
#include <cstdio>
#include <string_view>

/// Number of decimal digits of the value (a negative one taken as unsigned); 0 for 0.
unsigned str_unum_len(std::int32_t value);
unsigned str_lunum_len(std::uint64_t value);

/// 1 if the strings are equal up to blanks before, and blanks and newlines behind them; else 0.
/// An empty string equals only an empty string.
int str_compare(const char* first, const char* second);

inline constexpr unsigned str_exponent_length = 4;

/// Whether a real goes on, behind what "%lf" takes of it, with an exponent of three digits, which Fortran
/// writes without its letter ("-101" of "1.5-101"): a sign, exactly three digits, then white space or the end
/// of `behind`, which holds the next str_exponent_length + 1 characters. `real` must have a decimal point and
/// a digit, and be neither hexadecimal nor with an exponent of its own.
bool str_has_bare_exponent(std::string_view real, std::string_view behind);

/// The real at the beginning of the text, as "%lf" takes it, or with a bare exponent. Returns what follows
/// it; null, with `value` untouched, if there is none.
const char* str_fortran_real(const char* text, double* value);

/// A number in Fortran notation ("0.5D+01", "0.5-101"); D and d in the word are replaced by E and e. What
/// follows the number is ignored; a word of one character is 0.0. Without a number the run ends with `cannot
/// convert fortran double precision type "WORD"`.
double str_dsnum(char* word);

inline constexpr unsigned str_line_size = 4096;  // buffer of str_ffind, terminator included

/// Reads lines (pieces of at most 4095 characters) into `line` until one contains `needle`: 1, and it stays
/// in the buffer; 0 at the end of the stream.
int str_ffind(std::FILE* stream, const char* needle, char* line);
