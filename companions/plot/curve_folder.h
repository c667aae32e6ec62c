// Reads the detail curve files of a run into the data of a page.
#pragma once

#include "companions/plot/functions.h"

#include <string>

namespace lcp::companions {

// The data of a page from the detail curve files in a folder; null if there are none. Files with
// only a header are skipped, and so are files that repeat the data of others.
Json curvesOfFolder(const std::string& folder);

} // namespace lcp::companions
