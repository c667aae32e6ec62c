// Builds a self-contained page: style, scripts and data in one text.
#pragma once

#include "companions/plot/functions.h"

#include <string>
#include <string_view>

namespace lcp::companions {

// The page for these data. Invalid UTF-8 is shown as replacement characters, and no name in the
// data can end its script block.
std::string pageOf(const Json& data);

// Parts of the page, embedded when the program is built.
extern const std::string_view PAGEFRAME; // with a placeholder for each of the others
extern const std::string_view PAGESTYLE;
extern const std::string_view PAGESCRIPT;
extern const std::string_view CHARTSTYLE; // of the chart library
extern const std::string_view CHARTSCRIPT;

} // namespace lcp::companions
