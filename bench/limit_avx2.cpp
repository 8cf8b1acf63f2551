#include "limit.hpp"

namespace {
struct Tag;
}  // namespace

const Limit limit_avx2 = {"avx2", measure_limit<Pack<Tag, 4>>};
