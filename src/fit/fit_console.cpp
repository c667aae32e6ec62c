#include "fit/fit_console.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/number_forms.h"
#include "base/solve_error.h"
#include "store/rundata.h"

#include <fmt/format.h>
#include <string>

namespace lcp {

void fitRule(char sign, int length) {
  console::print(" {}", std::string(static_cast<std::size_t>(length), sign));
}

void printErrorRequested(double percent) {
  console::print(" Maximum Fitting Error Requested: {:24}{} %", "", fixedField(percent, 9, 4));
}

Record& addError(Record& row, double percent) {
  if (percent < SMALLERROR) {
    row.scientific(percent, 9, 3);
  } else {
    row.fixed(percent, 9, 4);
  }
  return row.text(" %");
}

void warnOfError(std::string_view indent) {
  console::line();
  console::print("{}{}: The relative fitting error exceeds the ", indent, console::WARNINGMARK);
  console::print("{}           maximum requested. This may be partially", indent);
  console::print("{}           improved by increasing the maximum # of", indent);
  console::print("{}           poles.", indent);
  warn();
}

void warnInLine(std::string_view text) {
  console::print(" {}: {}", console::WARNINGMARK, text);
  warn();
}

bool warnOfMiss(std::string_view function, double err, double target) {
  if (err <= target) return false;
  warnInLine(fmt::format("{} misses its Fitting Error: {:.4g} % instead of {:.4g} %", function,
                         INPERCENT * err, INPERCENT * target));
  return true;
}

void refuseFit(std::string_view why) {
  console::openStars();
  console::line(why);
  stopInStars();
}

} // namespace lcp
