#include "companions/check/traced.h"

#include <algorithm>
#include <limits>

namespace lcp::companions {

namespace {

const TracedSection& sectionAt(int section) {
  return TRACE->sections()[static_cast<std::size_t>(section)];
}

bool storesInto(const KeyRow& key, const void* target) {
  return key.real == target || key.integer == target || key.flag == target || key.reals == target;
}

bool isPosition(const TracedLine& line) {
  return line.key != nullptr && line.key->kind == KeyKind::Items && line.key->least == 2;
}

} // namespace

std::string_view wordsOf(const TracedLine& line) {
  const std::string_view text = line.text.text();
  return text.substr(std::min(text.find_first_not_of(' '), text.size()));
}

std::span<const KeyRow> rowsOf(const TracedLine& line) {
  return {line.rows, static_cast<std::size_t>(line.rowCount)};
}

std::string_view fieldOf(const TracedLine& line) { return valueField(*line.key, wordsOf(line)); }

std::string_view headingOf(int section) {
  const int line = sectionAt(section).heading;
  return line == 0 ? std::string_view()
                   : wordsOf(TRACE->lines()[static_cast<std::size_t>(line - 1)]);
}

int lineOf(const void* target, int section, int cable) {
  int found = 0;
  for (const TracedLine& line : TRACE->lines()) {
    if (line.key == nullptr || line.got != Got::Value || !storesInto(*line.key, target)) continue;
    if (section >= 0 && line.section != section) continue;
    if (cable == 0 || line.open.cable == cable) found = line.number;
  }
  return found;
}

int lineOrHeading(const void* target, int section) {
  const int line = lineOf(target, section);
  return line != 0 ? line : sectionAt(section).heading;
}

int positionLine(int section) {
  for (const TracedLine& line : TRACE->lines()) {
    if (isPosition(line) && line.section == section) return line.number;
  }
  return sectionAt(section).heading;
}

int keyLine(std::string_view key, int section) {
  int found = sectionAt(section).heading;
  for (const TracedLine& line : TRACE->lines()) {
    if (line.key != nullptr && line.key->text == key && line.section == section)
      found = line.number;
  }
  return found;
}

int keyLineOfCable(std::string_view key, int cable) {
  int found = 0;
  for (const TracedLine& line : TRACE->lines()) {
    if (line.key != nullptr && line.key->text == key && line.open.cable == cable &&
        line.state == State::CoaxCable)
      found = line.number;
  }
  return found;
}

int cablePositionLine(int cable) {
  int found = 0;
  for (const TracedLine& line : TRACE->lines()) {
    if (isPosition(line) && line.state == State::CoaxCable && line.open.cable == cable)
      found = line.number;
  }
  return found;
}

double numberAt(int line) {
  double value = std::numeric_limits<double>::quiet_NaN();
  if (line > 0 && TRACE->lines()[static_cast<std::size_t>(line - 1)].key != nullptr)
    readReal(fieldOf(TRACE->lines()[static_cast<std::size_t>(line - 1)]), value);
  return value;
}

int bundleLine(int section) {
  for (const TracedLine& line : TRACE->lines()) {
    const bool bundle = line.state == State::SubConductors && line.key != nullptr;
    if (bundle && sectionAt(line.section).parent == section) return line.number;
  }
  return sectionAt(section).heading;
}

int headingLine(std::string_view beginning) {
  int found = 0;
  for (const TracedLine& line : TRACE->lines()) {
    if (line.heading.starts_with(beginning) && !line.heading.empty()) found = line.number;
  }
  return found;
}

int sectionOfConductor(double x, double y) {
  const auto found = std::find_if(TRACE->conductors().begin(), TRACE->conductors().end(),
                                  [&](const TracedConductor& c) { return c.x == x && c.y == y; });
  return found == TRACE->conductors().end() ? 0 : found->section;
}

} // namespace lcp::companions
