#include "input/key_rows.h"

#include "input/trace_store.h"

#include <algorithm>

namespace lcp {

namespace {

void storeReal(const KeyRow& row, double value) {
  value = std::max(row.factor * value, row.floor);
  if (row.real != nullptr) *row.real = value;
  if (row.reals != nullptr) putEntry(*row.reals, row.entry, value);
}

Got readNumber(const KeyRow& row, std::string_view field) {
  double real = 0;
  int integer = 0;
  const Got got = row.kind == KeyKind::Real ? readReal(field, real) : readInteger(field, integer);
  if (got != Got::Value) return got;
  switch (row.kind) {
  case KeyKind::Real: storeReal(row, real); break;
  case KeyKind::Integer: *row.integer = integer; break;
  case KeyKind::SetBy1: *row.flag = *row.flag || integer == 1; break;
  default: *row.flag = integer == 1; break;
  }
  return got;
}

Got readName(const KeyRow& row, std::string_view field) {
  std::string word;
  const Got got = readWord(field, word);
  if (got == Got::Value) *row.name = word;
  return got;
}

std::string_view whatIsDue(KeyKind kind) {
  if (kind == KeyKind::Name) return QUOTEDUE;
  return kind == KeyKind::Real ? NUMBERDUE : INTEGERDUE;
}

} // namespace

const KeyRow* findKey(std::span<const KeyRow> rows, std::string_view line) {
  const auto row = std::find_if(rows.begin(), rows.end(),
                                [&](const KeyRow& r) { return line.starts_with(r.text); });
  const KeyRow* key = row == rows.end() ? nullptr : &*row;
  if (key != nullptr) READER.key = key->text;
  if (tracing()) traceKeys(rows.data(), rows.size(), key);
  return key;
}

std::string_view valueField(const KeyRow& row, std::string_view line) {
  const auto column = static_cast<std::size_t>(row.column);
  return column < line.size() ? line.substr(column) : std::string_view();
}

Got readKey(const KeyRow& row, std::string_view line) {
  const std::string_view field = valueField(row, line);
  Got got = Got::None;
  if (row.kind == KeyKind::Name) got = readName(row, field);
  if (row.kind < KeyKind::Name) got = readNumber(row, field);
  if (got == Got::Malformed) readError(whatIsDue(row.kind));
  if (tracing()) traceValue(got, openGroup());
  if (row.present != nullptr) *row.present = true;
  if (row.alsoSet != nullptr && got == Got::Value) *row.alsoSet = true;
  if (row.alsoMark != nullptr && got == Got::Value) markEntry(*row.alsoMark, row.entry);
  return got;
}

} // namespace lcp
