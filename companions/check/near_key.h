// The key that a line may have meant.
#pragma once

#include <span>
#include <string_view>

namespace lcp::companions {

// The words of a line that stand for its key: up to the colon; without one the whole line.
std::string_view keyWords(std::string_view line);

// The key nearest to these words by edit distance, capitals and small letters alike; empty when
// none is near. One letter in `letters` may differ, at least `least` of them.
std::string_view nearestKey(std::string_view words, std::span<const std::string_view> keys,
                            std::size_t letters, std::size_t least);

} // namespace lcp::companions
