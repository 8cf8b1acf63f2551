#include "app/field/rows/rows_kernel.hpp"

namespace {
struct Tag;
}  // namespace

const RowKernel rows_avx512 = RowPass<Pack<Tag, 8>, 2, 12>::kernel();
