#pragma once

/// Characters that str_scientific writes.
inline constexpr unsigned str_scientific_width = 13;

/// Writes `value` into `text` as printf's "%13.5e" does, without a terminator: always 13 characters, sign of
/// zero and of NaN included.
void str_scientific(double value, char* text);
