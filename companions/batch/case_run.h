// Runs one case: prepares its folder, starts the program and writes the status.
#pragma once

#include "companions/batch/case_status.h"

#include <string>

namespace lcp::companions {

enum class CaseEnd { DONE, NOTWRITTEN, SIGNAL };

struct CaseOutcome {
  CaseEnd end = CaseEnd::DONE;
  int signal = 0;
  std::string trouble; // error message of a case whose files cannot be written
  bool full = false;   // the device is full, so the following cases would fail too
};

// Runs a case that is not done. Whatever the program does is an outcome of the case; only if
// nothing can be written or a signal arrives is no status left, and the case remains to be run. Two
// processes never run the same case at once: the second one waits and finds it done.
CaseOutcome runCase(const BatchCase& c, const CaseWishes& wishes);

// The worst passivity verdict on these model files of a description, by a scan; empty if none is a
// phase model. Runs in its own process, with SCANWORD as its first argument.
constexpr std::string_view SCANWORD = "--scan";
std::string verdictOnFiles(const std::string& description, double length,
                           const std::vector<std::string>& models);

} // namespace lcp::companions
