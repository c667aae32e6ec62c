// What corvo-verify says: one line a quantity, with its worst place and a verdict.
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
std::string_view wordOf(Verdict verdict);         // "good", "DOUBTFUL", "BAD"; empty for the last

// A limit by name: above the first number a value is doubtful, above the second bad.
struct Limit {
  std::string_view name;
  double doubtful, bad;
  std::string_view unit;
  std::string_view what; // for the help and the documents
};

struct Finding {
  Finding(std::string what, std::string place)
      : subject(std::move(what)), where(std::move(place)) {}

  std::string subject; // "Yc", "H", "passivity" ...
  std::string where;   // range, element, mode
  double value = 0;    // in the unit
  std::string_view unit;
  double rms = std::numeric_limits<double>::quiet_NaN(); // of the same unit, where there is one
  double frequency = std::numeric_limits<double>::quiet_NaN(); // Hz, of the worst case
  Verdict verdict = Verdict::TOLD;
  std::string words; // in plain words, where a number does not say it
};

// Deviations over some frequencies: the worst with its place, and the root of the mean square.
struct Deviation {
  double worst = 0, frequency = std::numeric_limits<double>::quiet_NaN(), squares = 0;
  std::size_t row = 0, column = 0, count = 0;

  // A deviation as a fraction, at f in Hz, of an element where there are several. NaN stays worst.
  void take(double e, double f, std::size_t i = 0, std::size_t j = 0);
  // In per cent.
  Finding finding(std::string subject, std::string where, Verdict verdict = Verdict::TOLD) const;
};

// The limits as the user left or set them: "name=doubtful:bad" parted by commas.
class Limits {
public:
  // False for a name that does not exist and for numbers that are none.
  bool set(std::string_view text);
  // TOLD for an empty name.
  Verdict judge(std::string_view name, double value) const;
  double doubtfulAbove(std::string_view name) const { return find(name).doubtful; }

private:
  std::vector<Limit> changed;
  const Limit& find(std::string_view name) const;
};

// All limits with their defaults.
const std::vector<Limit>& defaultLimits();

// The lines for a person, and the same as one JSON document.
std::string asText(const std::vector<Finding>& findings);
std::string asJson(const std::vector<Finding>& findings, std::string_view model, std::size_t n,
                   double length, const nlohmann::ordered_json& inTime);

// 1 when a finding is bad, else 0.
int exitStatus(const std::vector<Finding>& findings);

} // namespace lcp::companions
