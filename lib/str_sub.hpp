#pragma once

/// 1 if the text begins with the prefix, or the prefix with the text; else 0.
int str_sub_bfind(const char* text, const char* prefix);

/// Copies the characters at positions `from` to `to` - 1, as far as the source goes; none if from >= to.
/// The destination must hold to - from + 1 characters.
void str_sub_copy(const char* source, char* destination, unsigned from, unsigned to);
