// Units in brackets after a value.
#pragma once

#include <string_view>

namespace lcp::companions {

// The text in the first brackets of a field; empty if there are none.
std::string_view bracketText(std::string_view field);

// Whether a text in brackets is compatible with the unit of a key: another spelling of the unit,
// the unit followed by words, or, for a pure number, anything that is not a unit.
bool standsFor(std::string_view bracket, std::string_view unit);

} // namespace lcp::companions
