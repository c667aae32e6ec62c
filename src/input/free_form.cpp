#include "input/free_form.h"

#include <charconv>
#include <cmath>
#include <cstdlib>

namespace lcp {

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isSign(char c) { return c == '+' || c == '-'; }

std::size_t skipDigits(std::string_view text, std::size_t at) {
  while (at < text.size() && isDigit(text[at])) ++at;
  return at;
}

// Splits "r*c" into the count r and the constant c. A plain item has count 1. Returns false for a
// count of 0 or out of range.
bool splitRepeat(std::string_view& word, int& count) {
  count = 1;
  const std::size_t star = skipDigits(word, 0);
  if (star == 0 || star >= word.size() || word[star] != '*') return true;
  const bool good = parseInteger(word.substr(0, star), count) && count > 0;
  word.remove_prefix(star + 1);
  return good;
}

// Fills the targets from `filled` on with the items of one text. Sets `done` at a slash. Returns
// false for a malformed item; a quoted text is not a number.
template <class T, class Parse>
bool fill(std::string_view text, std::span<T> targets, std::size_t& filled, bool& done,
          Parse parse) {
  ItemReader items(text);
  while (!done && filled < targets.size()) {
    const ItemReader::Item item = items.next();
    if (item == ItemReader::Item::End) return true;
    done = item == ItemReader::Item::Slash;
    if (item == ItemReader::Item::Null) ++filled;
    if (item != ItemReader::Item::Word) continue;
    std::string_view word = items.word();
    int count = 0;
    if (items.quoted() || !splitRepeat(word, count)) return false;
    for (; count > 0 && filled < targets.size(); --count, ++filled) {
      if (!word.empty() && !parse(word, targets[filled])) return false;
    }
  }
  return true;
}

template <class T, class Parse> Got readOne(std::string_view field, T& target, Parse parse) {
  ItemReader items(field);
  if (items.next() != ItemReader::Item::Word) return Got::None;
  std::string_view word = items.word();
  int count = 0;
  if (items.quoted() || !splitRepeat(word, count)) return Got::Malformed;
  if (word.empty()) return Got::None; // "r*": skipped items
  return parse(word, target) ? Got::Value : Got::Malformed;
}

} // namespace

bool parseReal(std::string_view text, double& value) {
  std::string number;
  std::size_t at = 0;
  if (at < text.size() && isSign(text[at])) ++at;
  const std::size_t whole = skipDigits(text, at);
  std::size_t digits = whole - at;
  at = whole;
  if (at < text.size() && text[at] == '.') {
    const std::size_t end = skipDigits(text, at + 1);
    digits += end - at - 1;
    at = end;
  }
  if (digits == 0) return false;
  number = text.substr(0, at);
  if (at < text.size()) {
    const bool letter = std::string_view("eEdDqQ").find(text[at]) != std::string_view::npos;
    if (!letter && !isSign(text[at])) return false;
    if (letter) ++at;
    number += 'e';
    if (at < text.size() && isSign(text[at])) number += text[at++];
    if (at == text.size() || skipDigits(text, at) != text.size()) return false;
    number += text.substr(at);
  }
  const double read = std::strtod(number.c_str(), nullptr);
  if (!std::isfinite(read)) return false;
  value = read;
  return true;
}

bool parseInteger(std::string_view text, int& value) {
  if (!text.empty() && text[0] == '+') {
    text.remove_prefix(1);
    if (text.empty() || !isDigit(text[0])) return false;
  }
  int read = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), read);
  if (error != std::errc() || end != text.data() + text.size()) return false;
  value = read;
  return true;
}

ItemReader::Item ItemReader::next() {
  for (;;) {
    while (!rest.empty() && isBlank(rest[0])) rest.remove_prefix(1);
    if (rest.empty()) return Item::End;
    if (rest[0] == '/') return Item::Slash;
    if (rest[0] != ',') break;
    rest.remove_prefix(1);
    if (!betweenItems) return Item::Null;
    betweenItems = false;
  }
  betweenItems = true;
  closed = true;
  inQuotes = rest[0] == '\'' || rest[0] == '"';
  if (inQuotes) return quotedItem(rest[0]);
  std::size_t end = 0;
  while (end < rest.size() && !isBlank(rest[end]) && rest[end] != ',' && rest[end] != '/') ++end;
  found = rest.substr(0, end);
  rest.remove_prefix(end);
  return Item::Word;
}

ItemReader::Item ItemReader::quotedItem(char quote) {
  unquoted.clear();
  closed = false;
  std::size_t at = 1;
  for (; at < rest.size() && !closed; ++at) {
    const bool doubled = rest[at] == quote && at + 1 < rest.size() && rest[at + 1] == quote;
    closed = rest[at] == quote && !doubled;
    if (!closed) unquoted += rest[at];
    if (doubled) ++at;
  }
  found = unquoted;
  rest.remove_prefix(at);
  return Item::Word;
}

Got readReal(std::string_view field, double& target) { return readOne(field, target, parseReal); }
Got readInteger(std::string_view field, int& target) {
  return readOne(field, target, parseInteger);
}

Got readWord(std::string_view field, std::string& target) {
  ItemReader items(field);
  if (items.next() != ItemReader::Item::Word) return Got::None;
  if (!items.wellFormed()) return Got::Malformed;
  target = items.word();
  return Got::Value;
}

bool readReals(std::string_view field, std::span<double> targets) {
  return RealList(targets).feed(field);
}

bool readIntegers(std::string_view field, std::span<int> targets) {
  std::size_t filled = 0;
  bool done = false;
  return fill(field, targets, filled, done, parseInteger);
}

bool RealList::feed(std::string_view record) {
  return fill(record, targets, filled, done, parseReal);
}

} // namespace lcp
