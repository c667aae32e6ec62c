// Writes a text to a file descriptor.
#pragma once

#include <string_view>

namespace lcp {

// Writes the whole text, resuming after interrupts; false if the device does not take all of it.
[[nodiscard]] bool writeAll(int descriptor, std::string_view text);

} // namespace lcp
