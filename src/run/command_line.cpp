#include "run/command_line.h"

#include "base/console.h"
#include "base/solve_error.h"
#include "base/stop.h"
#include "input/free_form.h"

#include <string_view>

namespace lcp {

namespace {

enum class Expect { Keyword, File, Length, Increment, Steps };

struct Keyword {
  std::string_view text;
  Expect next;
};

constexpr Keyword KEYWORDS[] = {{"/file", Expect::File},
                                {"/length", Expect::Length},
                                {"/increment", Expect::Increment},
                                {"/steps", Expect::Steps}};

constexpr std::string_view USAGE =
    "usage: corvo /file NAME /length METRES [/increment METRES] [/steps COUNT]";

constexpr int TOOLONG = -1; // status of an argument that exceeds its buffer

// The argument unchanged; one that exceeds its buffer ends the run.
std::string_view fetch(std::string_view argument, int buffer) {
  if (argument.size() > static_cast<std::size_t>(buffer)) {
    console::print(ARGUMENTFAILED, TOOLONG);
    stop(0);
  }
  return argument;
}

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

Expect matchKeyword(std::string_view argument) {
  argument = argument.substr(0, argument.find_last_not_of(' ') + 1);
  for (const Keyword& k : KEYWORDS) {
    if (argument == k.text) return k.next;
  }
  return Expect::Keyword;
}

[[noreturn]] void notANumber(std::string_view keyword, std::string_view text) {
  console::openStars();
  console::print("The value of {} is not a valid number: {}", keyword, text);
  stopInStars("LCPMAIN Ending!");
}

double realValue(std::string_view keyword, std::string_view text) {
  double value = 0;
  const std::string_view number = trimmed(text);
  if (!number.empty() && !parseReal(number, value)) notANumber(keyword, text);
  return value;
}

// Answers --version and --help. To the scan they are unknown arguments.
bool tellsAboutProgram(std::string_view word) {
  if (word == "--version") console::note("corvo " CORVO_VERSION);
  if (word == "--help") console::note(USAGE);
  return word == "--version" || word == "--help";
}

// Shows the usage; `lost` is the first unused argument or a keyword without value, empty if there
// were no arguments.
void showUsage(std::string_view lost) {
  console::note(lost.empty() ? std::string(USAGE) : fmt::format("{} is not used; {}", lost, USAGE));
}

int stepValue(std::string_view text) {
  int value = 0;
  const std::string_view number = trimmed(text);
  if (!number.empty() && !parseInteger(number, value)) notANumber("/steps", text);
  if (value > MAXSTEPS) {
    console::openStars();
    console::print("Too Many Length Steps (/steps {}), Maximum of {} Allowed!", value, MAXSTEPS);
    stopInStars("LCPMAIN Ending!");
  }
  if (value < 0) console::warning(fmt::format("/steps {} is below 0: no length is solved", value));
  return value;
}

} // namespace

CommandLine scanCommandLine(std::span<char* const> arguments) {
  CommandLine line;
  Expect expect = Expect::Keyword;
  std::string_view lost;
  for (const char* argument : arguments) {
    const std::string_view text =
        fetch(argument, expect == Expect::File ? FILENAMELEN : ARGUMENTLEN);
    const Expect current = expect;
    expect = Expect::Keyword;
    switch (current) {
    case Expect::Keyword:
      expect = matchKeyword(text);
      if (expect == Expect::Keyword && !tellsAboutProgram(trimmed(text)) && lost.empty())
        lost = trimmed(text);
      break;
    case Expect::File:
      line.fileName = text;
      console::print(" File Name:        {}", text);
      break;
    case Expect::Length:
      line.length = realValue("/length", text);
      console::print(" Segment length:   {} [m]", text);
      break;
    case Expect::Increment:
      line.increment = realValue("/increment", text);
      console::print(" Length Increment: {} [m]", text);
      break;
    case Expect::Steps:
      line.steps = stepValue(text);
      console::print(" Steps:            {}", text);
      break;
    }
  }
  if (expect != Expect::Keyword && lost.empty()) lost = trimmed(arguments.back());
  if (!lost.empty() || arguments.empty()) showUsage(lost);
  return line;
}

} // namespace lcp
