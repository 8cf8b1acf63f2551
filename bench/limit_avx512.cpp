#include "limit.hpp"

namespace {
struct Tag;
}  // namespace

const Limit limit_avx512 = {"avx512", measure_limit<Pack<Tag, 8>>};
