#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>

#include "message.hpp"

/// Zero-filled block of `count` elements, to be released with free(); never null, also for a count of 0.
/// The zeros come from the system, so a large block costs nothing until it is touched.
/// Without memory the run ends with the message `failure`.
template <class Element>
Element* allocate(std::size_t count, const char* failure) {
  void* block = std::calloc(std::max<std::size_t>(count, 1), sizeof(Element));
  if (block == nullptr) {
    msg_fatal(failure);
  }
  return static_cast<Element*>(block);
}
