// The common ways in which a run that cannot go on ends.
#pragma once

#include <string_view>

namespace lcp {

// Closes the frame that console::openStars began, prints the line that names the stage, and ends
// the run with exit status 1.
[[noreturn]] void stopInStars(std::string_view ending = "QUENT Ending!");

// Ends the run with exit status 1: an output file is also an input of the run, by name or by a
// link.
[[noreturn]] void stopAtInput(std::string_view name);

// Ends the run with exit status 1 when memory is exhausted, in place of an uncaught exception.
// Needs no memory itself.
[[noreturn]] void stopWithoutMemory();

} // namespace lcp
