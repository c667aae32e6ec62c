// corvo-plot: one page that shows a line, its constants over frequency and how well the model fits.
#pragma once

#include <span>

namespace lcp::companions {

// Exit status: 0 done, 1 the page could not be written, 2 there is nothing to draw.
int plotLine(std::span<char* const> arguments);

} // namespace lcp::companions
