// A folder for files that are gone when the program ends.
#pragma once

#include "companions/shared/captured_run.h"

#include <string>
#include <string_view>

namespace lcp::companions {

// The path of a file in the scratch folder of this process, which is made at the first call. Where
// none can be made the program ends with a message.
std::string scratchFile(std::string_view name);

// The whole run for one length, in metres, its model file and report in the scratch folder as
// "model" and "report".
CapturedRun solveInScratch(const std::string& description, double length);

// A run that found no room for its files in the scratch folder ends the program with a message.
void refuseFullScratch(const CapturedRun& run);

} // namespace lcp::companions
