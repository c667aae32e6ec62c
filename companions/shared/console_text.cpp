#include "companions/shared/console_text.h"

#include <cstdlib>
#include <fmt/format.h>
#include <limits>

namespace lcp::companions {

namespace {

constexpr std::size_t LONGESTNUMBER = 30;

} // namespace

std::size_t lastLine(std::string_view console, std::string_view text) {
  const auto end = console.rfind(fmt::format("\n{}", text));
  return end == std::string_view::npos ? end : end + 1;
}

double numberBehind(std::string_view console, std::string_view text) {
  const auto line = lastLine(console, text);
  const auto digit = line == std::string_view::npos
                         ? line
                         : console.find_first_of("0123456789", line + text.size());
  if (digit == std::string_view::npos) return std::numeric_limits<double>::quiet_NaN();
  return std::strtod(std::string(console.substr(digit, LONGESTNUMBER)).c_str(), nullptr);
}

} // namespace lcp::companions
