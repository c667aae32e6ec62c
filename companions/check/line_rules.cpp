#include "companions/check/line_rules.h"

#include "companions/check/entered_rules.h"
#include "companions/check/near_key.h"
#include "companions/check/range_rules.h"
#include "companions/check/traced.h"
#include "companions/check/value_rules.h"

#include <algorithm>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

using Texts = std::vector<std::string_view>;

// Key length per letter that may differ.
constexpr std::size_t COMMENTLETTERS = 5; // prose must not look like a key
constexpr std::size_t UNKNOWNLETTERS = 3;

// --- lines without a key

Texts candidatesOf(const TracedLine& line) {
  Texts texts(line.headings.begin(), line.headings.end());
  for (const KeyRow& row : rowsOf(line)) texts.push_back(row.text);
  return texts;
}

std::span<const std::string_view> headings() {
  const auto top = std::find_if(TRACE->lines().begin(), TRACE->lines().end(),
                                [](const TracedLine& l) { return !l.headings.empty(); });
  if (top == TRACE->lines().end()) return {};
  return top->headings;
}

// The key or heading that the line starts with or resembles, if it belongs to another place.
std::string elsewhere(const TracedLine& line) {
  const std::string_view words = wordsOf(line);
  for (const std::string_view heading : headings()) {
    if (line.state == State::TopLevel || !words.starts_with(heading)) continue;
    return fmt::format("{}, a heading, while the section of line {} is open", heading,
                       TRACE->sections()[static_cast<std::size_t>(line.section)].heading);
  }
  for (const TracedLine& other : TRACE->lines()) {
    const auto rows = rowsOf(other);
    if (rows.empty() || other.rows == line.rows) continue;
    const auto row = std::find_if(rows.begin(), rows.end(), [&](const KeyRow& r) {
      return r.text.size() > 2 && words.starts_with(r.text);
    });
    if (row != rows.end())
      return fmt::format("{}, a key of {}", row->text, keyWords(headingOf(other.section)));
  }
  return {};
}

void unknownLine(Findings& findings, const TracedLine& line) {
  const Texts texts = candidatesOf(line);
  const std::string_view words = wordsOf(line);
  const std::string_view head = words.substr(0, words.find_first_of("0123456789"));
  std::string_view near = nearestKey(keyWords(words), texts, UNKNOWNLETTERS, 1);
  if (near.empty()) near = nearestKey(keyWords(head), texts, UNKNOWNLETTERS, 1);
  const std::string other = near.empty() ? elsewhere(line) : std::string();
  std::string hint;
  if (!other.empty()) hint = fmt::format(": it is {}", other);
  if (!near.empty())
    hint = fmt::format("; the nearest {} is {}", line.headings.empty() ? "key" : "heading", near);
  add(findings, line.number, Kind::UnknownLine, hint);
}

void commentKey(Findings& findings, const TracedLine& line) {
  const std::string_view words = wordsOf(line);
  const bool exclamation = words[0] == '!';
  if (exclamation && line.state == State::TopLevel) return; // a title above a section
  const Texts texts = candidatesOf(line);
  std::string_view near;
  if (!exclamation) near = nearestKey(keyWords(words), texts, COMMENTLETTERS, 0);
  const bool stripped = exclamation || words.starts_with("C ");
  if (near.empty() && stripped)
    near = nearestKey(keyWords(words.substr(1)), texts, COMMENTLETTERS, 0);
  const std::string what =
      fmt::format("the {} {}", line.headings.empty() ? "key" : "heading", near);
  if (!near.empty()) add(findings, line.number, Kind::CommentKey, what);
}

// --- keys compared with each other

// Sections of these states each have data of their own; in all other states a later section
// continues the first one.
bool standsAlone(State state) {
  constexpr State ALONE[] = {State::Tower,         State::Circuit,   State::GroundWires,
                             State::SubConductors, State::CoaxCable, State::FourWire};
  return std::find(std::begin(ALONE), std::end(ALONE), state) != std::end(ALONE);
}

bool oneScope(const TracedLine& a, const TracedLine& b) {
  return a.state == b.state && (a.section == b.section || !standsAlone(a.state));
}

bool sameTarget(const KeyRow& a, const KeyRow& b) {
  const bool real = a.real != nullptr && a.real == b.real && a.real != &READER.dropped;
  const bool integer =
      a.integer != nullptr && a.integer == b.integer && a.integer != &READER.droppedInteger;
  return &a == &b || real || integer;
}

void aheadOfNeed(Findings& findings, const TracedLine& line, std::string_view needed,
                 bool wholeFile) {
  int later = 0;
  for (const TracedLine& other : TRACE->lines()) {
    if (other.section != line.section || other.key == nullptr || other.key->text != needed)
      continue;
    if (other.number < line.number) return;
    if (later == 0) later = other.number;
  }
  if (later == 0 && !wholeFile) return;
  const std::string where =
      later == 0 ? ", which is missing" : fmt::format(", which follows in line {}", later);
  add(findings, line.number, Kind::AheadOfNeed, line.key->text, needed, where);
}

void leadingKey(Findings& findings, const TracedLine& line, bool wholeFile) {
  const auto rows = rowsOf(line);
  const auto lead =
      std::find_if(rows.begin(), rows.end(), [](const KeyRow& row) { return row.leads; });
  const bool needs = line.key->kind != KeyKind::Mark && !line.key->leads;
  if (needs && lead != rows.end()) aheadOfNeed(findings, line, lead->text, wholeFile);
}

void undone(Findings& findings, const TracedLine& line, std::string_view key) {
  if (key.empty()) return;
  for (const TracedLine& other : TRACE->lines()) {
    if (other.number >= line.number) return;
    const bool hit = other.key != nullptr && other.key->text == key && other.got == Got::Value;
    if (hit && (oneScope(other, line) || !standsAlone(line.state)))
      add(findings, other.number, Kind::Undone, line.key->text, std::to_string(line.number));
  }
}

void repeated(Findings& findings, const TracedLine& line) {
  const KeyRow& key = *line.key;
  if (key.kind == KeyKind::Mark || key.repeats || key.text == "P") return;
  for (const TracedLine& other : TRACE->lines()) {
    if (other.number >= line.number) return;
    if (other.key == nullptr || !oneScope(other, line) || !sameTarget(*other.key, key)) continue;
    add(findings, line.number, Kind::Repeated, other.key->text, std::to_string(other.number));
    return;
  }
}

void noPlace(Findings& findings, const TracedLine& line) {
  const std::string_view name = line.key->text;
  if (line.key->entry == Entry::Second && line.open.wires < 2)
    add(findings, line.number, Kind::NoPlace, name, "the group has no second wire");
  if (line.state != State::SubConductors) return;
  const std::string bundle =
      fmt::format("the bundle has {} sub-conductors", line.open.subConductors);
  const bool offset = line.key->kind == KeyKind::Items;
  if (offset ? line.open.offsets >= line.open.subConductors : line.open.subConductors < 2)
    add(findings, line.number, Kind::NoPlace, offset ? "the offset" : name, bundle);
}

void keyRules(Findings& findings, const TracedLine& line, bool wholeFile) {
  valueRules(findings, line);
  rangeRules(findings, line);
  enteredLine(findings, line);
  if (!line.key->needs.empty()) aheadOfNeed(findings, line, line.key->needs, wholeFile);
  leadingKey(findings, line, wholeFile);
  undone(findings, line, line.key->undoes);
  undone(findings, line, line.key->undoes2);
  repeated(findings, line);
  noPlace(findings, line);
}

} // namespace

void lineRules(Findings& findings, bool wholeFile) {
  if (TRACE->lineCount == MOSTTRACED) add(findings, 0, Kind::LongFile, std::to_string(MOSTTRACED));
  for (const TracedLine& line : TRACE->lines()) {
    if (line.fate == LineFate::Unknown) unknownLine(findings, line);
    if (line.fate == LineFate::Comment) commentKey(findings, line);
    if (line.fate == LineFate::Taken && line.cut)
      add(findings, line.number, Kind::LongLine, std::to_string(LINELENGTH));
    if (line.key != nullptr) keyRules(findings, line, wholeFile);
  }
}

} // namespace lcp::companions
