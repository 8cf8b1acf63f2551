#pragma once

// Inside the program lengths are in bohr; the report shows them in ångström.
inline constexpr double angstrom_per_bohr = 0.52917725;
