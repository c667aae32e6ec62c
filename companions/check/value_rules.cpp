#include "companions/check/value_rules.h"

#include "companions/check/traced.h"
#include "companions/check/units.h"

#include <algorithm>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr int PLACESINPIPE = 4; // x, y, distance and angle of a cable in a pipe

bool isNumberKind(KeyKind kind) { return kind < KeyKind::Name; }
bool isFlag(KeyKind kind) { return kind == KeyKind::SetBy1 || kind == KeyKind::IsIt1; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

// The key as written in a line; in a position list it includes the number.
std::string_view nameOf(const TracedLine& line) {
  const std::string_view words = wordsOf(line);
  std::size_t end = line.key->text.size();
  while (line.key->text[0] == 'P' && end < words.size() && isDigit(words[end])) ++end;
  return words.substr(0, end);
}

std::string_view withoutEnds(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
  return text.substr(0, text.find_last_not_of(" \t\r") + 1);
}

void lostCharacter(Findings& findings, const TracedLine& line) {
  const std::string_view words = wordsOf(line);
  const std::size_t from = nameOf(line).size();
  const auto column = static_cast<std::size_t>(line.key->column);
  if (from >= words.size() || from >= column) return;
  const std::string_view skipped = words.substr(from, column - from);
  const std::size_t lost = skipped.find_first_not_of(" \t:");
  if (lost == std::string_view::npos) return;
  add(findings, line.number, Kind::LostCharacter, fmt::format("'{}'", skipped.substr(lost)),
      withoutEnds(fieldOf(line)));
}

// Whether there is a value to check; otherwise adds a finding.
bool hasValue(Findings& findings, const TracedLine& line) {
  const std::string_view field = withoutEnds(fieldOf(line));
  const bool items = line.key->kind != KeyKind::Text;
  if (field.empty()) {
    add(findings, line.number, Kind::NoValue, nameOf(line));
  } else if (items && (field[0] == ',' || field[0] == '/')) {
    add(findings, line.number, Kind::EarlyEnd, field[0] == ',' ? "a comma" : "a slash",
        nameOf(line));
  } else {
    return true;
  }
  return false;
}

// Number of numbers at the start of a field.
int countNumbers(std::string_view field) {
  ItemReader items(field);
  int n = 0;
  double number = 0;
  while (items.next() == ItemReader::Item::Word) {
    const std::string_view word = items.word();
    const std::size_t star = word.find('*');
    int repeat = 1;
    if (star != std::string_view::npos && !parseInteger(word.substr(0, star), repeat)) break;
    if (!parseReal(word.substr(star == std::string_view::npos ? 0 : star + 1), number)) break;
    n += std::clamp(repeat, 0, MAXCOND);
  }
  return n;
}

int itemsOf(const TracedLine& line) {
  const bool inPipe = line.state == State::CoaxCable &&
                      TRACE->sections()[static_cast<std::size_t>(line.section)].parent != 0;
  if (line.key->least == EACH) return line.open.wires;
  return inPipe && line.key->least == 2 ? PLACESINPIPE : line.key->least;
}

void countItems(Findings& findings, const TracedLine& line) {
  const int takes = itemsOf(line);
  const bool several = line.key->least == EACH || line.key->least > 1;
  if (!several || takes == 0) return;
  const int there = countNumbers(fieldOf(line));
  if (there == takes) return;
  const Kind kind = there < takes ? Kind::FewItems : Kind::MoreItems;
  const std::string first = std::to_string(there < takes ? there : takes);
  add(findings, line.number, kind, nameOf(line), first,
      std::to_string(there < takes ? takes : there));
}

// Finds a decimal comma, at which a number ends.
void cutNumber(Findings& findings, const TracedLine& line) {
  const std::string_view field = withoutEnds(fieldOf(line));
  const std::size_t end = field.find_first_of(" \t,/");
  if (end == std::string_view::npos || end + 1 >= field.size() || !isDigit(field[end + 1])) return;
  if (field[end] != ',' && field[end] != '/') return;
  add(findings, line.number, Kind::CutNumber, field[end] == ',' ? "the comma" : "the slash",
      field.substr(0, end));
}

void flagValue(Findings& findings, const TracedLine& line) {
  int value = 0;
  if (readInteger(fieldOf(line), value) != Got::Value || value == 0 || value == 1) return;
  add(findings, line.number, Kind::FlagValue, nameOf(line), std::to_string(value));
}

void otherUnit(Findings& findings, const TracedLine& line) {
  const std::string_view unit = line.key->unit;
  const std::string_view said = bracketText(fieldOf(line));
  if (unit.empty() || said.empty() || standsFor(said, unit)) return;
  add(findings, line.number, Kind::OtherUnit, nameOf(line),
      unit == "1" ? std::string_view("a pure number") : unit, said);
}

} // namespace

void valueRules(Findings& findings, const TracedLine& line) {
  const KeyKind kind = line.key->kind;
  const bool columns = kind == KeyKind::Text && line.key->repeats; // fixed columns, not used
  if (kind == KeyKind::Mark || columns) return;
  lostCharacter(findings, line);
  if (!hasValue(findings, line)) return;
  if (kind == KeyKind::Items) countItems(findings, line);
  if (isNumberKind(kind)) cutNumber(findings, line);
  if (isFlag(kind)) flagValue(findings, line);
  otherUnit(findings, line);
}

} // namespace lcp::companions
