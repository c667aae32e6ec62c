// The summary table of a batch and its HTML index.
#pragma once

#include "companions/batch/case_status.h"

#include <string>
#include <vector>

namespace lcp::companions {

// One row per case, separated by tabs, after a heading. Facts of a case that is not done are empty.
std::string summaryOf(const CaseList& list, const std::vector<Facts>& facts);

// The same as an HTML page with links to the pages of the cases, relative to folder `work`.
std::string indexOf(const CaseList& list, const std::vector<Facts>& facts,
                    const std::filesystem::path& work);

// Returns a text such as "7 cases: 5 ok, 2 failed".
std::string countsOf(const std::vector<Facts>& facts);

// Exit status: 0 every case made its model, 2 some with warnings, 1 some did not.
int exitStatus(const std::vector<Facts>& facts);

} // namespace lcp::companions
