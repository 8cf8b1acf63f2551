#include "app/field/exact/sweep_kernel.hpp"

namespace {
struct Tag;
}  // namespace

const SweepKernel sweep_avx512 = SweepPass<Pack<Tag, 8>, 2, 6>::kernel();
