// The cases of a batch in parts, each of them one job of whoever runs them.
#pragma once

#include "companions/batch/case_status.h"

#include <string>
#include <vector>

namespace lcp::companions {

// Numbers of cases, a vector a part. Parts get smaller towards the end, so that all runners end
// together, and hold several cases, so that starting them costs little beside the cases.
using Parts = std::vector<std::vector<std::size_t>>;
Parts partsFor(const std::vector<std::size_t>& cases, std::size_t runners);
Parts equalParts(const std::vector<std::size_t>& cases, std::size_t size);

// Files in the folder of a batch: the table of its cases, and a line of numbers a part.
constexpr std::string_view CASESFILE = "cases.tsv";
constexpr std::string_view PARTSFILE = "parts.txt";
std::string textOf(const Parts& parts);

// The words that start a part, whose number follows them.
constexpr std::string_view PARTWORD = "--part";
std::vector<std::string> partCommand(const std::filesystem::path& work, const CaseWishes& wishes);

// Runs a part, in a process of its own: the words behind PARTWORD. Exit status 0 when all of its
// cases are done or cannot be written in their folders, 1 when there is no room to write, 128 + n
// behind signal n.
int runPart(const std::vector<std::string>& words);

} // namespace lcp::companions
