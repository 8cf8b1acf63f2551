#include "limit.hpp"

namespace {
struct Tag;
}  // namespace

const Limit limit_plain = {"plain", measure_limit<Pack<Tag, 2>>};
