#pragma once

/// Characters that str_scientific writes.
inline constexpr unsigned str_scientific_width = 13;

/// Writes `value` into `text` as printf's "%13.5e" does, without a terminator: always 13 characters, sign of
/// zero and of NaN included.
void str_scientific(double value, char* text);

/// Does the same if no number within the relative tolerance of `value` has another text, and returns true. Else, and
/// for numbers below 10^-250 in magnitude, infinity and NaN, or a tolerance that is not below 10^-7, returns false
/// with `text` as it was or undefined.
bool str_scientific_sure(double value, double tolerance, char* text);
