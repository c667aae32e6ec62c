// The frame of the geometry messages: equal signs, the program's name and an empty line before the
// message lines, equal signs behind them.
#pragma once

namespace lcp {

void openRules();
void closeRules();

// The closing rule and the end of the run, exit status 1.
[[noreturn]] void stopWithRules();

} // namespace lcp
