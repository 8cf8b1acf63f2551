#include "app/field/exact/sweep_kernel.hpp"

namespace {

struct Tag;
using Pass = SweepPass<Pack<Tag, 8>, 2, 6>;

bool is_supported() { return __builtin_cpu_supports("avx512f") != 0; }

}  // namespace

const SweepKernel sweep_avx512 = Pass::kernel("avx512", is_supported);
