#pragma once

/// Σ (a_i − b_i)² over n components, accumulated in their order.
double dist_r2(const double* a, const double* b, unsigned n);

/// Distance of two points of n components.
double dist_r(const double* a, const double* b, unsigned n);
