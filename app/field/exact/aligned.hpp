#pragma once

#include <cstddef>
#include <new>
#include <vector>

/// Puts the elements of a container on a 64-byte boundary, where the widest packs are loaded and stored best.
/// Elements without a given value have none: memory that a run does not need is then never touched.
template <class Element>
struct AlignedAllocator {
  using value_type = Element;

  AlignedAllocator() = default;
  template <class Other>
  AlignedAllocator(const AlignedAllocator<Other>&) {}

  Element* allocate(std::size_t count) {
    return static_cast<Element*>(::operator new (count * sizeof(Element), std::align_val_t{64}));
  }
  void deallocate(Element* elements, std::size_t) { ::operator delete (elements, std::align_val_t{64}); }
  void construct(Element* element) { ::new (element) Element; }
  template <class... Values>
  void construct(Element* element, const Values&... values) {
    ::new (element) Element(values...);
  }
  bool operator==(const AlignedAllocator&) const = default;
};

using AlignedDoubles = std::vector<double, AlignedAllocator<double>>;
