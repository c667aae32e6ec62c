#include "companions/batch/case_list.h"

#include "companions/shared/text.h"
#include "companions/shared/whole_files.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>

namespace fs = std::filesystem;

namespace lcp::companions {

namespace {

constexpr std::size_t LEASTCOLUMNS = 2, MOSTCOLUMNS = 4; // file, length, arguments, folder
constexpr std::string_view BYTEORDERMARK = "\xef\xbb\xbf";

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

bool isNoCase(std::string_view line, bool first) {
  return trimmed(line).empty() || line.starts_with('#') || (first && line.starts_with("file\t"));
}

// /file and /length have their own columns; if they were given twice, the program would use the
// last.
std::string_view refusedWord(std::string_view arguments) {
  for (const std::string_view word : {"/file", "/length"}) {
    const auto words = wordsOf(arguments);
    if (std::find(words.begin(), words.end(), word) != words.end()) return word;
  }
  return {};
}

std::string troubleOf(const std::vector<std::string>& row) {
  if (row.size() > MOSTCOLUMNS) {
    return fmt::format("{} columns, 2 to 4 expected (file, length, arguments, folder); no name may "
                       "hold a tab",
                       row.size());
  }
  if (row.size() < LEASTCOLUMNS || trimmed(row[0]).empty() || trimmed(row[1]).empty())
    return "file and length expected, parted by a tab";
  if (row.size() > 2 && !refusedWord(row[2]).empty())
    return fmt::format("{} has a column of its own", refusedWord(row[2]));
  return {};
}

BatchCase caseOf(std::vector<std::string> row, const fs::path& base, const fs::path& work) {
  row.resize(MOSTCOLUMNS);
  BatchCase c;
  c.source = (base / row[0]).lexically_normal();
  c.beside = c.source.parent_path();
  c.length = trimmed(row[1]);
  c.arguments = trimmed(row[2]);
  c.name = row[3];
  c.folder = row[3].empty() ? work : (base / row[3] / "").lexically_normal().parent_path();
  return c;
}

} // namespace

std::string numberedName(std::size_t number, std::size_t count) {
  constexpr std::size_t LEASTDIGITS = 4;
  return fmt::format("case_{:0{}}", number, std::max(LEASTDIGITS, std::to_string(count).size()));
}

CaseList readList(const fs::path& list, const fs::path& work) {
  CaseList result;
  std::string text;
  if (!readWhole(list, text)) {
    result.trouble = "cannot read " + list.string();
    return result;
  }
  std::string_view rest = text;
  if (rest.starts_with(BYTEORDERMARK)) rest.remove_prefix(BYTEORDERMARK.size());
  const std::vector<std::string> lines = linesOf(rest);
  for (std::size_t k = 0; k < lines.size(); ++k) {
    if (isNoCase(lines[k], k == 0)) continue;
    const std::vector<std::string> row = fieldsOf(lines[k], '\t');
    const std::string trouble = troubleOf(row);
    if (!trouble.empty()) {
      result.trouble = fmt::format("line {} of {}: {}", k + 1, list.string(), trouble);
      return result;
    }
    result.cases.push_back(caseOf(row, fs::absolute(list).parent_path(), work));
  }
  for (std::size_t k = 0; k < result.cases.size(); ++k) {
    BatchCase& c = result.cases[k];
    if (!c.name.empty()) continue;
    c.name = numberedName(k + 1, result.cases.size());
    c.folder = work / c.name;
  }
  result.trouble = troubleAmong(result.cases);
  return result;
}

std::string troubleAmong(const std::vector<BatchCase>& cases) {
  if (cases.empty()) return "no case in the list";
  std::map<fs::path, std::string> taken;
  for (const BatchCase& c : cases) {
    const std::string all = c.source.string() + c.folder.string() + c.name + c.arguments + c.length;
    if (all.find_first_of("\t\n\r") != std::string::npos)
      return fmt::format("no tab and no line end may stand in a name or value: {}", c.name);
    std::error_code none;
    const fs::path folder = fs::weakly_canonical(c.folder, none);
    const auto [other, fresh] = taken.emplace(none ? c.folder : folder, c.name);
    if (!fresh) {
      return fmt::format("{} and {} are one folder: each case needs one of its own", other->second,
                         c.name);
    }
  }
  return {};
}

std::string tableOf(const std::vector<BatchCase>& cases) {
  std::string text;
  for (const BatchCase& c : cases) {
    text += fmt::format("{}\t{}\t{}\t{}\t{}\t{}\n", c.source.string(), c.length, c.arguments,
                        c.folder.string(), c.beside.string(), c.name);
  }
  return text;
}

std::vector<BatchCase> casesOf(const std::string& table) {
  std::vector<BatchCase> cases;
  for (const std::string& line : linesOf(table)) {
    std::vector<std::string> row = fieldsOf(line, '\t');
    row.resize(6);
    cases.push_back({row[5], row[0], row[4], row[1], row[2], row[3], {}});
  }
  return cases;
}

} // namespace lcp::companions
