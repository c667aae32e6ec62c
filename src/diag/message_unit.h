// The channel for messages of the eigen package: the console or a file.
//
// A channel is a file descriptor of the process, 0 to 99.
#pragma once

#include <string_view>

namespace lcp {

// Length of a text without trailing blanks.
int ULEN(std::string_view text);

// Writes one message line; a blank text writes nothing. The file " " keeps the channel, "*" closes
// it and returns to the console, any other name makes that file the channel, which is created or
// opened for appending unless it is open. A failure ends the run with exit status 1.
void W_OUTMSG(std::string_view text, std::string_view file);

// Opens a message file: "NEW" must not exist yet, "OLD" must exist. If unit equals test, it becomes
// the first channel that is not open; otherwise the file is opened on unit. A failure ends the run
// with exit status 1.
void OUTMS0(int& unit, int test, std::string_view file, std::string_view status);

} // namespace lcp
