// The status file of a case: its outcome and the files that make it complete.
#pragma once

#include "companions/batch/case_list.h"
#include "companions/batch/console_facts.h"

#include <string>
#include <string_view>

namespace lcp::companions {

constexpr std::string_view STATUSFILE = "batch_status.tsv";
constexpr std::string_view CONSOLEFILE = "batch_console.txt";

// Options that apply to every case.
struct CaseWishes {
  bool verify = false, plot = false;
  double timeout = 0;  // s; 0 for no limit
  std::string program; // path of corvo
};

// Whether the run made a model, with or without warnings.
bool madeModel(const Facts& facts);

// A hash of the description, the files it names, length and arguments.
std::string fingerprintOf(const BatchCase& c);

// Names, relative to `folder`, of the files in it that the description names.
std::vector<std::string> filesNamedIn(const std::string& description,
                                      const std::filesystem::path& folder);

// Protects the description of a case and the files it names from being overwritten.
void protectInputs(const BatchCase& c);

// Writes the status file; on failure returns false with errno set. The facts include the
// fingerprint. The files are those in the case's folder that must exist, with their current sizes.
bool writeStatus(const BatchCase& c, const Facts& facts, const std::vector<std::string>& files);

// Facts of a case that is done: its status file is complete and matches this case and these
// options, and its files are complete. Empty if the case is not done.
Facts statusOf(const BatchCase& c, const CaseWishes& wishes);

// All files listed in the status file, whether they still exist or not.
std::vector<std::string> filesOfStatus(const BatchCase& c);

} // namespace lcp::companions
