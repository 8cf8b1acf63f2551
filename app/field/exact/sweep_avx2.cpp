#include "app/field/exact/sweep_kernel.hpp"

namespace {

struct Tag;
using Pass = SweepPass<Pack<Tag, 4>, 2, 4>;

bool is_supported() { return __builtin_cpu_supports("avx2") != 0; }

}  // namespace

const SweepKernel sweep_avx2 = Pass::kernel("avx2", is_supported);
