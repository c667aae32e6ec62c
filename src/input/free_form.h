// Free-form items: separated by blanks or commas, ended by a slash.
//
// Numbers are decimal; E, D and Q mark an exponent, in either case, r*c stands for r times c, and
// r* alone leaves r of them out. NaN, infinity and what does not fit the type are malformed, and so
// is a number in quotes. A text is a word, or stands in quotes; a quote inside is doubled. Two
// commas in a row leave an item out.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace lcp {

enum class Got {
  Value,    // an item was read
  None,     // no item is there: the target is unchanged
  Malformed // an item is there and does not fit
};

// A whole text as one number.
bool parseReal(std::string_view text, double& value);
bool parseInteger(std::string_view text, int& value);

// The first item of a field.
Got readReal(std::string_view field, double& target);
Got readInteger(std::string_view field, int& target);
Got readWord(std::string_view field, std::string& target);

// Walks over the items of one text after another.
class ItemReader {
public:
  explicit ItemReader(std::string_view text = {}) : rest(text) {}

  enum class Item { Word, Null, Slash, End };
  Item next();                                    // steps on to the next item
  std::string_view word() const { return found; } // its characters, without quotes
  bool quoted() const { return inQuotes; }        // it stands in quotes
  bool wellFormed() const { return closed; }      // false: a quote was not closed

private:
  Item quotedItem(char quote);

  std::string_view rest;
  std::string_view found;
  std::string unquoted;
  bool betweenItems = false; // an item was just read: the next comma only ends it
  bool inQuotes = false;
  bool closed = true;
};

// Number lists. Fewer items than targets leave the rest unchanged. False for a malformed item.
bool readReals(std::string_view field, std::span<double> targets);
bool readIntegers(std::string_view field, std::span<int> targets);

// A list of reals that may run over several records: feed them until `complete`.
class RealList {
public:
  explicit RealList(std::span<double> where) : targets(where) {}
  bool feed(std::string_view record); // false for a malformed item
  bool complete() const { return done || filled >= targets.size(); }
  bool started() const { return done || filled > 0; }

private:
  std::span<double> targets;
  std::size_t filled = 0;
  bool done = false;
};

} // namespace lcp
