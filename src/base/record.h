// One line of an output file, built from left to right by columns.
#pragma once

#include "base/number_forms.h"

#include <cmath>
#include <string>
#include <string_view>

namespace lcp {

class Record {
public:
  Record() = default;
  explicit Record(std::string_view start) : characters(start) {}

  Record& text(std::string_view words) { return characters.append(words), *this; }
  Record& blanks(int n) { return characters.append(static_cast<std::size_t>(n), ' '), *this; }
  Record& integer(long long v, int w) { return text(integerField(v, w)); }
  Record& fixed(double v, int w, int d) { return number(v, fixedField(v, w, d)); }
  Record& scientific(double v, int w, int d) { return number(v, scientificField(v, w, d)); }
  Record& general(double v, int w, int d) { return number(v, generalField(v, w, d)); }
  // Appends a number that the caller has formatted.
  Record& number(double v, std::string_view field) {
    numbers = numbers && std::isfinite(v);
    return text(field);
  }
  // Appends blanks so that the next field starts at the 1-based column c.
  Record& column(int c) {
    if (static_cast<int>(characters.size()) < c - 1)
      characters.resize(static_cast<std::size_t>(c - 1), ' ');
    return *this;
  }
  std::string_view view() const { return characters; }
  bool finite() const { return numbers; } // whether all its numbers are finite

private:
  std::string characters;
  bool numbers = true;
};

} // namespace lcp
