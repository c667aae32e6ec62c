// Tables of what the program understood of a description.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace lcp::companions {

using Json = nlohmann::ordered_json;

// Uses the run store after reading. Returns tables by name; each is a list of rows with the same
// columns, or a single row. A column name ends in its unit, if any: "radius_m".
Json understood();

// The tables as text for the console, one below the other.
std::string tablesAsText(const Json& tables);

} // namespace lcp::companions
