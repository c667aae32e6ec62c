// What a run told on its console, as columns of the summary.
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace lcp::companions {

// Column to text; a column without a value is missing.
using Facts = std::map<std::string, std::string, std::less<>>;

// Of the console and the error stream of a run: number of warnings, RXB of the first length,
// largest errors of the last fits in per cent, passivity where the run looked at it, and the first
// message.
Facts consoleFacts(std::string_view console, bool failed);

// The message on a file that could not be written, as on a full device; empty without one.
std::string couldNotWrite(std::string_view console);

} // namespace lcp::companions
