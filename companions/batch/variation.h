// Makes cases from one description by varying the values of keys.
#pragma once

#include "companions/batch/case_list.h"

#include <string>
#include <vector>

namespace lcp::companions {

struct Variation {
  std::string key;
  int line = 0; // line in which the key is changed; 0 for all lines
  std::vector<std::string> values;
  std::string trouble; // error message; empty if it is valid
};

// Parses "KEY=VALUE,VALUE,..." or "KEY@LINE=VALUE,...".
Variation variationOf(const std::string& text);

struct Template {
  std::filesystem::path description;
  std::string length;    // m, if it does not vary
  std::string arguments; // further arguments of each case
};

// Makes one case for each combination of values, the last key varying fastest, in numbered folders
// in `work`, and writes their descriptions. Keys are compared without blanks and case; `length` is
// the command-line length. `notes` reports keys that occur in several lines.
CaseList makeCases(const Template& base, const std::vector<Variation>& variations,
                   const std::filesystem::path& work, std::vector<std::string>& notes);

} // namespace lcp::companions
