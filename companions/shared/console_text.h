// Facts on a console, found by the texts that the program prints.
#pragma once

#include <string_view>

namespace lcp::companions {

// The fixed text of a format ahead of its first value, and behind its last one.
constexpr std::string_view headOf(std::string_view form) { return form.substr(0, form.find('{')); }
constexpr std::string_view tailOf(std::string_view form) {
  return form.substr(form.rfind('}') + 1);
}

// Where the last line that begins with the text starts, behind another one; npos without one.
std::size_t lastLine(std::string_view console, std::string_view text);

// The first number behind that text, NaN without one.
double numberBehind(std::string_view console, std::string_view text);

} // namespace lcp::companions
