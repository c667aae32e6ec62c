// Tables of fixed capacity with 1-based indices, and text fields of fixed length.
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

#ifdef LCP_BOUNDS
#include <cstdlib>
#endif

namespace lcp {

// Index check in debug and sanitizer builds; free in a release build.
#ifdef LCP_BOUNDS
constexpr void checkIndex(int i, int n) {
  if (i < 1 || i > n) std::abort();
}
#else
constexpr void checkIndex(int, int) {}
#endif

// A table of N entries with 1-based index. The number of entries in use is kept elsewhere.
template <class T, int N> struct Table {
  std::array<T, static_cast<std::size_t>(N)> entries{};

  static constexpr int capacity = N;
  constexpr T& operator[](int i) {
    checkIndex(i, N);
    return entries[static_cast<std::size_t>(i - 1)];
  }
  constexpr const T& operator[](int i) const {
    checkIndex(i, N);
    return entries[static_cast<std::size_t>(i - 1)];
  }
  constexpr bool holds(int i) const { return i >= 1 && i <= N; }
  constexpr void fill(const T& value) { entries.fill(value); }
  T* data() { return entries.data(); }
  const T* data() const { return entries.data(); }
};

// A text of N characters, padded with blanks; a longer text is truncated.
template <int N> struct TextField {
  std::array<char, static_cast<std::size_t>(N)> characters = blanks();

  static constexpr int capacity = N;
  static constexpr std::array<char, static_cast<std::size_t>(N)> blanks() {
    std::array<char, static_cast<std::size_t>(N)> a{};
    a.fill(' ');
    return a;
  }
  constexpr TextField& operator=(std::string_view text) {
    characters.fill(' ');
    std::copy_n(text.begin(), std::min(text.size(), characters.size()), characters.begin());
    return *this;
  }
  // whole: all N characters; text: without trailing blanks.
  constexpr std::string_view whole() const { return {characters.data(), characters.size()}; }
  constexpr std::string_view text() const {
    const auto last = whole().find_last_not_of(' ');
    return whole().substr(0, last == std::string_view::npos ? 0 : last + 1);
  }
  // Overwrites the characters from the 1-based column on; what does not fit is dropped.
  constexpr void overwrite(int column, std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
      const std::size_t at = static_cast<std::size_t>(column - 1) + i;
      if (at < characters.size()) characters[at] = text[i];
    }
  }
};

} // namespace lcp
