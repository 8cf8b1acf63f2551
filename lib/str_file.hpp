#pragma once

inline constexpr unsigned str_file_size = 256;  // of a destination, terminator included

/// The part of the path behind its last "/", or the whole path without one; at most 255 characters.
/// 1 if the result is not empty, else 0.
int str_file_base(const char* path, char* destination);

/// The same with "." in place of "/".
int str_file_ext(const char* path, char* destination);
