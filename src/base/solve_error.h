// The common ends of a run that cannot go on.
#pragma once

#include <string_view>

namespace lcp {

// Closes the frame that console::openStars began, names the stage that ends, and ends the run,
// exit status 1.
[[noreturn]] void stopInStars(std::string_view ending = "QUENT Ending!");

// The end of a run one of whose outputs is a file that it reads, by name or by a link.
[[noreturn]] void stopAtInput(std::string_view name);

// The end of a run whose memory is used up, in place of an exception that nothing catches. Asks for
// no memory itself.
[[noreturn]] void stopWithoutMemory();

} // namespace lcp
