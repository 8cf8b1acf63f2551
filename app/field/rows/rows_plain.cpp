#include "app/field/rows/rows_kernel.hpp"

namespace {
struct Tag;
}  // namespace

const RowKernel rows_plain = RowPass<Pack<Tag, 2>, 2, 4>::kernel();
