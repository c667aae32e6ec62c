// Dense matrices in column order. A matrix argument is a view, which holds the address of the first
// element and the leading dimension of the store; the order is a separate argument.
#pragma once

#include "base/big_store.h"
#include "base/table.h"

#include <complex>
#include <cstddef>
#include <span>
#include <type_traits>

namespace lcp {

using Complex = std::complex<double>;
using extended = long double; // for sums whose stopping rule depends on the last bits

// View of a matrix with 1-based row and column indices.
template <class T> struct View {
  T* first = nullptr;
  int ld = 0;

  View() = default;
  View(T* p, int leading) : first(p), ld(leading) {}
  // A writable view converts to a read-only one.
  template <class U>
  requires std::is_same_v<const U, T> View(const View<U>& other)
      : first(other.first), ld(other.ld) {} // NOLINT(*-explicit-*)

  T& operator()(int i, int j) const {
    checkIndex(i, ld);
    return first[static_cast<std::ptrdiff_t>(j - 1) * ld + (i - 1)];
  }
  T* column(int j) const { return first + static_cast<std::ptrdiff_t>(j - 1) * ld; }
};

using CView = View<Complex>;
using CConstView = View<const Complex>;
using RView = View<double>;
using RConstView = View<const double>;

// A square store of order N of which the leading n by n corner is in use.
template <class T, int N> struct SquareStore {
  T elements[static_cast<std::size_t>(N) * N];

  static constexpr int order = N;
  T& operator()(int i, int j) {
    checkIndex(i, N);
    checkIndex(j, N);
    return elements[static_cast<std::ptrdiff_t>(j - 1) * N + (i - 1)];
  }
  const T& operator()(int i, int j) const {
    checkIndex(i, N);
    checkIndex(j, N);
    return elements[static_cast<std::ptrdiff_t>(j - 1) * N + (i - 1)];
  }
  operator View<T>() { return {elements, N}; }             // NOLINT(*-explicit-*)
  operator View<const T>() const { return {elements, N}; } // NOLINT(*-explicit-*)
  View<T> view() { return {elements, N}; }
  View<const T> view() const { return {elements, N}; }
};

// A square matrix mapped for the order of the run, so that a small line touches few pages.
template <class T> struct MappedSquare {
  MappedMatrix<T> elements;

  void map(int n) { elements.map(n); }
  T& operator()(int i, int j) { return elements(i, j); }
  const T& operator()(int i, int j) const { return elements(i, j); }
  operator View<T>() { return {elements.records, elements.order}; } // NOLINT(*-explicit-*)
  operator View<const T>() const {
    return {elements.records, elements.order};
  } // NOLINT(*-explicit-*)
  View<T> view() { return *this; }
};

// A function of frequency: S steps in contiguous memory.
template <class T, int S> struct Curve {
  T steps[S];

  T& operator[](int k) {
    checkIndex(k, S);
    return steps[k - 1];
  }
  const T& operator[](int k) const {
    checkIndex(k, S);
    return steps[k - 1];
  }
  std::span<T> first(int n) { return {steps, static_cast<std::size_t>(n)}; }
  std::span<const T> first(int n) const { return {steps, static_cast<std::size_t>(n)}; }
};

// N functions of frequency, one per mode.
template <class T, int N, int S> struct CurveVector {
  Curve<T, S> curves[N];

  Curve<T, S>& curve(int i) {
    checkIndex(i, N);
    return curves[i - 1];
  }
  const Curve<T, S>& curve(int i) const {
    checkIndex(i, N);
    return curves[i - 1];
  }
  T& operator()(int k, int i) { return curve(i)[k]; }
  const T& operator()(int k, int i) const { return curve(i)[k]; }
};

// A matrix function of frequency with the frequency step running fastest: the curve of an element
// is contiguous, as the fits need it, and a small line touches few pages. Mapped for the order of
// the line.
template <class T, int S> struct CurveMatrix {
  MappedMatrix<Curve<T, S>> curves;

  void map(int n) { curves.map(n); }
  Curve<T, S>& curve(int i, int j) { return curves(i, j); }
  const Curve<T, S>& curve(int i, int j) const { return curves(i, j); }
  T& operator()(int k, int i, int j) { return curve(i, j)[k]; }
  const T& operator()(int k, int i, int j) const { return curve(i, j)[k]; }

  // Copies the n by n corner of step k out of the store (load) or into it (store).
  void load(int k, View<T> m, int n) const {
    for (int j = 1; j <= n; ++j) {
      for (int i = 1; i <= n; ++i) m(i, j) = (*this)(k, i, j);
    }
  }
  void store(int k, View<const T> m, int n) { store(k, k, m, n); }
  // Stores the same matrix at the steps first to last; the steps of an element are contiguous.
  void store(int first, int last, View<const T> m, int n) {
    for (int j = 1; j <= n; ++j) {
      for (int i = 1; i <= n; ++i) {
        for (int k = first; k <= last; ++k) (*this)(k, i, j) = m(i, j);
      }
    }
  }
};

} // namespace lcp
