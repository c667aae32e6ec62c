// The table of a batch, and its index of pages.
#pragma once

#include "companions/batch/case_status.h"

#include <string>
#include <vector>

namespace lcp::companions {

// One row a case, parted by tabs, behind a heading. Facts of a case that is not done are empty.
std::string summaryOf(const CaseList& list, const std::vector<Facts>& facts);

// The same as an HTML page with links to the pages of the cases, relative to the folder `work`.
std::string indexOf(const CaseList& list, const std::vector<Facts>& facts,
                    const std::filesystem::path& work);

// "7 cases: 5 ok, 2 failed"
std::string countsOf(const std::vector<Facts>& facts);

// Exit status: 0 every case made its model, 2 some with a warning, 1 some did not.
int exitStatus(const std::vector<Facts>& facts);

} // namespace lcp::companions
