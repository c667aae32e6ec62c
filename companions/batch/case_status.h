// The status file of a case: what became of it, and which files make it complete.
#pragma once

#include "companions/batch/case_list.h"
#include "companions/batch/console_facts.h"

#include <string>
#include <string_view>

namespace lcp::companions {

constexpr std::string_view STATUSFILE = "batch_status.tsv";
constexpr std::string_view CONSOLEFILE = "batch_console.txt";

// What is asked of each case beside the run.
struct CaseWishes {
  bool verify = false, plot = false;
  double timeout = 0;  // s; 0 for none
  std::string program; // corvo
};

// Whether the run made a model, with or without a warning.
bool madeModel(const Facts& facts);

// A number that changes with the description, the files that it names, length and arguments.
std::string fingerprintOf(const BatchCase& c);

// Names, relative to the folder, of the files in it that the description names.
std::vector<std::string> filesNamedIn(const std::string& description,
                                      const std::filesystem::path& folder);

// The description of a case and the files that it names are inputs from now on.
void protectInputs(const BatchCase& c);

// Writes the status file; false when it cannot be, errno tells why. Among the facts is the
// fingerprint. The files are those of the case's folder that must be there, with their sizes of
// now.
bool writeStatus(const BatchCase& c, const Facts& facts, const std::vector<std::string>& files);

// The facts of a case that is done: its status file is whole, of this very case and of these
// wishes, and its files are complete. Empty when it is not.
Facts statusOf(const BatchCase& c, const CaseWishes& wishes);

// The files that the status file names, whatever has become of them.
std::vector<std::string> filesOfStatus(const BatchCase& c);

} // namespace lcp::companions
