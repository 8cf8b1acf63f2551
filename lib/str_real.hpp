#pragma once

/// Characters that str_scientific writes.
inline constexpr unsigned str_scientific_width = 13;

/// Writes `value` into `text` as printf's "%13.5e" does, without a terminator: always 13 characters, sign of
/// zero and of NaN included.
void str_scientific(double value, char* text);

/// Does the same and returns true if no number within the relative tolerance of `value` has another text.
/// Returns false, with `text` as it was, if one within the tolerance may have; none within four times the
/// tolerance having one is sure to be seen. Also false for numbers below 10^-250 in magnitude, infinity and
/// NaN, and for a tolerance that is not below 10^-7.
bool str_scientific_sure(double value, double tolerance, char* text);
