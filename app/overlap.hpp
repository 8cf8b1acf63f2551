#pragma once

#include <span>
#include <vector>

#include "memory.hpp"

// Overlap integrals of the basis functions, in closed form.

/// The norm ∫|φ|² of each orbital, to 1e-6 or so: pairs of primitives too far apart to matter are left out.
/// Empty for a basis of so many primitives that this would take longer than a few seconds.
std::vector<double> overlap_norms(const Molecule* molecule, std::span<const Orbital> orbitals);
