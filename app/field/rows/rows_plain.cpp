#include "app/field/rows/rows_kernel.hpp"

namespace {

struct Tag;
using Pass = RowPass<Pack<Tag, 2>, 2, 4>;

bool is_supported() { return true; }

}  // namespace

const RowKernel rows_plain = Pass::kernel("plain", is_supported);
