#pragma once

#include <array>
#include <string_view>

// What the shells are. A shell type code is 0 for s, 1 for p, -1 for sp, and 2, 3, 4 for a Cartesian or -2,
// -3, -4 for a pure d, f, g shell.

inline constexpr int shell_max = 4;  // highest angular momentum
inline constexpr int sp_shell = -1;  // the one type whose functions are of two kinds

/// Functions of a shell of a type code: (l + 1)(l + 2)/2 if Cartesian, 2l + 1 if pure.
constexpr unsigned shell_function_count(int type) {
  if (type == sp_shell) {
    return 4;
  }
  return static_cast<unsigned>(type < 0 ? 1 - 2 * type : (type + 1) * (type + 2) / 2);
}

/// The angular factors of the Cartesian shells s, p, d, f and g in the order of their components, which all
/// input files share: the axes whose coordinates are multiplied.
inline constexpr std::array<std::string_view, shell_max + 1> shell_monomials = {
    "", "x y z", "xx yy zz xy xz yz", "xxx yyy zzz xyy xxy xxz xzz yzz yyz xyz",
    "xxxx yyyy zzzz xxxy xxxz xyyy yyyz xzzz yzzz xxyy xxzz yyzz xxyz xyyz xyzz"};

/// The monomial of a component of the Cartesian shell of angular momentum l; the component must exist.
constexpr std::string_view shell_monomial(unsigned l, unsigned component) {
  return shell_monomials[l].substr(std::size_t{component} * (l + 1), l);
}

constexpr bool shell_monomials_are_complete() {
  for (unsigned l = 0; l < shell_monomials.size(); ++l) {
    if (shell_monomials[l].size() + 1 != std::size_t{shell_function_count(static_cast<int>(l))} * (l + 1)) {
      return false;
    }
  }
  return true;
}
static_assert(shell_monomials_are_complete());
