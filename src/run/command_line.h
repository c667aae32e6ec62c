// The command line: /file, /length, /increment and /steps, each followed by its value.
#pragma once

#include "store/run_groups.h"

#include <span>
#include <string_view>

namespace lcp {

constexpr std::string_view ARGUMENTFAILED = "Get argument failed with status = {}";

struct CommandLine {
  FileName fileName;    // blank if /file is missing
  double length = 0;    // m
  double increment = 0; // added to the length at each step, m
  int steps = 1;
};

// Scans the arguments (without the program's name) and echoes the values to the console. Unknown
// arguments are skipped; the error stream then shows the usage, or the version for --version. An
// argument that is too long, or a value that is not a number where one is required, ends the run.
CommandLine scanCommandLine(std::span<char* const> arguments);

} // namespace lcp
