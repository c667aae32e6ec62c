#include "support/description.h"

#include "input/reader.h"
#include "store/rundata.h"
#include "support/scratch.h"

#include <fmt/format.h>

namespace lcp::test {

namespace {

const char* caseName(int iscable) { return iscable == 0 ? "case.cvi" : "case.cbi"; }

// A folder of the test process.
const Scratch& scratch() {
  static const Scratch folder;
  return folder;
}

void prepare(const std::string& text, int iscable, double length) {
  RUNDATA.run = RunControl{};
  RUNDATA.run.FNAME = scratchFile(caseName(iscable), text);
  RUNDATA.run.ISCABLE = iscable;
  RUNDATA.run.LINELEN = length;
}

} // namespace

std::string scratchFile(std::string_view name, std::string_view text) {
  return name.empty() ? scratch().file(name) : scratch().file(name, text); // or the folder
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
  prepare(text, iscable, 1000.0);
  READTLDATA();
}

ChildResult readInChild(const std::string& text, int iscable, double length) {
  return runChild([&] {
    prepare(text, iscable, length);
    READTLDATA();
  });
}

std::string errorExit(std::string_view lastLine, int iscable) {
  const std::string stars(43, '*');
  return lines({"", stars, "Corvo.exe: ERROR",
                "Error in Reading Data File: " + scratch().file(caseName(iscable)),
                fmt::format("Last Line Read Was: {}", lastLine), stars, "READTLDATA Ending!"});
}

} // namespace lcp::test
