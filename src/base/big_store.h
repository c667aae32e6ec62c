// The large stores: mappings of zero pages, made once at start, or when the order of the line is
// known.
//
// A run touches only the pages that its order and number of frequency steps reach, so a small line
// needs little memory, and a process that forks under a sanitizer copies no empty tables.
#pragma once

#include "base/table.h"

#include <cstddef>
#include <type_traits>

namespace lcp {

void* zeroPages(std::size_t bytes); // ends the run when the address space is exhausted
void dropPages(void* pages, std::size_t bytes);

// A store of type T whose bytes are all zero: numbers 0, flags false. Lives until the process ends.
template <class T> T& bigStore() {
  static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);
  return *static_cast<T*>(zeroPages(sizeof(T)));
}

// A square matrix of large records (poles, curves), mapped for the order that a run needs: at the
// full order one such matrix takes up to 39 MB of addresses, at order 3 a hundred kB. Zero until
// written.
template <class T> struct MappedMatrix {
  T* records;
  int order;

  // Room for order n. A matrix that is large enough already stays as it is.
  void map(int n) {
    if (n <= order) return;
    if (records != nullptr) dropPages(records, bytes(order));
    records = static_cast<T*>(zeroPages(bytes(n)));
    order = n;
  }
  T& operator()(int i, int j) { return records[at(i, j)]; }
  const T& operator()(int i, int j) const { return records[at(i, j)]; }

private:
  static std::size_t bytes(int n) {
    return sizeof(T) * static_cast<std::size_t>(n) * static_cast<std::size_t>(n);
  }
  std::ptrdiff_t at(int i, int j) const {
    checkIndex(i, order);
    checkIndex(j, order);
    return static_cast<std::ptrdiff_t>(j - 1) * order + (i - 1);
  }
};

// Numbers for one problem, as many as the largest so far has asked for. They stand from one call to
// the next as long as none asks for more.
template <class T> struct MappedArray {
  T* numbers;
  std::size_t count;

  T* room(std::size_t n) {
    if (n <= count) return numbers;
    if (numbers != nullptr) dropPages(numbers, count * sizeof(T));
    numbers = static_cast<T*>(zeroPages(n * sizeof(T)));
    count = n;
    return numbers;
  }
};

} // namespace lcp
