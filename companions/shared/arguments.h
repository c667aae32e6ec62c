// Parses the command lines of the companions: words, and options with or without a value.
#pragma once

#include <map>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lcp::companions {

inline constexpr std::string_view CANNOTBEWRITTEN = "the standard output cannot be written";

struct OptionRow {
  std::string_view name;  // "--json", "/length"
  std::string_view value; // name of the value in the usage text; empty for none
  std::string_view help;
};

struct Program {
  std::string_view name;
  std::string_view purpose; // one line
  std::string_view words;   // names of the words in the usage text: "DESCRIPTION [MODEL]"
  std::size_t leastWords, mostWords;
  std::span<const OptionRow> options;
  int wrongUse = 2; // exit status after an invalid command line
};

struct Arguments {
  std::vector<std::string> words;
  std::map<std::string, std::string, std::less<>> options; // name to value; the last one counts
  std::vector<std::pair<std::string, std::string>> given;  // all options in order, with repeats

  bool has(std::string_view option) const { return options.contains(option); }
  // The value of an option, or `other` if it was not given.
  std::string_view valueOr(std::string_view option, std::string_view other) const;
  // The same as a number; a value that is not a finite number ends the program with exit status 2.
  double numberOr(std::string_view option, double other) const;
};

// Parses the command line. --help and --version print their text and end the program with exit
// status 0. An unknown option, a missing value, and too few or too many words end it with a message
// and the usage on the error stream and exit status wrongUse.
Arguments parseArguments(const Program& program, std::span<char* const> arguments);

// say writes a text to standard output; saidAll flushes it and returns whether everything was
// written.
void say(std::string_view text);
bool saidAll();

// Prints "NAME: WORDS" on the error stream and ends the program.
[[noreturn]] void giveUp(std::string_view name, std::string_view words, int status = 2);

} // namespace lcp::companions
