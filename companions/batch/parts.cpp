#include "companions/batch/parts.h"

#include "companions/batch/case_run.h"
#include "companions/batch/process.h"
#include "companions/shared/text.h"
#include "companions/shared/whole_files.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr std::size_t PARTWORDS = 7;

int runCases(const std::vector<BatchCase>& all, const std::string& numbers,
             const CaseWishes& wishes) {
  for (const std::string& word : wordsOf(numbers)) {
    const std::size_t number = std::strtoul(word.c_str(), nullptr, 10);
    if (number == 0 || number > all.size()) return 1;
    const CaseOutcome outcome = runCase(all[number - 1], wishes);
    if (outcome.end == CaseEnd::SIGNAL) return BEHINDSIGNAL + outcome.signal;
    if (outcome.end == CaseEnd::DONE) continue;
    std::fputs(fmt::format("{}\n", outcome.trouble).c_str(), stderr);
    if (outcome.full) return 1;
  }
  return 0;
}

} // namespace

Parts partsFor(const std::vector<std::size_t>& cases, std::size_t runners) {
  // A part takes half of the remaining share of its runner. The last parts are small, so that no
  // runner waits long for another, but not single cases of a long list.
  constexpr std::size_t SHARE = 2, LAST = 64, MOST = 64;
  const std::size_t least = std::clamp<std::size_t>(cases.size() / (LAST * runners), 1, MOST);
  Parts parts;
  for (std::size_t first = 0; first < cases.size();) {
    const std::size_t left = cases.size() - first;
    const std::size_t size = std::min(left, std::clamp(left / (SHARE * runners), least, MOST));
    const auto from = cases.begin() + static_cast<std::ptrdiff_t>(first);
    parts.emplace_back(from, from + static_cast<std::ptrdiff_t>(size));
    first += size;
  }
  return parts;
}

Parts equalParts(const std::vector<std::size_t>& cases, std::size_t size) {
  Parts parts;
  for (std::size_t k = 0; k < cases.size(); ++k) {
    if (k % size == 0) parts.emplace_back();
    parts.back().push_back(cases[k]);
  }
  return parts;
}

std::string textOf(const Parts& parts) {
  std::string text;
  for (const std::vector<std::size_t>& part : parts) {
    for (const std::size_t number : part) text += std::to_string(number) + " ";
    text += "\n";
  }
  return text;
}

std::vector<std::string> partCommand(const std::filesystem::path& work, const CaseWishes& wishes) {
  return {ownPath(),
          std::string(PARTWORD),
          work.string(),
          wishes.program,
          fmt::format("{}", wishes.timeout),
          wishes.verify ? "verify" : "-",
          wishes.plot ? "plot" : "-"};
}

int runPart(const std::vector<std::string>& words) {
  // Arguments: folder, program, time limit, verify, plot, number of the part.
  if (words.size() + 1 != PARTWORDS) return 1;
  holdSignals();
  endWithParent();
  const std::filesystem::path work = words[0];
  const CaseWishes wishes{words[3] == "verify", words[4] == "plot",
                          std::strtod(words[2].c_str(), nullptr), words[1]};
  std::string cases, parts;
  const bool read = readWhole(work / CASESFILE, cases) && readWhole(work / PARTSFILE, parts);
  const std::vector<std::string> lines = linesOf(parts);
  const std::size_t part = std::strtoul(words[5].c_str(), nullptr, 10);
  if (!read || part == 0 || part > lines.size()) {
    std::fputs(fmt::format("corvo-batch: cannot read {}\n", work.string()).c_str(), stderr);
    return 1;
  }
  return runCases(casesOf(cases), lines[part - 1], wishes);
}

} // namespace lcp::companions
