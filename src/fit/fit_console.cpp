#include "fit/fit_console.h"

#include "base/console.h"
#include "base/number_forms.h"
#include "base/solve_error.h"

#include <string>

namespace lcp {

namespace {

constexpr int RULELENGTH = 68;

} // namespace

void fitRule(char sign) { console::line(" " + std::string(RULELENGTH, sign)); }

void printErrorRequested(double percent) {
  console::print(" Maximum Fitting Error Requested: {:24}{} %", "", fixedField(percent, 9, 4));
}

void refuseFit(std::string_view why) {
  console::openStars();
  console::line(why);
  stopInStars();
}

} // namespace lcp
