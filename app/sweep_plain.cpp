#include "sweep_kernel.hpp"

namespace {

struct Tag;
using Kernel = SweepKernelFor<Pack<Tag, 2>, 2, 4>;

bool is_supported() { return true; }

}  // namespace

const SweepKernel sweep_plain = Kernel::as("plain", is_supported);
