// The parts of a batch in the hands of GNU parallel or of Slurm, which run them.
#pragma once

#include "companions/batch/parts.h"

#include <string>
#include <string_view>
#include <vector>

namespace lcp::companions {

struct Hands {
  std::filesystem::path work;     // the folder of the batch
  std::vector<std::string> words; // for parallel: --jobs 2, --sshlogin ...
  bool slurm = false;
  CaseWishes wishes;
};

struct HandedOver {
  int signal = 0;      // that ended it
  std::string trouble; // in plain words
};

// The files in the folder of the batch that are written on the way.
std::vector<std::string_view> filesOnTheWay();

// The program that is needed and the package that holds it, where it is missing; else empty.
std::string missingProgram(bool slurm);

// Runs the parts, whose cases have no status file, and returns when all are done, something cannot
// be written, or a signal came; nothing of it runs any more then. The error stream shows how far it
// is.
HandedOver handOver(const Hands& hands, const Parts& parts, const std::vector<BatchCase>& cases);

// Ends what an earlier start may have left with Slurm.
void cancelEarlier(const std::filesystem::path& work);

} // namespace lcp::companions
