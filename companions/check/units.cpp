#include "companions/check/units.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string>

namespace lcp::companions {

namespace {

struct Spelling {
  std::string_view written, meant;
};

// Compared after blanks and the signs of products and powers are removed.
constexpr Spelling SPELLINGS[] = {
    {"Mohms", "Mohm"}, {"MOhm", "Mohm"}, {"megohm", "Mohm"}, {"Megohm", "Mohm"}, {"ohms", "ohm"},
    {"Ohms", "ohm"},   {"Ohm", "ohm"},   {"mhos", "S"},      {"mho", "S"},       {"Mho", "S"},
    {"Siemens", "S"},  {"siemens", "S"}, {"metres", "m"},    {"meters", "m"},    {"metre", "m"},
    {"meter", "m"},    {"seconds", "s"}, {"sec", "s"},       {"hz", "Hz"},       {"HZ", "Hz"},
    {"sqmm", "mm2"},   {"percent", "%"}, {"KV", "kV"},       {"kv", "kV"},
};

// Units that a pure number cannot have.
constexpr std::array UNITS = {
    std::string_view("m"),   std::string_view("mm"),    std::string_view("cm"),
    std::string_view("km"),  std::string_view("%"),     std::string_view("Hz"),
    std::string_view("kHz"), std::string_view("MHz"),   std::string_view("ohm"),
    std::string_view("S"),   std::string_view("ohm/m"), std::string_view("ohm/km"),
    std::string_view("S/m"), std::string_view("ohmm"),  std::string_view("s")};

std::string squeezed(std::string_view text) {
  std::string kept;
  for (const char c : text) {
    if (std::string_view(" \t*^.-").find(c) == std::string_view::npos) kept += c;
  }
  return kept;
}

void respell(std::string& unit) {
  for (const Spelling& s : SPELLINGS) {
    const std::size_t at = unit.find(s.written);
    const std::size_t end = at + s.written.size();
    if (at == std::string::npos) continue;
    const bool starts = at == 0 || unit[at - 1] == '/';
    const bool ends = end == unit.size() || unit[end] == '/' || s.meant.ends_with("ohm");
    if (starts && ends) unit.replace(at, s.written.size(), s.meant);
  }
}

} // namespace

std::string_view bracketText(std::string_view field) {
  const std::size_t open = field.find('[');
  if (open == std::string_view::npos) return {};
  const std::size_t close = field.find(']', open);
  return field.substr(open + 1, close == std::string_view::npos ? close : close - open - 1);
}

bool standsFor(std::string_view bracket, std::string_view unit) {
  std::string said = squeezed(bracket);
  respell(said);
  if (unit == "1") return std::find(UNITS.begin(), UNITS.end(), said) == UNITS.end();
  std::string first = squeezed(bracket.substr(0, bracket.find_first_of(" ,;")));
  respell(first);
  const std::string taken = squeezed(unit);
  return said.empty() || said == taken ||
         (first == taken && unit.find(' ') == std::string_view::npos);
}

} // namespace lcp::companions
