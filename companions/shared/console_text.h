// Finds facts on a console by the texts that the program prints.
#pragma once

#include <string_view>

namespace lcp::companions {

// The fixed text of a format before its first value and after its last one.
constexpr std::string_view headOf(std::string_view form) { return form.substr(0, form.find('{')); }
constexpr std::string_view tailOf(std::string_view form) {
  return form.substr(form.rfind('}') + 1);
}

// Position of the last line, other than the first of the console, that starts with the text; npos
// if none.
std::size_t lastLine(std::string_view console, std::string_view text);

// The first number after that text; NaN if none.
double numberBehind(std::string_view console, std::string_view text);

} // namespace lcp::companions
