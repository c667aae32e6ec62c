// Units in brackets behind a value.
#pragma once

#include <string_view>

namespace lcp::companions {

// The text in the first brackets of a field; empty when there are none.
std::string_view bracketText(std::string_view field);

// Whether a text in brackets can stand for the unit that a key takes: spellings of the same unit, a
// unit with words behind it, and for a pure number what is no unit.
bool standsFor(std::string_view bracket, std::string_view unit);

} // namespace lcp::companions
