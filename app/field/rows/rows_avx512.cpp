#include "app/field/rows/rows_kernel.hpp"

namespace {

struct Tag;
using Pass = RowPass<Pack<Tag, 8>, 2, 12>;

bool is_supported() { return __builtin_cpu_supports("avx512f") != 0; }

}  // namespace

const RowKernel rows_avx512 = Pass::kernel("avx512", is_supported);
