#include "app/field/exact/sweep_kernel.hpp"

namespace {
struct Tag;
}  // namespace

const SweepKernel sweep_plain = SweepPass<Pack<Tag, 2>, 2, 4>::kernel();
