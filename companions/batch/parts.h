// Splits the cases of a batch into parts, each of which is one job.
#pragma once

#include "companions/batch/case_status.h"

#include <string>
#include <vector>

namespace lcp::companions {

// Case numbers, one vector per part. Parts become smaller towards the end, so that all runners
// finish together; they hold several cases, so that starting a part costs little compared with its
// cases.
using Parts = std::vector<std::vector<std::size_t>>;
Parts partsFor(const std::vector<std::size_t>& cases, std::size_t runners);
Parts equalParts(const std::vector<std::size_t>& cases, std::size_t size);

// Files in the folder of a batch: the table of its cases, and one line of case numbers per part.
constexpr std::string_view CASESFILE = "cases.tsv";
constexpr std::string_view PARTSFILE = "parts.txt";
std::string textOf(const Parts& parts);

// The command that runs a part; the number of the part is appended to it.
constexpr std::string_view PARTWORD = "--part";
std::vector<std::string> partCommand(const std::filesystem::path& work, const CaseWishes& wishes);

// Runs a part in its own process; `words` are the arguments after PARTWORD. Exit status 0 if all
// its cases are done or cannot be written to their folders, 1 if there is no room to write, 128 + n
// after signal n.
int runPart(const std::vector<std::string>& words);

} // namespace lcp::companions
