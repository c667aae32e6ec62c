// The channel that messages of the eigen package go to: the console, or a file.
//
// A channel is a file descriptor of the process, 0 to 99.
#pragma once

#include <string_view>

namespace lcp {

// Length of a text without the blanks behind it.
int ULEN(std::string_view text);

// Writes one message line; a blank text writes nothing. File " " keeps the channel, "*" closes it
// and goes back to the console, a name makes that file the channel: it is created, or opened to
// be continued, unless it is open. A failure ends the run with exit status 1.
void W_OUTMSG(std::string_view text, std::string_view file);

// Opens a message file, a "NEW" one, which must not exist, or an "OLD" one, which must. A unit
// equal to the test value becomes the first channel that is not open; any other is the channel to
// open. A failure ends the run with exit status 1.
void OUTMS0(int& unit, int test, std::string_view file, std::string_view status);

} // namespace lcp
