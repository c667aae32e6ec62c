// Command lines of the companions: words, options with and without a value.
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
  std::string_view value; // what the usage calls its value; empty for none
  std::string_view help;
};

struct Program {
  std::string_view name;
  std::string_view purpose; // one line
  std::string_view words;   // what the usage calls its words: "DESCRIPTION [MODEL]"
  std::size_t leastWords, mostWords;
  std::span<const OptionRow> options;
  int wrongUse = 2; // exit status behind a command line that it does not take
};

struct Arguments {
  std::vector<std::string> words;
  std::map<std::string, std::string, std::less<>> options; // name to value, the last one
  std::vector<std::pair<std::string, std::string>> given; // the same, each as often as it was given

  bool has(std::string_view option) const { return options.contains(option); }
  // The value of an option, or another one when it was not given.
  std::string_view valueOr(std::string_view option, std::string_view other) const;
  // The same as a number; a value that is not a finite number ends the program, exit status 2.
  double numberOr(std::string_view option, double other) const;
};

// Takes the command line apart. --help and --version are told and end the program, exit status 0;
// an option that the program does not know, a value that is missing, and too few or too many words
// end it with a message and the usage on the error stream, exit status wrongUse.
Arguments parseArguments(const Program& program, std::span<char* const> arguments);

// Text on the standard output, and whether all of it could be written.
void say(std::string_view text);
bool saidAll();

// A line "NAME: WORDS" on the error stream, and the end.
[[noreturn]] void giveUp(std::string_view name, std::string_view words, int status = 2);

} // namespace lcp::companions
