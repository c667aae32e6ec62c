#include "support/description.h"

#include "input/reader.h"
#include "store/rundata.h"
#include "support/scratch.h"

#include <fmt/format.h>

namespace lcp::test {

std::string scratchFile(std::string_view name, std::string_view text) {
  static const Scratch scratch;
  return scratch.file(name, text);
}

std::string description(std::string_view body) {
  return fmt::format("CORVO-INPUT-DATA\n{}\nEND-OF-CORVO-INPUT-DATA\n", body);
}

std::string threePhaseTower(std::string_view circuitLines, std::string_view towerLines) {
  return fmt::format("Line Constants Tower\n{{\nCircuit\n{{\nConductors: 3\n"
                     "Conductor Phase Information: 1 2 3\nDCResistance: 0.05\nSag: 6\n"
                     "Radius: 0.015\nP1 : -10 20\nP2 : 0 20\nP3 : 10 20\n{}}}\n{}}}\n",
                     circuitLines, towerLines);
}

std::string summary(int conductors) {
  return fmt::format("Line Summary\n{{\nNumber of Conductors: {}\n}}\n", conductors);
}

void readHere(const std::string& text, int iscable) {
  RUNDATA.run = RunControl{};
  RUNDATA.run.FNAME = scratchFile("case", text);
  RUNDATA.run.ISCABLE = iscable;
  RUNDATA.run.LINELEN = 1000.0;
  RUNDATA.run.FILESREAD = 1; // independent of earlier tests
  READTLDATA();
}

ChildResult readInChild(const std::string& text, int iscable) {
  return runChild([&] { readHere(text, iscable); });
}

} // namespace lcp::test
