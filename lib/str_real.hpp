#pragma once

/// Characters that str_scientific writes.
inline constexpr unsigned str_scientific_width = 13;

/// Writes `value` into `text` as printf's "%13.5e" does, without a terminator: always 13 characters, sign of
/// zero and of NaN included.
void str_scientific(double value, char* text);

/// Does the same and returns true, unless a number within the relative tolerance of `value` may have another
/// text: then returns false, with `text` as it was. It may take the tolerance for up to four times as large.
/// Also false for numbers below 10^-250 in magnitude, infinity and NaN, and for a tolerance that is not below
/// 10^-7.
bool str_scientific_sure(double value, double tolerance, char* text);
