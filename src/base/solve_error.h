// The common end of a solve that cannot go on.
#pragma once

#include <string_view>

namespace lcp {

// Closes the frame that console::openStars began, names the stage that ends, and ends the run,
// exit status 1.
[[noreturn]] void stopInStars(std::string_view ending = "QUENT Ending!");

} // namespace lcp
