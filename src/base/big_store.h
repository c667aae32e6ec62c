// The large stores: one mapping of zero pages each, made once at start.
//
// A run touches only the pages that its order and number of frequency steps reach, so a small line
// needs little memory, and a process that forks under a sanitizer copies no empty tables.
#pragma once

#include <cstddef>
#include <type_traits>

namespace lcp {

void* zeroPages(std::size_t bytes); // ends the run when the address space is exhausted

// A store of type T whose bytes are all zero: numbers 0, flags false. Lives until the process ends.
template <class T> T& bigStore() {
  static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);
  return *static_cast<T*>(zeroPages(sizeof(T)));
}

} // namespace lcp
