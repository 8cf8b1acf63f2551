#pragma once

#include <span>

#include "surface/march.hpp"
#include "surface/planes.hpp"

/// Fills in what the planes tell of cuts while the planes around them are held:
/// the density's logarithm and the potential are interpolated between four points along the edge, or between
/// its ends where there are no four.
void start_cuts(const Lattice& lattice, Planes* planes, std::span<Cut> cuts);
