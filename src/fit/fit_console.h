// Lines that the console tables of the fits share.
#pragma once

#include "base/record.h"

#include <string_view>

namespace lcp {

// A rule of so many signs behind one blank: equal signs or hyphens.
void fitRule(char sign, int length = 68);

// The line of the error that was asked for, in per cent.
void printErrorRequested(double percent);

// An error in per cent: in scientific form where it is small.
constexpr double SMALLERROR = 0.0005;
Record& addError(Record& row, double percent);

// The warning of an error above the one that was asked for, its lines moved in by so many blanks.
// The run ends with exit status 2.
void warnOfError(std::string_view indent);

// The same of one function in one line, when its error, a fraction, is above the target. True when
// it is.
bool warnOfMiss(std::string_view function, double err, double target);

// A warning of one line. The run ends with exit status 2.
void warnInLine(std::string_view text);

// Ends the run: a fit that gave values that are not finite, or cannot be made. Exit status 1.
[[noreturn]] void refuseFit(std::string_view why);

} // namespace lcp
