// corvo-plot: draws one page with a line, its constants over frequency and the quality of the
// model.
#pragma once

#include <span>

namespace lcp::companions {

// Exit status: 0 done, 1 the page could not be written, 2 nothing to draw.
int plotLine(std::span<char* const> arguments);

} // namespace lcp::companions
