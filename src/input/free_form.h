// Free-form items, separated by blanks or commas and ended by a slash.
//
// Numbers are decimal; E, D and Q in either case mark an exponent. r*c stands for r times c, and r*
// skips r items. NaN, infinity, values out of range of the type, and quoted numbers are malformed.
// A text is a word or a quoted string, in which a quote is doubled. Two successive commas skip an
// item.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace lcp {

enum class Got {
  Value,    // an item was read
  None,     // no item: the target is unchanged
  Malformed // an item that does not fit
};

// Parses a whole text as one number.
bool parseReal(std::string_view text, double& value);
bool parseInteger(std::string_view text, int& value);

// Reads the first item of a field.
Got readReal(std::string_view field, double& target);
Got readInteger(std::string_view field, int& target);
Got readWord(std::string_view field, std::string& target);

// Iterates over the items of a text.
class ItemReader {
public:
  explicit ItemReader(std::string_view text = {}) : rest(text) {}

  enum class Item { Word, Null, Slash, End };
  Item next();                                    // advances to the next item
  std::string_view word() const { return found; } // its characters, without quotes
  bool quoted() const { return inQuotes; }        // whether it was in quotes
  bool wellFormed() const { return closed; }      // false: a closing quote is missing

private:
  Item quotedItem(char quote);

  std::string_view rest;
  std::string_view found;
  std::string unquoted;
  bool betweenItems = false; // after an item: the next comma only ends it
  bool inQuotes = false;
  bool closed = true;
};

// Reads lists of numbers. Targets without an item keep their values. Returns false for a malformed
// item.
bool readReals(std::string_view field, std::span<double> targets);
bool readIntegers(std::string_view field, std::span<int> targets);

// A list of reals that may extend over several records: feed records until complete.
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
