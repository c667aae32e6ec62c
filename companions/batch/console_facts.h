// Extracts the facts of the summary from the console of a run.
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace lcp::companions {

// Column name to text; columns without a value are absent.
using Facts = std::map<std::string, std::string, std::less<>>;

// Extracts from console and error stream: number of warnings, RXB of the first length, largest
// errors of the last fits in percent, passivity if the run checked it, and the first message.
Facts consoleFacts(std::string_view console, bool failed);

// The message about a file that could not be written, e.g. on a full device; empty if there is
// none.
std::string couldNotWrite(std::string_view console);

} // namespace lcp::companions
