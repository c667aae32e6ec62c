// Description files for tests of the reader, and the reader run over them.
#pragma once

#include "support/child.h"

#include <string>
#include <string_view>

namespace lcp::test {

// A file of that text in a scratch folder of the test process; returns its path.
std::string scratchFile(std::string_view name, std::string_view text);

// Text between the marks of a description file.
std::string description(std::string_view body);

// A tower of three conductors in one circuit, with more lines for the circuit and behind it.
std::string threePhaseTower(std::string_view circuitLines = "", std::string_view towerLines = "");

// A summary that goes with so many conductors.
std::string summary(int conductors);

// Reads a description with READTLDATA, here or in a child that it may end. The file is called
// case.cvi or case.cbi.
void readHere(const std::string& text, int iscable = 0);
ChildResult readInChild(const std::string& text, int iscable = 0, double length = 1000.0);

// The lines of the common error exit for the last line read, as readInChild names the file.
std::string errorExit(std::string_view lastLine, int iscable = 0);

} // namespace lcp::test
