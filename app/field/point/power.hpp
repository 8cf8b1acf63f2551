#pragma once

// Powers of a double, rounded once from twice the precision. The C library's pow is nearly always the same,
// but not in every version: with fused multiply-add its last bit differs for 1 argument in about 1,200. These
// need products, quotients and square roots only, which are the same everywhere.

/// base^exponent, for an odd exponent from 1 on.
double power_whole(double base, unsigned exponent);

/// base^(count/4), for a count of 1 or 3; NaN for a negative finite base.
double power_quarters(double base, unsigned count);
