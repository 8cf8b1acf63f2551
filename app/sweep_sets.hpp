#pragma once

#include "sweep.hpp"

// The kernels, each from the translation unit that is compiled for its instruction set.

extern const SweepKernel sweep_plain;
#if defined(__x86_64__)
extern const SweepKernel sweep_avx2;
extern const SweepKernel sweep_avx512;
#endif
