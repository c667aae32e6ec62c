// Findings of corvo-verify: one line per quantity, with its worst case and a verdict.
#pragma once

#include <cstddef>
#include <limits>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lcp::companions {

enum class Verdict { GOOD, DOUBTFUL, BAD, TOLD }; // TOLD: information without a limit
std::string_view wordOf(Verdict verdict);         // "good", "DOUBTFUL", "BAD"; empty for TOLD

// A named limit: a value above `doubtful` is doubtful, above `bad` bad.
struct Limit {
  std::string_view name;
  double doubtful, bad;
  std::string_view unit;
  std::string_view what; // for the help text and the documents
};

struct Finding {
  Finding(std::string what, std::string place)
      : subject(std::move(what)), where(std::move(place)) {}

  std::string subject; // "Yc", "H", "passivity" ...
  std::string where;   // range, element, mode
  double value = 0;    // in `unit`
  std::string_view unit;
  double rms = std::numeric_limits<double>::quiet_NaN(); // root mean square in the same unit, if
                                                         // there is one
  double frequency = std::numeric_limits<double>::quiet_NaN(); // frequency of the worst case, Hz
  Verdict verdict = Verdict::TOLD;
  std::string remedy; // of a bad one: what mends it
  std::string words;  // explanation, if the number is not enough
};

// Deviations over several frequencies: the worst one with its position, and the root mean square.
struct Deviation {
  double worst = 0, frequency = std::numeric_limits<double>::quiet_NaN(), squares = 0;
  std::size_t row = 0, column = 0, count = 0;

  // Adds a deviation, as a fraction, at frequency f in Hz, for element (i, j). NaN stays the worst.
  void take(double e, double f, std::size_t i = 0, std::size_t j = 0);
  // The finding in percent.
  Finding finding(std::string subject, std::string where, Verdict verdict = Verdict::TOLD) const;
};

// The limits with the changes of the user, given as "name=doubtful:bad" separated by commas.
class Limits {
public:
  // Returns false for an unknown name or an invalid number.
  bool set(std::string_view text);
  // Returns TOLD for an empty name.
  Verdict judge(std::string_view name, double value) const;
  double doubtfulAbove(std::string_view name) const { return find(name).doubtful; }

private:
  std::vector<Limit> changed;
  const Limit& find(std::string_view name) const;
};

// All limits with default values.
const std::vector<Limit>& defaultLimits();

// The findings as lines of text, and as a JSON document.
std::string asText(const std::vector<Finding>& findings);
std::string asJson(const std::vector<Finding>& findings, std::string_view model, std::size_t n,
                   double length, const nlohmann::ordered_json& inTime);

// 1 if a finding is bad, else 0.
int exitStatus(const std::vector<Finding>& findings);

} // namespace lcp::companions
