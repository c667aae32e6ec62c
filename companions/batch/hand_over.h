// Hands the parts of a batch to GNU parallel or Slurm and follows their progress.
#pragma once

#include "companions/batch/parts.h"

#include <string>
#include <string_view>
#include <vector>

namespace lcp::companions {

struct Hands {
  std::filesystem::path work;     // folder of the batch
  std::vector<std::string> words; // options for parallel: --jobs 2, --sshlogin ...
  bool slurm = false;
  CaseWishes wishes;
};

struct HandedOver {
  int signal = 0;      // signal that ended it
  std::string trouble; // error message
};

// Names of the files written to the folder of the batch while it runs.
std::vector<std::string_view> filesOnTheWay();

// Names the required program and its package if it is missing; else empty.
std::string missingProgram(bool slurm);

// Runs the parts, whose cases have no status file, and returns when all are done, something cannot
// be written, or a signal arrived; nothing is running any more then. Progress is shown on the error
// stream.
HandedOver handOver(const Hands& hands, const Parts& parts, const std::vector<BatchCase>& cases);

// Cancels a Slurm job left by an earlier start.
void cancelEarlier(const std::filesystem::path& work);

} // namespace lcp::companions
