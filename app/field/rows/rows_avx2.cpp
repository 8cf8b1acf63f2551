#include "app/field/rows/rows_kernel.hpp"

namespace {

struct Tag;
using Pass = RowPass<Pack<Tag, 4>, 2, 6>;

bool is_supported() { return __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("fma") != 0; }

}  // namespace

const RowKernel rows_avx2 = Pass::kernel("avx2", is_supported);
