// Lines that the console tables of the fits share.
#pragma once

namespace lcp {

// A rule of 68 signs behind one blank: equal signs or hyphens.
void fitRule(char sign);

// The line of the error that was asked for, in per cent.
void printErrorRequested(double percent);

} // namespace lcp
