// Finds the key that a line probably meant.
#pragma once

#include <span>
#include <string_view>

namespace lcp::companions {

// The words of a line that make up its key: up to the colon, or the whole line.
std::string_view keyWords(std::string_view line);

// The key nearest to these words by edit distance, ignoring case; empty if none is near. One letter
// in every `letters` may differ, and at least `least` letters.
std::string_view nearestKey(std::string_view words, std::span<const std::string_view> keys,
                            std::size_t letters, std::size_t least);

} // namespace lcp::companions
