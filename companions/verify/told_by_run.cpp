#include "companions/verify/told_by_run.h"

#include "companions/shared/console_text.h"
#include "fit/admittance_fit.h"
#include "fit/propagation_tables.h"
#include "modal/tracked_step.h"
#include "passivity/enforcement.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr double PRINTEDDIGIT = 1e-3; // %: smaller differences come from the digits printed

Finding stepsGivenUp(std::string_view console) {
  Finding f{"modes", "steps given up in the search"};
  std::string_view step;
  for (auto at = console.find(GIVENUP); at != std::string_view::npos;
       at = console.find(GIVENUP, at + GIVENUP.size())) {
    f.value += 1;
    const auto title = console.rfind(headOf(STEPLINE), at);
    if (!step.empty() || title == std::string_view::npos) continue;
    step = console.substr(title + 1, console.find('\n', title) - title - 1); // without its blank
  }
  f.verdict = f.value == 0 ? Verdict::GOOD : Verdict::DOUBTFUL;
  if (!step.empty()) f.words = fmt::format("{:.0f}, the first at {}", f.value, step);
  return f;
}

// A run that ended its enforcement with success, and a file that is negative all the same.
std::vector<Finding> enforcedOnlyByWord(std::string_view console,
                                        const std::vector<Finding>& found) {
  if (console.find(ENFORCEDLINE) == std::string_view::npos) return {};
  const auto negative = [](const Finding& f) {
    return f.subject == "passivity" && f.value < 0 && f.verdict != Verdict::GOOD;
  };
  const auto worst = std::find_if(found.begin(), found.end(), negative);
  if (worst == found.end()) return {};
  Finding f{"passivity", "called enforced by the run"};
  f.words = fmt::format("the file has {:.4g} S at {:.4g} Hz", worst->value, worst->frequency);
  f.verdict = Verdict::BAD;
  return {f};
}

} // namespace

std::vector<Finding> compareConsole(const std::string& console, const std::vector<Finding>& found,
                                    const Limits& limits) {
  std::vector<Finding> told = {stepsGivenUp(console)};
  for (const auto& [subject, title] : {std::pair("Yc", YCHEADING), std::pair("H", HPHASEHEADING)}) {
    const double printed = numberBehind(console, title);
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
  const std::vector<Finding> enforced = enforcedOnlyByWord(console, found);
  told.insert(told.end(), enforced.begin(), enforced.end());
  return told;
}

} // namespace lcp::companions
