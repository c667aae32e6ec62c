#include "companions/shared/verdicts.h"

#include "input/free_form.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace lcp::companions {

namespace {

constexpr std::string_view VERDICTS[] = {"good", "DOUBTFUL", "BAD", ""};

std::string numberOf(double value, std::string_view unit) {
  if (unit.empty()) return fmt::format("{:.4g}", value);
  return fmt::format("{:.4g} {}", value, unit);
}

std::string lineOf(const Finding& f) {
  std::string line = fmt::format("{:9} {:12} {:34}", wordOf(f.verdict), f.subject, f.where);
  if (!f.words.empty()) line += " " + f.words;
  if (f.words.empty()) line += fmt::format(" {:>14}", numberOf(f.value, f.unit));
  if (!std::isnan(f.rms)) line += fmt::format(", rms {}", numberOf(f.rms, f.unit));
  if (!std::isnan(f.frequency)) line += fmt::format(" at {:.4g} Hz", f.frequency);
  if (!f.remedy.empty()) line += "; try " + f.remedy;
  return line + "\n";
}

} // namespace

std::string_view wordOf(Verdict v) { return VERDICTS[static_cast<std::size_t>(v)]; }

void Deviation::take(double e, double f, std::size_t i, std::size_t j) {
  squares += e * e;
  if (count++ > 0 && (e <= worst || std::isnan(worst))) return;
  worst = e;
  frequency = f;
  row = i;
  column = j;
}

Finding Deviation::finding(std::string subject, std::string where, Verdict verdict) const {
  Finding f{std::move(subject), std::move(where)};
  f.value = 100 * worst;
  f.unit = "%";
  if (count > 1) f.rms = 100 * std::sqrt(squares / static_cast<double>(count));
  f.frequency = frequency;
  f.verdict = verdict;
  return f;
}

const std::vector<Limit>& defaultLimits() {
  static const std::vector<Limit> LIMITS = {
      {"yc", 1, 5, "%", "characteristic admittance in the band, of its largest magnitude"},
      {"h", 1, 5, "%", "propagation function in the band, of 1"},
      {"z", 1, 5, "%", "series impedance in the band, of its largest magnitude"},
      {"mode", 5, 20, "%", "surge impedance, attenuation or transformation of a mode in the band"},
      {"outside", 10, 50, "%", "the same a decade below and a decade above the band"},
      {"zero", 10, 100, "%", "the same at zero frequency, of a line with conductances"},
      {"exact", 0.1, 1, "%", "pi and Bergeron data against the line"},
      {"passive", 1e-6, 1e-3, "", "negative eigenvalue of a nodal admittance, of its largest one"},
      {"printed", 1.5, 4, "", "error of the file over the error that the run prints"},
      {"ratio", 100, 1000, "", "residue over pole"},
      {"condition", 100, 1e4, "", "of the transformation"},
      {"time", 2, 10, "%", "a model's voltage or current in a simulation, of the line's largest"},
      {"step", 2, 5, "%", "what the step of the simulation adds to that"},
      {"terminal", 1, 5, "%", "impedance, resistance and susceptance between the ends"},
  };
  return LIMITS;
}

const Limit& Limits::find(std::string_view name) const {
  const auto is = [name](const Limit& l) { return l.name == name; };
  const auto mine = std::find_if(changed.begin(), changed.end(), is);
  if (mine != changed.end()) return *mine;
  return *std::find_if(defaultLimits().begin(), defaultLimits().end(), is);
}

bool Limits::set(std::string_view text) {
  while (!text.empty()) {
    const std::string_view one = text.substr(0, text.find(','));
    text.remove_prefix(std::min(text.size(), one.size() + 1));
    const auto equals = one.find('='), colon = one.find(':');
    if (equals == std::string_view::npos || colon == std::string_view::npos || colon < equals)
      return false;
    const std::string_view name = one.substr(0, equals);
    const auto row = std::find_if(defaultLimits().begin(), defaultLimits().end(),
                                  [name](const Limit& l) { return l.name == name; });
    if (row == defaultLimits().end()) return false;
    Limit limit = *row;
    if (!parseReal(one.substr(equals + 1, colon - equals - 1), limit.doubtful) ||
        !parseReal(one.substr(colon + 1), limit.bad))
      return false;
    changed.insert(changed.begin(), limit);
  }
  return true;
}

Verdict Limits::judge(std::string_view name, double value) const {
  if (name.empty()) return Verdict::TOLD;
  const Limit& limit = find(name);
  if (!(value <= limit.bad)) return Verdict::BAD; // NaN is bad
  return value <= limit.doubtful ? Verdict::GOOD : Verdict::DOUBTFUL;
}

std::string asText(const std::vector<Finding>& findings) {
  std::string text;
  for (const Finding& f : findings) text += lineOf(f);
  return text;
}

std::string asJson(const std::vector<Finding>& findings, std::string_view model, std::size_t n,
                   double length, const nlohmann::ordered_json& inTime) {
  nlohmann::ordered_json document = {{"model", model}, {"conductors", n}, {"length", length}};
  document["findings"] = nlohmann::ordered_json::array();
  for (const Finding& f : findings) {
    nlohmann::ordered_json one = {{"subject", f.subject}, {"where", f.where}};
    if (f.words.empty() || f.value != 0) one["value"] = f.value;
    if (!f.unit.empty()) one["unit"] = f.unit;
    if (!std::isnan(f.rms)) one["rms"] = f.rms;
    if (!std::isnan(f.frequency)) one["frequency"] = f.frequency;
    if (!f.words.empty()) one["words"] = f.words;
    if (!f.remedy.empty()) one["remedy"] = f.remedy;
    if (f.verdict != Verdict::TOLD) {
      std::string verdict(wordOf(f.verdict));
      std::transform(verdict.begin(), verdict.end(), verdict.begin(),
                     [](char c) { return static_cast<char>(std::tolower(c)); });
      one["verdict"] = verdict;
    }
    document["findings"].push_back(one);
  }
  if (!inTime.empty()) document["in_time"] = inTime;
  return document.dump(1) + "\n";
}

int exitStatus(const std::vector<Finding>& findings) {
  const bool bad = std::any_of(findings.begin(), findings.end(),
                               [](const Finding& f) { return f.verdict == Verdict::BAD; });
  return bad ? 1 : 0;
}

} // namespace lcp::companions
