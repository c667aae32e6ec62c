// Frame of the geometry messages: equal signs, the program's name and an empty line before the
// message, equal signs after it.
#pragma once

namespace lcp {

// Print the lines before and after the message.
void openRules();
void closeRules();

// Prints the closing rule and ends the run with exit status 1.
[[noreturn]] void stopWithRules();

} // namespace lcp
