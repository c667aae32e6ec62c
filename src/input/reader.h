// The reader of the description file.
#pragma once

#include <string_view>

namespace lcp {

constexpr std::string_view UNKNOWNLINE = "Unknown Data Line Ignored: {}";

// Reads RUNDATA.run.FNAME whole into RUNDATA, checks it and orders its tables. Returns with the
// data complete, or ends the run with a message, exit status 1.
void READTLDATA();

} // namespace lcp
