// A temporary folder that is removed when the program ends.
#pragma once

#include "companions/shared/captured_run.h"

#include <string>
#include <string_view>

namespace lcp::companions {

// Path of a file in the scratch folder of this process, which is created at the first call. If that
// fails, the program ends with a message.
std::string scratchFile(std::string_view name);

// Runs the program for one length, in m, with model file and report in the scratch folder, named
// "model" and "report".
CapturedRun solveInScratch(const std::string& description, double length);

// Ends the program with a message if a run had no room for its files in the scratch folder.
void refuseFullScratch(const CapturedRun& run);

} // namespace lcp::companions
