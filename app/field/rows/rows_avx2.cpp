#include "app/field/rows/rows_kernel.hpp"

namespace {
struct Tag;
}  // namespace

const RowKernel rows_avx2 = RowPass<Pack<Tag, 4>, 2, 6>::kernel();
