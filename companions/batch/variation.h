// Cases made from one description by values of its keys.
#pragma once

#include "companions/batch/case_list.h"

#include <string>
#include <vector>

namespace lcp::companions {

struct Variation {
  std::string key;
  int line = 0; // of the description, where the key is changed in that line alone; 0 for all
  std::vector<std::string> values;
  std::string trouble; // in plain words; empty when it could be read
};

// "KEY=VALUE,VALUE,..." or "KEY@LINE=VALUE,..."
Variation variationOf(const std::string& text);

struct Template {
  std::filesystem::path description;
  std::string length;    // m, where it does not vary
  std::string arguments; // further ones of each case
};

// One case for each combination of the values, the last key fastest, in numbered folders in `work`,
// each with its description, which are written. Keys are compared without blanks and capitals;
// `length` is that of the command line. Notes tell of keys that stand in several lines.
CaseList makeCases(const Template& base, const std::vector<Variation>& variations,
                   const std::filesystem::path& work, std::vector<std::string>& notes);

} // namespace lcp::companions
