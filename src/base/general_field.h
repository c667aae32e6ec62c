// General fields of one width written in place: for tables of so many numbers that the text of each
// counts.
#pragma once

namespace lcp {

constexpr int GENERALWIDTH = 16; // columns
constexpr int GENERALDIGITS = 8; // significant

// Writes GENERALWIDTH characters, the same as generalField(value, GENERALWIDTH, GENERALDIGITS).
void putGeneral(double value, char* to);

} // namespace lcp
