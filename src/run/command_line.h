// The command line: /file, /length, /increment, /steps, each with the next argument as its value.
#pragma once

#include "store/run_groups.h"

#include <span>
#include <string_view>

namespace lcp {

constexpr std::string_view ARGUMENTFAILED = "Get argument failed with status = {}";

struct CommandLine {
  FileName fileName;    // blank without /file
  double length = 0;    // m
  double increment = 0; // added to the length from step to step, m
  int steps = 1;
};

// Scans the arguments (without the program's name) and echoes the values to the console. Unknown
// arguments are skipped; the error stream then shows the usage, for --version the version. An
// argument that is too long ends the run, and so does text where a number must stand.
CommandLine scanCommandLine(std::span<char* const> arguments);

} // namespace lcp
