// Large stores as mappings of zero pages, made at start or once the order of the line is known.
//
// A run touches only the pages that its order and number of frequency steps reach. A small line
// therefore needs little memory, and a process that forks under a sanitizer copies no empty tables.
#pragma once

#include "base/table.h"

#include <cstddef>
#include <type_traits>

namespace lcp {

void* zeroPages(std::size_t bytes); // never null: ends the run with status 1 when the address space
                                    // is exhausted
void dropPages(void* pages, std::size_t bytes);

// A store of type T with all bytes zero: numbers 0, flags false. It lives until the process ends.
template <class T> T& bigStore() {
  static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);
  return *static_cast<T*>(zeroPages(sizeof(T)));
}

// A square matrix of large records (poles, curves), mapped for the order that a run needs. At full
// order one such matrix takes up to 39 MB of address space, at order 3 about 100 kB. All bytes are
// zero until written.
template <class T> struct MappedMatrix {
  T* records;
  int order;

  // Makes room for order n. A matrix that is large enough stays as it is; a smaller one is mapped
  // anew and loses its contents.
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

// Numbers for one problem at a time, as many as the largest problem so far needed. They keep their
// values from call to call until a larger problem maps them anew.
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
