#include "app/field/exact/sweep_kernel.hpp"

namespace {

struct Tag;
using Pass = SweepPass<Pack<Tag, 2>, 2, 4>;

bool is_supported() { return true; }

}  // namespace

const SweepKernel sweep_plain = Pass::kernel("plain", is_supported);
