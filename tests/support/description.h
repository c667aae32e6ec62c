// Description files for tests of the reader, and the reader run over them.
#pragma once

#include "support/child.h"

#include <string>
#include <string_view>
#include <vector>

namespace lcp::test {

// A file of that text in a scratch folder of the test process; returns its path.
std::string scratchFile(std::string_view name, std::string_view text);

// Text between the marks of a description file.
std::string description(std::string_view body);

// A tower of three conductors in one circuit, with more lines for the circuit and behind it.
std::string threePhaseTower(std::string_view circuitLines = "", std::string_view towerLines = "");

// A summary that goes with so many conductors.
std::string summary(int conductors);

// Reads a description with READTLDATA, here or in a child that it may end.
ChildResult readInChild(const std::string& text, int iscable = 0);
void readHere(const std::string& text, int iscable = 0);

// Entries of the store side by side.
template <class... T> std::vector<double> values(T... entries) {
  return {static_cast<double>(entries)...};
}

} // namespace lcp::test
