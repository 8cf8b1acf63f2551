#pragma once

/// What a core can do at most with registers of so many doubles, which it must have: independent
/// multiplications and additions in registers, a second. One of each, of a double, are a pair.
template <unsigned Lanes>
double limit_pairs_per_second();

template <>
double limit_pairs_per_second<2>();
template <>
double limit_pairs_per_second<4>();
template <>
double limit_pairs_per_second<8>();
