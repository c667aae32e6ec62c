// One page that needs nothing beside it: style, scripts and data in one text.
#pragma once

#include "companions/plot/functions.h"

#include <string>
#include <string_view>

namespace lcp::companions {

// The page of these data. Bytes that are no UTF-8 show as replacement characters, and no name in
// the data can end the block that it stands in.
std::string pageOf(const Json& data);

// Parts of the page as they were when the program was built.
extern const std::string_view PAGEFRAME; // with a place for each of the others
extern const std::string_view PAGESTYLE;
extern const std::string_view PAGESCRIPT;
extern const std::string_view CHARTSTYLE; // of the library that draws charts
extern const std::string_view CHARTSCRIPT;

} // namespace lcp::companions
