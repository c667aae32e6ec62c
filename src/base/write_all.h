// Writing to a descriptor.
#pragma once

#include <string_view>

namespace lcp {

// Writes the whole text; false when the device does not take all of it.
[[nodiscard]] bool writeAll(int descriptor, std::string_view text);

} // namespace lcp
