#pragma once

inline constexpr int sp_shell = -1;  // the one type whose functions are of two kinds

/// Functions of a shell of a type code: (l + 1)(l + 2)/2 if Cartesian, 2l + 1 if pure.
constexpr unsigned shell_function_count(int type) {
  if (type == sp_shell) {
    return 4;
  }
  return static_cast<unsigned>(type < 0 ? 1 - 2 * type : (type + 1) * (type + 2) / 2);
}
static_assert(shell_function_count(0) == 1 && shell_function_count(1) == 3 && shell_function_count(2) == 6 &&
              shell_function_count(3) == 10 && shell_function_count(4) == 15 &&
              shell_function_count(-2) == 5 && shell_function_count(-3) == 7 &&
              shell_function_count(-4) == 9);
