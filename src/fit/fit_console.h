// Lines that the console tables of the fits share.
#pragma once

#include <string_view>

namespace lcp {

// A rule of 68 signs behind one blank: equal signs or hyphens.
void fitRule(char sign);

// The line of the error that was asked for, in per cent.
void printErrorRequested(double percent);

// Ends the run: a fit that gave values that are no finite numbers, or cannot be made. Exit
// status 1.
[[noreturn]] void refuseFit(std::string_view why);

} // namespace lcp
