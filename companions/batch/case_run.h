// One case: its folder made ready, the program run in it, its status written.
#pragma once

#include "companions/batch/case_status.h"

#include <string>

namespace lcp::companions {

enum class CaseEnd { DONE, NOTWRITTEN, SIGNAL };

struct CaseOutcome {
  CaseEnd end = CaseEnd::DONE;
  int signal = 0;
  std::string trouble; // of a case whose files cannot be written, in plain words
  bool full = false;   // for lack of room, which those that follow would miss as well
};

// Runs a case that is not done. Whatever the program does is an outcome of the case; only where
// nothing can be written, or a signal comes, no status is left and the case stays to be run. Two
// processes never run one case at once: the second waits, and finds it done.
CaseOutcome runCase(const BatchCase& c, const CaseWishes& wishes);

// The worst verdict on the passivity of these model files of a description, by a scan; empty
// without one of the phase kind. In a process of its own, whose first word is this.
constexpr std::string_view SCANWORD = "--scan";
std::string verdictOnFiles(const std::string& description, double length,
                           const std::vector<std::string>& models);

} // namespace lcp::companions
