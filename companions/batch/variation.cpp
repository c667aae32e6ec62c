#include "companions/batch/variation.h"

#include "base/open_files.h"
#include "companions/batch/case_status.h"
#include "companions/shared/captured_run.h"
#include "companions/shared/text.h"
#include "companions/shared/whole_files.h"
#include "input/key_rows.h"
#include "input/trace_store.h"

#include <algorithm>
#include <cctype>
#include <fmt/format.h>

namespace fs = std::filesystem;

namespace lcp::companions {

namespace {

constexpr std::size_t MOSTCASES = 1000000;
constexpr double SOMELENGTH = 1e4;   // m, used only for reading
constexpr std::size_t BEHINDKEY = 2; // a colon and a blank

// A text without blanks, in lower case.
std::string plain(std::string_view text) {
  std::string letters;
  for (const char c : text) {
    if (c != ' ' && c != '\t')
      letters += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  return letters;
}

bool isLength(const Variation& v) { return plain(v.key) == "length"; }

// Position of a value in a description.
struct Place {
  std::size_t line;   // 0-based
  std::size_t column; // of the value, not counting leading blanks of the line
  std::size_t key;    // number of columns of the key
};

// Finds the value in a traced line that has this key.
bool findPlace(const TracedLine& line, const Variation& v, Place& place) {
  if (line.key == nullptr || line.key->kind == KeyKind::Mark) return false;
  if (v.line != 0 && v.line != line.number) return false;
  std::string_view words = line.text.text();
  words.remove_prefix(std::min(words.find_first_not_of(' '), words.size()));
  const std::size_t colon = std::min(words.find(':'), words.size());
  const std::string_view row = line.key->text;
  const bool whole = plain(row) == plain(v.key);
  if (!whole && plain(words.substr(0, colon)) != plain(v.key)) return false;
  place.line = static_cast<std::size_t>(line.number - 1);
  place.column = static_cast<std::size_t>(line.key->column);
  place.key = row.size();
  if (whole && line.key->kind != KeyKind::Text) return true;
  // A key followed by a number: P1 of the positions, Conductor Data 2.
  place.key = std::min(words.substr(0, colon).find_last_not_of(' ') + 1, words.size());
  place.column = std::max(place.column, line.key->kind == KeyKind::Text ? colon + BEHINDKEY : 0);
  return true;
}

std::string withValue(const std::string& line, const Place& place, const std::string& value) {
  const std::size_t indent = std::min(line.find_first_not_of(' '), line.size());
  std::string head = line.substr(indent, place.key);
  head.resize(place.column, ' ');
  head[place.column - BEHINDKEY] = ':';
  std::string changed = line.substr(0, indent) + head + value;
  const auto unit = line.find('[', indent + place.key);
  if (unit != std::string::npos && value.find('[') == std::string::npos)
    changed += fmt::format(" {}", line.substr(unit));
  if (line.ends_with('\r') && !changed.ends_with('\r')) changed += '\r';
  return changed;
}

struct Keys {
  std::vector<std::string> lines;         // of the description, including carriage returns
  std::vector<std::vector<Place>> places; // for each variation
  std::string trouble;
};

std::string notRead(const fs::path& description, const CapturedRun& read) {
  std::string message;
  for (const std::string& line : linesOf(read.console))
    if (line.find_first_not_of(" *=") != std::string::npos) message += line + "\n";
  return fmt::format("the program refuses {}:\n{}", description.string(), message);
}

// Runs the reader on the description and finds the keys in its trace. Files named in the
// description are relative to its folder.
Keys readKeys(const fs::path& description, const std::vector<Variation>& variations) {
  Keys K;
  std::string text;
  if (!readWhole(description, text)) {
    K.trouble = "cannot read " + description.string();
    return K;
  }
  K.lines = fieldsOf(text, '\n');
  const fs::path here = fs::current_path();
  fs::current_path(description.parent_path());
  const bool traced = startTrace();
  const CapturedRun read = readInChild(description.filename().string(), SOMELENGTH);
  fs::current_path(here);
  if (!traced || read.status != 0) K.trouble = notRead(description, read);
  if (!K.trouble.empty()) return K;
  for (const Variation& v : variations) {
    K.places.emplace_back();
    if (isLength(v)) continue;
    for (const TracedLine& line : TRACE->lines()) {
      Place place{};
      if (findPlace(line, v, place)) K.places.back().push_back(place);
    }
    if (K.places.back().empty()) {
      K.trouble = fmt::format("no {} of {} has the key {}",
                              v.line == 0 ? "line" : fmt::format("line {}", v.line),
                              description.string(), v.key);
    }
  }
  return K;
}

std::string noteOn(const Variation& v, const std::vector<Place>& places) {
  std::vector<std::string> numbers;
  numbers.reserve(places.size());
  for (const Place& p : places) numbers.push_back(std::to_string(p.line + 1));
  return fmt::format("{} is changed in lines {}; {}@{}=... changes the first alone", v.key,
                     joined(numbers, ", "), v.key, numbers[0]);
}

// Limited, because the product of many lists can overflow.
std::size_t combinationsOf(const std::vector<Variation>& variations) {
  std::size_t count = 1;
  for (const Variation& v : variations) count = std::min(count * v.values.size(), MOSTCASES + 1);
  return count;
}

std::string troubleOf(const Template& base, const std::vector<Variation>& variations) {
  bool length = !base.length.empty();
  for (std::size_t k = 0; k < variations.size(); ++k) {
    const Variation& v = variations[k];
    if (!v.trouble.empty()) return v.trouble;
    length = length || isLength(v);
    for (std::size_t other = 0; other < k; ++other) {
      if (plain(variations[other].key) == plain(v.key) && variations[other].line == v.line)
        return fmt::format("{} varies twice", v.key);
    }
  }
  if (combinationsOf(variations) > MOSTCASES) return fmt::format("more than {} cases", MOSTCASES);
  return length ? "" : "/length METRES or --vary length=... expected";
}

// The description of one case with the given values.
std::string describe(const Keys& keys, const std::vector<std::string>& values) {
  std::vector<std::string> lines = keys.lines;
  for (std::size_t k = 0; k < values.size(); ++k) {
    for (const Place& place : keys.places[k])
      lines[place.line] = withValue(lines[place.line], place, values[k]);
  }
  return joined(lines, "\n");
}

// Writes the description of a case unless it already exists. Returns an error message, or empty.
std::string writeDescription(CaseList& list, const BatchCase& c, const Keys& keys,
                             const std::vector<std::string>& values) {
  const std::string text = describe(keys, values);
  const std::vector<std::string> lines = linesOf(text);
  for (const std::vector<Place>& places : keys.places) {
    for (const Place& place : places) {
      if (lines[place.line].size() > LINELENGTH)
        return fmt::format("line {} would exceed {} columns", place.line + 1, LINELENGTH);
    }
  }
  std::string old;
  std::error_code none;
  if (isInput(c.source))
    return fmt::format("{} would be overwritten: it is an input", c.source.string());
  fs::create_directories(c.folder, none);
  const bool good = (readWhole(c.source, old) && old == text) || writeWhole(c.source, text, false);
  list.notWritten = !good;
  return good ? "" : cannotWrite(c.source);
}

// The values of one case; the last key varies fastest.
std::vector<std::string> valuesOf(const std::vector<Variation>& variations, std::size_t number) {
  std::vector<std::string> values(variations.size());
  for (std::size_t k = variations.size(); k-- > 0;) {
    values[k] = variations[k].values[number % variations[k].values.size()];
    number /= variations[k].values.size();
  }
  return values;
}

} // namespace

Variation variationOf(const std::string& text) {
  Variation v;
  const auto equals = text.find('=');
  v.key = text.substr(0, equals);
  if (equals == std::string::npos || plain(v.key).empty() || equals + 1 == text.size()) {
    v.trouble = fmt::format("--vary KEY=VALUE,VALUE,... expected in place of {}", text);
    return v;
  }
  v.values = fieldsOf(std::string_view(text).substr(equals + 1), ',');
  if (std::find(v.values.begin(), v.values.end(), "") != v.values.end())
    v.trouble = fmt::format("a value of {} is empty", v.key);
  const auto at = v.key.rfind('@');
  if (at == std::string::npos) return v;
  const std::string number = v.key.substr(at + 1);
  v.line = std::atoi(number.c_str());
  if (v.line < 1 || number.find_first_not_of("0123456789") != std::string::npos)
    v.trouble = fmt::format("{} is no line number", number);
  v.key.resize(at);
  return v;
}

CaseList makeCases(const Template& base, const std::vector<Variation>& variations,
                   const fs::path& work, std::vector<std::string>& notes) {
  CaseList list;
  list.trouble = troubleOf(base, variations);
  if (!list.trouble.empty()) return list;
  const fs::path source = fs::absolute(base.description).lexically_normal();
  protectInputs({{}, source, source.parent_path(), {}, {}, {}, {}});
  const Keys keys = readKeys(source, variations);
  list.trouble = keys.trouble;
  if (!list.trouble.empty()) return list;
  for (std::size_t k = 0; k < variations.size(); ++k) {
    const Variation& v = variations[k];
    if (!isLength(v)) // it has a column of its own
      list.keys.push_back(v.line == 0 ? v.key : fmt::format("{}@{}", v.key, v.line));
    if (keys.places[k].size() > 1) notes.push_back(noteOn(v, keys.places[k]));
  }
  const std::size_t count = combinationsOf(variations);
  for (std::size_t number = 0; number < count && list.trouble.empty(); ++number) {
    BatchCase c;
    c.name = numberedName(number + 1, count);
    c.folder = work / c.name;
    c.source = c.folder / source.filename();
    c.beside = source.parent_path();
    c.length = base.length;
    c.arguments = base.arguments;
    std::vector<std::string> values = valuesOf(variations, number);
    list.trouble = writeDescription(list, c, keys, values);
    for (std::size_t k = 0; k < variations.size(); ++k) {
      if (isLength(variations[k])) {
        c.length = values[k];
      } else {
        c.varied.push_back(values[k]);
      }
    }
    list.cases.push_back(std::move(c));
  }
  if (!list.trouble.empty()) return list;
  list.trouble = troubleAmong(list.cases);
  return list;
}

} // namespace lcp::companions
