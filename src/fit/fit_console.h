// Console lines shared by the tables of the fits.
#pragma once

#include "base/record.h"

#include <string_view>

namespace lcp {

// A rule of equal signs or hyphens after one blank.
void fitRule(char sign, int length = 68);

// Prints the requested error in percent.
void printErrorRequested(double percent);

// Appends an error in percent; small errors are in scientific form.
constexpr double SMALLERROR = 0.0005;
Record& addError(Record& row, double percent);

// Prints the warning of an error above the requested one, with its lines indented. The run will end
// with exit status 2.
void warnOfError(std::string_view indent);

// The same for one function in one line, if its error, a fraction, exceeds the target; returns
// whether it does.
bool warnOfMiss(std::string_view function, double err, double target);

// Prints a warning of one line. The run will end with exit status 2.
void warnInLine(std::string_view text);

// Ends the run with exit status 1, for a fit that is impossible or gave values that are not finite.
[[noreturn]] void refuseFit(std::string_view why);

} // namespace lcp
