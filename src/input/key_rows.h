// Section keys as data: what a key looks like, where its value stands, and where the value goes.
//
// A section is a constexpr table of rows, in the order of comparison; the first row whose text the
// line begins with is the line's key, whatever stands behind it. What a plain store cannot say is a
// rule: a number of the section's own that its switch picks up after the store.
#pragma once

#include "input/free_form.h"
#include "input/reader_store.h"
#include "store/conductor_table.h"
#include "store/run_groups.h"

#include <cstddef>
#include <limits>
#include <span>
#include <string_view>

namespace lcp {

enum class KeyKind {
  Real,    // one real, times the factor, at least the floor
  Integer, // one integer
  SetBy1,  // an integer; 1 sets the flag, other values do nothing
  IsIt1,   // an integer; 1 sets the flag, other values clear it
  Name,    // one word into a file name
  Items,   // free-form items, which the rule reads
  Text,    // a text, which the rule takes
  Mark     // no value
};

constexpr int NORULE = 0;

// What a value that does not fit lacks.
constexpr std::string_view NUMBERDUE = "its value must be a number";
constexpr std::string_view INTEGERDUE = "its value must be an integer";
constexpr std::string_view QUOTEDUE = "its quote must be closed";
constexpr int EACH = -1; // an item for each conductor of the group

struct KeyRow {
  std::string_view text;
  KeyKind kind = KeyKind::Mark;
  int column = 0; // where the value starts in the line, counted from 0
  double factor = 1.0;
  double floor = -std::numeric_limits<double>::infinity();
  Entry entry = Entry::First;
  int rule = NORULE;
  double* real = nullptr;
  int* integer = nullptr;
  bool* flag = nullptr;
  FileName* name = nullptr;
  CondReals* reals = nullptr;
  bool* alsoSet = nullptr;       // a flag that reading the value sets, whatever it is
  CondFlags* alsoMark = nullptr; // ... the entry's mark in the conductor table
  bool* present = nullptr;       // a flag that the key sets by standing there, also without a value

  // What the reader does not need, for who explains a description.
  std::string_view unit;            // of the value; "1" a pure number, empty where none is known
  int least = 1;                    // items that it takes
  bool leads = false;               // keys of the section that stand ahead of it go elsewhere
  bool repeats = false;             // may stand several times in its section
  std::string_view needs;           // a key of the section that must stand ahead of it
  std::string_view undoes, undoes2; // keys whose values it takes back when they stand ahead of it

  // The row with one member changed.
  template <class T> constexpr KeyRow with(T KeyRow::*member, T value) const {
    KeyRow row = *this;
    row.*member = value;
    return row;
  }

  constexpr KeyRow at(int c) const { return with(&KeyRow::column, c); }
  constexpr KeyRow times(double f) const { return with(&KeyRow::factor, f); }
  constexpr KeyRow atLeast(double f) const { return with(&KeyRow::floor, f); }
  constexpr KeyRow second() const { return with(&KeyRow::entry, Entry::Second); }
  constexpr KeyRow then(int r) const { return with(&KeyRow::rule, r); }
  constexpr KeyRow setting(bool* f) const { return with(&KeyRow::alsoSet, f); }
  constexpr KeyRow noting(bool* f) const { return with(&KeyRow::present, f); }
  constexpr KeyRow marking(CondFlags* f) const { return with(&KeyRow::alsoMark, f); }
  constexpr KeyRow in(std::string_view u) const { return with(&KeyRow::unit, u); }
  constexpr KeyRow taking(int n) const { return with(&KeyRow::least, n); }
  constexpr KeyRow leading() const { return with(&KeyRow::leads, true); }
  constexpr KeyRow many() const { return with(&KeyRow::repeats, true); }
  constexpr KeyRow behind(std::string_view key) const { return with(&KeyRow::needs, key); }
  constexpr KeyRow undoing(std::string_view key, std::string_view key2 = {}) const {
    return with(&KeyRow::undoes, key).with(&KeyRow::undoes2, key2);
  }
};

// Rows for each kind. The value starts two characters behind the key: a colon and a blank.
constexpr KeyRow keyOf(std::string_view text, KeyKind kind, int rule = NORULE) {
  KeyRow row;
  row.text = text;
  row.kind = kind;
  row.column = static_cast<int>(text.size()) + 2;
  row.rule = rule;
  return row;
}
constexpr KeyRow itemsKey(std::string_view text, int rule) {
  return keyOf(text, KeyKind::Items, rule);
}
constexpr KeyRow textKey(std::string_view text, int rule) {
  return keyOf(text, KeyKind::Text, rule);
}
constexpr KeyRow markKey(std::string_view text, int rule) {
  return keyOf(text, KeyKind::Mark, rule);
}
constexpr KeyRow realKey(std::string_view text, double* target) {
  KeyRow row = keyOf(text, KeyKind::Real);
  row.real = target;
  return row;
}
constexpr KeyRow realKey(std::string_view text, CondReals* target) {
  KeyRow row = keyOf(text, KeyKind::Real);
  row.reals = target;
  return row;
}
constexpr KeyRow integerKey(std::string_view text, int* target) {
  KeyRow row = keyOf(text, KeyKind::Integer);
  row.integer = target;
  return row;
}
constexpr KeyRow setBy1Key(std::string_view text, bool* target) {
  KeyRow row = keyOf(text, KeyKind::SetBy1);
  row.flag = target;
  return row;
}
constexpr KeyRow isIt1Key(std::string_view text, bool* target) {
  KeyRow row = keyOf(text, KeyKind::IsIt1);
  row.flag = target;
  return row;
}
constexpr KeyRow nameKey(std::string_view text, FileName* target) {
  KeyRow row = keyOf(text, KeyKind::Name);
  row.name = target;
  return row;
}

// True when every row can be met: no earlier row's text begins a later one's.
template <std::size_t N> constexpr bool noRowHidden(const KeyRow (&rows)[N]) {
  for (std::size_t late = 1; late < N; ++late) {
    for (std::size_t early = 0; early < late; ++early) {
      if (rows[late].text.starts_with(rows[early].text)) return false;
    }
  }
  return true;
}

// The first row whose text the line begins with, nullptr when there is none.
const KeyRow* findKey(std::span<const KeyRow> rows, std::string_view line);

// The value field of a row's key: from its column to the end of the line.
std::string_view valueField(const KeyRow& row, std::string_view line);

// Reads the value of the row's key and stores it; a malformed value takes the common error exit.
// Without a value the key does nothing: its section applies the rule to Got::Value alone.
Got readKey(const KeyRow& row, std::string_view line);

} // namespace lcp
