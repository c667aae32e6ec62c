#include "companions/verify/told_by_run.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr std::string_view GIVENUP = "|>"; // of the search at its deepest digit
constexpr std::string_view STEPTITLE = "Frequency Step #";
constexpr double PRINTEDDIGIT = 1e-3; // %: differences below it are those of the digits printed

Finding stepsGivenUp(std::string_view console) {
  Finding f{"modes", "steps given up in the search"};
  std::string_view step;
  for (auto at = console.find(GIVENUP); at != std::string_view::npos;
       at = console.find(GIVENUP, at + GIVENUP.size())) {
    f.value += 1;
    const auto title = console.rfind(STEPTITLE, at);
    if (!step.empty() || title == std::string_view::npos) continue;
    step = console.substr(title, console.find('\n', title) - title);
  }
  f.verdict = f.value == 0 ? Verdict::GOOD : Verdict::DOUBTFUL;
  if (!step.empty()) f.words = fmt::format("{:.0f}, the first at {}", f.value, step);
  return f;
}

// The first number with a per cent sign behind the last table of that title; NaN without one.
double lastPrinted(const std::string& console, std::string_view title) {
  const double none = std::numeric_limits<double>::quiet_NaN();
  const auto table = console.rfind(title);
  const auto sign = table == std::string::npos ? table : console.find(" %", table);
  if (sign == std::string::npos) return none;
  const auto start = console.find_last_not_of("0123456789.", sign - 1);
  return std::strtod(console.c_str() + start + 1, nullptr);
}

} // namespace

std::vector<Finding> compareConsole(const std::string& console, const std::vector<Finding>& found,
                                    const Limits& limits) {
  std::vector<Finding> told = {stepsGivenUp(console)};
  for (const auto& [subject, title] : {std::pair("Yc", "\n Yc: "), std::pair("H", "\n Hphase: ")}) {
    const double printed = lastPrinted(console, title);
    const auto first =
        std::find_if(found.begin(), found.end(),
                     [subject = subject](const Finding& f) { return f.subject == subject; });
    if (first == found.end() || std::isnan(printed)) continue;
    Finding f{subject, "of the file over the printed error"};
    f.value = (first->value + PRINTEDDIGIT) / (printed + PRINTEDDIGIT);
    f.words = fmt::format("{:.4g} % over {:.4g} %", first->value, printed);
    f.verdict = limits.judge("printed", f.value);
    told.push_back(f);
  }
  return told;
}

} // namespace lcp::companions
