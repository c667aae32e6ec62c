#include "companions/batch/console_facts.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/open_files.h"
#include "companions/batch/case_list.h"
#include "companions/shared/console_text.h"
#include "companions/shared/text.h"
#include "diag/message_package.h"
#include "fit/admittance_fit.h"
#include "fit/mode_model.h"
#include "fit/propagation_tables.h"
#include "fit/series_fit.h"
#include "improved/passivity/spectrum_enforcement.h"
#include "input/external_conductors.h"
#include "input/library.h"
#include "input/reader.h"
#include "modal/manual_modes.h"
#include "modal/tracked_step.h"
#include "output/output_file.h"
#include "output/report_sections.h"
#include "overhead/carson_integral.h"
#include "passivity/enforcement.h"
#include "passivity/passivity_check.h"
#include "run/command_line.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr std::size_t LONGESTMESSAGE = 200;
constexpr std::string_view ERRORWORD = "ERROR"; // appears in the first lines of an error message

// Texts of warnings in a run that continues.
constexpr std::string_view WARNINGS[] = {
    console::WARNINGMARK, console::WARNINGHEAD, headOf(UNKNOWNLINE), headOf(CANNOTOPEN),
    LIBRARYWARNING,       BUNDLEWARNING,        UNITSWARNING,        NEWTONTITLE,
    NOTCONVERGED,         headOf(WARNINGREPORT)};

bool contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

bool warns(std::string_view line) {
  return std::any_of(std::begin(WARNINGS), std::end(WARNINGS),
                     [line](std::string_view w) { return contains(line, w); });
}

// A line without surrounding blanks and frames.
std::string bare(std::string_view line) {
  constexpr std::string_view FRAME = " *=-.\t";
  const auto first = line.find_first_not_of(FRAME);
  if (first == std::string_view::npos) return {};
  const auto last = line.find_last_not_of(" \t");
  return std::string(line.substr(first, last - first + 1));
}

// The lines after the word ERROR, joined; the last line of the console if there is none.
std::string errorOf(const std::vector<std::string>& lines) {
  const auto first = std::find_if(lines.begin(), lines.end(), [](const std::string& l) {
    return contains(l, ERRORWORD) || contains(l, headOf(ARGUMENTFAILED));
  });
  std::string message, last;
  for (auto line = first; line != lines.end(); ++line) {
    const std::string text = bare(*line);
    if (text.empty() || text.ends_with(ERRORWORD)) continue; // frames and titles
    if (!message.empty()) message += " | ";
    message += text;
  }
  for (const std::string& line : lines)
    if (!bare(line).empty()) last = bare(line);
  return message.empty() ? last : message;
}

void addNumber(Facts& facts, std::string_view column, double value) {
  if (!std::isnan(value)) facts[std::string(column)] = fmt::format("{:.4g}", value);
}

// Adds the largest error of the fits of the modes; each is a fraction in the line after its title.
void addModeErrors(Facts& facts, const std::vector<std::string>& lines, std::string_view title,
                   std::string_view column) {
  double worst = std::nan("");
  for (std::size_t k = 0; k + 1 < lines.size(); ++k) {
    if (lines[k].starts_with(headOf(title)) && lines[k].ends_with(tailOf(title)))
      worst = std::fmax(worst, std::strtod(lines[k + 1].c_str(), nullptr));
  }
  addNumber(facts, column, INPERCENT * worst);
}

void addSequence(Facts& facts, std::string_view console) {
  const auto at = console.find(SIMULATORLINE);
  if (at == std::string_view::npos) return;
  const auto line = console.substr(at, console.find('\n', at) - at).substr(SIMULATORLINE.size());
  const std::vector<std::string> values = fieldsOf(line, ',');
  for (std::size_t k = 0; k < std::min<std::size_t>(values.size(), 3); ++k)
    facts[std::string(1, "RXB"[k])] = bare(values[k]).empty() ? "" : wordsOf(values[k])[0];
}

// Takes the last statement about passivity. The one about the enforcement can be incomplete: a
// model whose change exceeds the limit is left as fitted without a message.
void addPassivity(Facts& facts, std::string_view console) {
  constexpr std::pair<std::string_view, std::string_view> TOLD[] = {
      {PASSIVELINE, "told: passive"},         {NOVIOLATIONLINE, "told: passive"},
      {ENFORCEDLINE, "told: enforced"},       {headOf(NOTENFORCED), "told: not enforced"},
      {NOSOLUTIONLINE, "told: not enforced"}, {INITIALLINE, "told: not enforced"},
      {VIOLATEDLINE, "told: violated"}};
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
  const std::vector<std::string> lines = linesOf(console);
  Facts facts;
  facts["warnings"] = std::to_string(std::count_if(lines.begin(), lines.end(), warns));
  addSequence(facts, console);
  addNumber(facts, "Yc", numberBehind(console, YCHEADING));
  // After a DC correction its table is the last one. For npos the sum is 0.
  const bool corrected = lastLine(console, FINALHEADING) + 1 > lastLine(console, HPHASEHEADING) + 1;
  addNumber(facts, "H", numberBehind(console, corrected ? FINALHEADING : HPHASEHEADING));
  addNumber(facts, "Z", numberBehind(console, SERIESRESULT));
  addModeErrors(facts, lines, SURGELINE, "Zc");
  addModeErrors(facts, lines, ATTENUATIONLINE, "A");
  addPassivity(facts, console);
  const auto warning = std::find_if(lines.begin(), lines.end(), warns);
  std::string message = warning == lines.end() ? "" : bare(*warning);
  if (failed) message = errorOf(lines);
  facts["message"] = message.substr(0, LONGESTMESSAGE);
  return facts;
}

std::string couldNotWrite(std::string_view console) {
  const auto at = console.find(headOf(FILENOTWRITTEN));
  if (at == std::string_view::npos) return {};
  return std::string(console.substr(at, console.find('\n', at) - at));
}

} // namespace lcp::companions
