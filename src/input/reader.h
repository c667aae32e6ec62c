// Reads a description file into the run store.
#pragma once

#include <string_view>

namespace lcp {

constexpr std::string_view UNKNOWNLINE = "Unknown Data Line Ignored: {}";

// Reads all of RUNDATA.run.FNAME into RUNDATA, checks it and orders its tables. Returns with
// complete data, or ends the run with a message and exit status 1.
void READTLDATA();

// Reads the lines only, without the checks and the ordering that follow.
void readLines();

} // namespace lcp
