#include "companions/batch/console_facts.h"

#include "companions/batch/case_list.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr std::size_t LONGESTMESSAGE = 200;
constexpr double PERCENT = 100; // the mode model prints fractions

// Lines that tell of trouble in a run that goes on.
constexpr std::string_view WARNINGS[] = {"*WARNING*",
                                         "Warning:",
                                         "*** WARNING:",
                                         "An error occurred in calculating",
                                         "Failed to converge",
                                         "NEWTON-RAPHSON EIGENVALUE PROCEDURE",
                                         "Unknown Data Line Ignored",
                                         "Cannot Open",
                                         "corvo: warning: "};

bool contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

bool warns(std::string_view line) {
  return std::any_of(std::begin(WARNINGS), std::end(WARNINGS),
                     [line](std::string_view w) { return contains(line, w); });
}

// A line without the blanks and frames around it.
std::string bare(std::string_view line) {
  constexpr std::string_view FRAME = " *=-.\t";
  const auto first = line.find_first_not_of(FRAME);
  if (first == std::string_view::npos) return {};
  const auto last = line.find_last_not_of(" \t");
  return std::string(line.substr(first, last - first + 1));
}

// What stands behind the word ERROR, lines put together; of a run that ended without it the last
// line.
std::string errorOf(const std::vector<std::string>& lines) {
  const auto first = std::find_if(lines.begin(), lines.end(), [](const std::string& l) {
    return contains(l, "ERROR") || contains(l, "failed with status");
  });
  std::string message, last;
  for (auto line = first; line != lines.end(); ++line) {
    const std::string text = bare(*line);
    if (text.empty() || text.ends_with(".exe: ERROR") || text.ends_with("Program: ERROR")) continue;
    if (!message.empty()) message += " | ";
    message += text;
  }
  for (const std::string& line : lines)
    if (!bare(line).empty()) last = bare(line);
  return message.empty() ? last : message;
}

// 0 where there is none.
std::size_t lastPlace(std::string_view console, std::string_view title) {
  const auto at = console.rfind(title);
  return at == std::string_view::npos ? 0 : at + 1;
}

// The first number behind that text, and behind its last occurrence where there are several.
double numberBehind(std::string_view console, std::string_view title) {
  const auto at = console.rfind(title);
  if (at == std::string_view::npos) return std::nan("");
  const auto digit = console.find_first_of("0123456789", at + title.size());
  if (digit == std::string_view::npos) return std::nan("");
  return std::strtod(std::string(console.substr(digit, 30)).c_str(), nullptr);
}

void addNumber(Facts& facts, std::string_view column, double value) {
  if (!std::isnan(value)) facts[std::string(column)] = fmt::format("{:.4g}", value);
}

// Errors of the fits of modes: each stands in the line below its title.
void addModeErrors(Facts& facts, const std::vector<std::string>& lines, std::string_view title,
                   std::string_view column) {
  double worst = std::nan("");
  for (std::size_t k = 0; k + 1 < lines.size(); ++k)
    if (lines[k].ends_with(title))
      worst = std::fmax(worst, std::strtod(lines[k + 1].c_str(), nullptr));
  addNumber(facts, column, PERCENT * worst);
}

void addSequence(Facts& facts, std::string_view console) {
  constexpr std::string_view RXB = " RXB: ";
  const auto at = console.find(RXB);
  if (at == std::string_view::npos) return;
  const auto line = console.substr(at + RXB.size(), console.find('\n', at) - at - RXB.size());
  const std::vector<std::string> values = fieldsOf(line, ',');
  for (std::size_t k = 0; k < std::min<std::size_t>(values.size(), 3); ++k)
    facts[std::string(1, "RXB"[k])] = bare(values[k]).empty() ? "" : wordsOf(values[k])[0];
}

// The last word on it. That of the enforcement is not the whole truth: a model whose change
// exceeds its limit stays as it was fitted without a word.
void addPassivity(Facts& facts, std::string_view console) {
  constexpr std::pair<std::string_view, std::string_view> TOLD[] = {
      {"No passivity violations detected.", "told: passive"},
      {"There are no passivity violations  ", "told: passive"},
      {"Passivity is sucessfully enforced", "told: enforced"},
      {"Passivity is not enforced", "told: not enforced"},
      {"Constrained solution failed", "told: not enforced"},
      {"Initial passivity violations", "told: not enforced"},
      {"Passivity violations detected", "told: violated"}};
  std::size_t last = 0;
  for (const auto& [text, verdict] : TOLD) {
    const auto at = console.rfind(text);
    if (at == std::string_view::npos || at < last) continue;
    last = at;
    facts["passivity"] = verdict;
  }
}

} // namespace

Facts consoleFacts(std::string_view console, bool failed) {
  constexpr std::string_view HPHASE = "\n Hphase: ", FINALFIT = "\n Final Fit:";
  const std::vector<std::string> lines = linesOf(console);
  Facts facts;
  facts["warnings"] = std::to_string(std::count_if(lines.begin(), lines.end(), warns));
  addSequence(facts, console);
  addNumber(facts, "Yc", numberBehind(console, "\n Yc: "));
  // Behind a DC correction its table is the last one.
  const bool corrected = lastPlace(console, FINALFIT) > lastPlace(console, HPHASE);
  addNumber(facts, "H", numberBehind(console, corrected ? FINALFIT : HPHASE));
  addNumber(facts, "Z", numberBehind(console, "\n  Actual: "));
  addModeErrors(facts, lines, "Surge Impedance:", "Zc");
  addModeErrors(facts, lines, "Attenuation Constant:", "A");
  addPassivity(facts, console);
  const auto warning = std::find_if(lines.begin(), lines.end(), warns);
  std::string message = warning == lines.end() ? "" : bare(*warning);
  if (failed) message = errorOf(lines);
  facts["message"] = message.substr(0, LONGESTMESSAGE);
  return facts;
}

std::string couldNotWrite(std::string_view console) {
  const auto at = console.find("Error in Writing ");
  if (at == std::string_view::npos) return {};
  return std::string(console.substr(at, console.find('\n', at) - at));
}

} // namespace lcp::companions
