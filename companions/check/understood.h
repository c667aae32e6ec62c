// What the program understood of a description, as tables.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace lcp::companions {

using Json = nlohmann::ordered_json;

// Over the run store behind the reader: tables by name, each a list of rows with the same columns,
// or a single row. A column's name ends in its unit, if it has one: "radius_m".
Json understood();

// The same for the console, a table below the other.
std::string tablesAsText(const Json& tables);

} // namespace lcp::companions
