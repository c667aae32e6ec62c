// Description files for tests of the reader, and functions that run it on them.
#pragma once

#include "support/child.h"

#include <string>
#include <string_view>
#include <vector>

namespace lcp::test {

// Writes a file of that text to the scratch folder of the test process; returns its path.
std::string scratchFile(std::string_view name, std::string_view text);

// Text between the marks of a description file.
std::string description(std::string_view body);

// A tower of three conductors in one circuit, with more lines for the circuit and after it.
std::string threePhaseTower(std::string_view circuitLines = "", std::string_view towerLines = "");

// A summary for this number of conductors.
std::string summary(int conductors);

// Reads a description with READTLDATA in a child, which may end.
ChildResult readInChild(const std::string& text, int iscable = 0);
void readHere(const std::string& text, int iscable = 0);

// Values as a vector, for comparison.
template <class... T> std::vector<double> values(T... entries) {
  return {static_cast<double>(entries)...};
}

} // namespace lcp::test
