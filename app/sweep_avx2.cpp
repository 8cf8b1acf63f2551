#include "sweep_kernel.hpp"

namespace {

struct Tag;
using Kernel = SweepKernelFor<Pack<Tag, 4>, 2, 4>;

bool is_supported() { return __builtin_cpu_supports("avx2") != 0; }

}  // namespace

const SweepKernel sweep_avx2 = Kernel::as("avx2", is_supported);
