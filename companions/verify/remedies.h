// What mends a bad finding: the key to change, and to what.
#pragma once

#include "companions/shared/verdicts.h"

#include <vector>

namespace lcp::companions {

// Adds the advice to the words of every bad finding.
void addRemedies(std::vector<Finding>& findings);

} // namespace lcp::companions
