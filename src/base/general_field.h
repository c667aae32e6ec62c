// General number fields of one width, written in place: for tables with so many numbers that
// formatting takes a noticeable share of the time.
#pragma once

namespace lcp {

constexpr int GENERALWIDTH = 16; // columns
constexpr int GENERALDIGITS = 8; // significant digits

// Writes GENERALWIDTH characters, the same as generalField(value, GENERALWIDTH, GENERALDIGITS). No
// terminating zero.
void putGeneral(double value, char* to);

} // namespace lcp
