// Detail curve files of a run, as a page holds them.
#pragma once

#include "companions/plot/functions.h"

#include <string>

namespace lcp::companions {

// The data of a page from the detail curve files in a folder; null when there are none. Files that
// hold a header alone are passed over, and so are the ones that say the same a second time.
Json curvesOfFolder(const std::string& folder);

} // namespace lcp::companions
