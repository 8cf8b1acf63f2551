#include "app/field/exact/sweep_kernel.hpp"

namespace {
struct Tag;
}  // namespace

const SweepKernel sweep_avx2 = SweepPass<Pack<Tag, 4>, 2, 4>::kernel();
