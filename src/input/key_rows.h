// Section keys as data: the text of a key, the position of its value and where the value is stored.
//
// A section is a constexpr table of rows in the order of comparison. The first row whose text
// starts the line is the key of the line, whatever follows. Anything a plain store cannot do is a
// rule: a number that the section's switch handles after the store.
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
  Items,   // free-form items, read by the rule
  Text,    // a text, handled by the rule
  Mark     // no value
};

constexpr int NORULE = 0;

// Reasons why a value is malformed, as shown to the user.
constexpr std::string_view NUMBERDUE = "its value must be a number";
constexpr std::string_view INTEGERDUE = "its value must be an integer";
constexpr std::string_view QUOTEDUE = "its quote must be closed";
constexpr int EACH = -1; // as many items as the group has conductors

struct KeyRow {
  std::string_view text;
  KeyKind kind = KeyKind::Mark;
  int column = 0; // 0-based column at which the value starts
  double factor = 1.0;
  double floor = -std::numeric_limits<double>::infinity();
  Entry entry = Entry::First;
  int rule = NORULE;
  double* real = nullptr;
  int* integer = nullptr;
  bool* flag = nullptr;
  FileName* name = nullptr;
  CondReals* reals = nullptr;
  bool* alsoSet = nullptr;       // flag set when any value is read
  CondFlags* alsoMark = nullptr; // ... mark of the entry in the conductor table
  bool* present = nullptr;       // flag set by the key even without a value

  // Not used by the reader, only by programs that explain a description:
  std::string_view unit;            // unit of the value; "1" for a pure number, empty if not known
  int least = 1;                    // number of items
  bool leads = false;               // keys before it in the section belong elsewhere
  bool repeats = false;             // may occur several times in its section
  std::string_view needs;           // key of the section that must precede it
  std::string_view undoes, undoes2; // preceding keys whose values it overrides

  // A copy of the row with one member changed.
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

// Makes a row of each kind. The value starts two characters after the key: a colon and a blank.
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

// True if every row can be reached: no row's text starts with the text of an earlier row.
template <std::size_t N> constexpr bool noRowHidden(const KeyRow (&rows)[N]) {
  for (std::size_t late = 1; late < N; ++late) {
    for (std::size_t early = 0; early < late; ++early) {
      if (rows[late].text.starts_with(rows[early].text)) return false;
    }
  }
  return true;
}

// The first row whose text starts the line; nullptr if there is none.
const KeyRow* findKey(std::span<const KeyRow> rows, std::string_view line);

// The value field of a row: from its column to the end of the line.
std::string_view valueField(const KeyRow& row, std::string_view line);

// Reads and stores the value of a row; a malformed value ends the run through the common error
// exit. A key without a value does nothing: the section applies the rule only for Got::Value.
Got readKey(const KeyRow& row, std::string_view line);

} // namespace lcp
