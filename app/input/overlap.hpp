#pragma once

#include <optional>
#include <span>
#include <vector>

#include "app/model/molecule.hpp"

// Overlap integrals of the basis functions, in closed form.

/// The norm ∫|φ|² of each orbital, to 1e-6 or so: pairs of primitives too far apart to matter are left out.
/// Nothing if it would take longer than half a second.
std::optional<std::vector<double>> overlap_norms(const Molecule* molecule, std::span<const Orbital> orbitals);
