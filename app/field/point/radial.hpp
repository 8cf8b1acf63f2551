#pragma once

#include <vector>

#include "app/model/molecule.hpp"

/// The number of the radial of each basis function, counted from 0 in the order in which they come up.
/// Functions have the same radial if they are of one centre and of the same primitives, to the bit, and if
/// their normalization constants differ by a factor only: they are of one type, or of one primitive each.
std::vector<unsigned> radials_of(const Molecule* molecule);
