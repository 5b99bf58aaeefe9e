#pragma once
#include <algorithm>
#include <cstddef>
#include <limits>
#include <new>
#include <vector>

namespace Nu::Detail {

// Sizes `elements` to `length` for the one-dimensional arrays and the matrix's flat block.
// The capacity rule is part of their contract (old length + max(old length, added), capped at
// the length limit (2^64 - 1) / sizeof(T)), so it is asked for explicitly instead of trusting
// the vector's own growth. The reservation is the only allocation: if it fails with
// std::bad_alloc, `elements` is untouched. Above the limit the vector raises std::length_error
// ("vector::_M_default_append"), which the containers let pass by design.
template <class T>
void GrowContainer(std::vector<T>& elements, std::size_t length) {
  constexpr std::size_t limit = std::numeric_limits<std::size_t>::max() / sizeof(T);
  std::size_t const size = elements.size();
  if (length > elements.capacity() && length <= limit) {
    std::size_t capacity = size + std::max(size, length - size);
    if (capacity < size || capacity > limit) capacity = limit;
    // This vector stops at PTRDIFF_MAX bytes, below the documented limit; such a block can never
    // be allocated, so it fails the way an allocator would, not with a length error.
    if (capacity > elements.max_size()) throw std::bad_alloc();
    elements.reserve(capacity);
  }
  elements.resize(length);
}

}  // namespace Nu::Detail
