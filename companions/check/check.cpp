#include "companions/check/check.h"

#include "companions/shared/arguments.h"
#include "companions/shared/captured_run.h"

#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr int CLEAN = 0;
constexpr int REFUSED = 2;

constexpr double USUALLENGTH = 1e4; // m

constexpr OptionRow OPTIONS[] = {{"/length", "METRES", "length of the line, else 10 km"},
                                 {"--json", "", "the same as one JSON document"}};
constexpr Program CHECK = {"corvo-check",
                           "Tells what a description file says and what in it had no effect.",
                           "DESCRIPTION",
                           1,
                           1,
                           OPTIONS};

} // namespace

int checkDescription(std::span<char* const> arguments) {
  const Arguments given = parseArguments(CHECK, arguments);
  const double length = given.numberOr("/length", USUALLENGTH);
  const CapturedRun read = readInChild(given.words[0], length);
  if (read.status != 0) {
    fmt::print("{}", read.console);
    return REFUSED;
  }
  readHere(given.words[0], length);
  return CLEAN;
}

} // namespace lcp::companions
