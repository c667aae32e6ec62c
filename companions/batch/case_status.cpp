#include "companions/batch/case_status.h"

#include "base/open_files.h"
#include "companions/shared/text.h"
#include "companions/shared/whole_files.h"

#include <cstdint>
#include <fmt/format.h>

namespace fs = std::filesystem;

namespace lcp::companions {

namespace {

constexpr std::string_view LASTLINE = "end";
constexpr std::string_view FILEROW = "file";

// 64-bit FNV-1a hash.
void digest(std::uint64_t& hash, std::string_view text) {
  constexpr std::uint64_t PRIME = 0x100000001b3;
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * PRIME;
  hash = (hash ^ 0xff) * PRIME; // separates the parts
}

// Possible file names in a line of a description: its value as a whole, its first word, or the
// quoted text.
std::vector<std::string> possibleNames(std::string_view line) {
  const auto colon = line.find(':');
  if (colon == std::string_view::npos) return {};
  std::string_view value = line.substr(colon + 1);
  const auto first = value.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  value = value.substr(first, value.find_last_not_of(" \t") - first + 1);
  const char quote = value[0];
  if (quote == '"' || quote == '\'')
    return {std::string(value.substr(1, value.find(quote, 1) - 1))};
  return {std::string(value), std::string(value.substr(0, value.find_first_of(" ,\t")))};
}

bool isRegular(const fs::path& file) {
  std::error_code none;
  return fs::is_regular_file(file, none);
}

std::vector<std::vector<std::string>> rowsOfStatus(const BatchCase& c) {
  std::string text;
  if (!readWhole(c.folder / STATUSFILE, text)) return {};
  std::vector<std::vector<std::string>> rows;
  for (const std::string& line : linesOf(text)) rows.push_back(fieldsOf(line, '\t'));
  if (rows.empty() || rows.back()[0] != LASTLINE) return {};
  return rows;
}

bool isComplete(const fs::path& file, const std::string& size) {
  std::error_code none;
  const auto found = fs::file_size(file, none);
  return !none && std::to_string(found) == size;
}

} // namespace

bool madeModel(const Facts& facts) {
  const auto status = facts.find("status");
  return status != facts.end() && (status->second == "ok" || status->second == "warning");
}

std::vector<std::string> filesNamedIn(const std::string& description, const fs::path& folder) {
  std::vector<std::string> names;
  for (const std::string& line : linesOf(description)) {
    for (const std::string& name : possibleNames(line)) {
      if (name.empty() || name[0] == '/' || !isRegular(folder / name)) continue;
      names.push_back(name);
      break;
    }
  }
  return names;
}

void protectInputs(const BatchCase& c) {
  std::string text;
  protectInput(c.source);
  readWhole(c.source, text);
  for (const std::string& name : filesNamedIn(text, c.beside)) protectInput(c.beside / name);
}

std::string fingerprintOf(const BatchCase& c) {
  constexpr std::uint64_t START = 0xcbf29ce484222325;
  std::uint64_t hash = START;
  std::string text;
  readWhole(c.source, text);
  digest(hash, text);
  for (const std::string& name : filesNamedIn(text, c.beside)) {
    std::string named;
    readWhole(c.beside / name, named);
    digest(hash, name);
    digest(hash, named);
  }
  for (const std::string& word : {c.source.filename().string(), c.length, c.arguments})
    digest(hash, word);
  return fmt::format("{:016x}", hash);
}

bool writeStatus(const BatchCase& c, const Facts& facts, const std::vector<std::string>& files) {
  std::string text;
  for (const auto& [column, value] : facts) {
    std::string line = value;
    for (char& letter : line)
      if (letter >= 0 && letter < ' ') letter = ' ';
    text += fmt::format("{}\t{}\n", column, line);
  }
  for (const std::string& file : files) {
    std::error_code none;
    text += fmt::format("{}\t{}\t{}\n", FILEROW, fs::file_size(c.folder / file, none), file);
  }
  return writeWhole(c.folder / STATUSFILE, text + std::string(LASTLINE) + "\n");
}

Facts statusOf(const BatchCase& c, const CaseWishes& wishes) {
  Facts facts;
  for (const std::vector<std::string>& row : rowsOfStatus(c)) {
    if (row.size() == 3 && row[0] == FILEROW && !isComplete(c.folder / row[2], row[1])) return {};
    if (row.size() == 2) facts[row[0]] = row[1];
  }
  if (facts.empty() || facts["fingerprint"] != fingerprintOf(c)) return {};
  const bool plotted = !wishes.plot || facts.contains("page");
  const bool verified = !wishes.verify || facts.contains("verified");
  return !madeModel(facts) || (plotted && verified) ? facts : Facts{};
}

std::vector<std::string> filesOfStatus(const BatchCase& c) {
  std::vector<std::string> files;
  for (const std::vector<std::string>& row : rowsOfStatus(c))
    if (row.size() == 3 && row[0] == FILEROW) files.push_back(row[2]);
  return files;
}

} // namespace lcp::companions
