#include "companions/shared/arguments.h"

#include "input/free_form.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fmt/format.h>
#include <unistd.h>

namespace lcp::companions {

namespace {

constexpr int CANNOTTELL = 2;

constexpr OptionRow COMMON[] = {{"--help", "", "this text"}, {"--version", "", "the version"}};

std::string usageOf(const Program& p) {
  std::string text = fmt::format("usage: {} {} [OPTIONS]\n{}\n\n", p.name, p.words, p.purpose);
  const auto add = [&](const OptionRow& o) {
    text += fmt::format("  {:24}{}\n", fmt::format("{} {}", o.name, o.value), o.help);
  };
  std::for_each(p.options.begin(), p.options.end(), add);
  std::for_each(std::begin(COMMON), std::end(COMMON), add);
  return text;
}

[[noreturn]] void refuse(const Program& p, std::string_view words) {
  fmt::print(stderr, "{}: {}\n{}", p.name, words, usageOf(p));
  std::exit(p.wrongUse);
}

[[noreturn]] void tell(const Program& p, const std::string& text) {
  say(text);
  if (!saidAll()) giveUp(p.name, CANNOTBEWRITTEN);
  std::exit(0);
}

// Whether a word looks like a misspelt option: "--lenght", or "/lenght" if there is no such file.
bool looksLikeOption(const std::string& text) {
  if (text.size() < 2) return false;
  if (text[0] == '-') return true;
  return text.rfind('/') == 0 && access(text.c_str(), F_OK) != 0;
}

} // namespace

std::string_view Arguments::valueOr(std::string_view option, std::string_view other) const {
  const auto found = options.find(option);
  return found == options.end() ? other : std::string_view(found->second);
}

double Arguments::numberOr(std::string_view option, double other) const {
  const auto found = options.find(option);
  double value = other;
  if (found != options.end() && !parseReal(found->second, value))
    giveUp(option, fmt::format("{} is not a number", found->second));
  return value;
}

Arguments parseArguments(const Program& program, std::span<char* const> arguments) {
  Arguments result;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string_view text = arguments[i];
    if (text == "--help") tell(program, usageOf(program));
    if (text == "--version") tell(program, fmt::format("{} {}\n", program.name, CORVO_VERSION));
    const auto option = std::find_if(program.options.begin(), program.options.end(),
                                     [&](const OptionRow& o) { return o.name == text; });
    if (option != program.options.end()) {
      const bool takes = !option->value.empty();
      if (takes && i + 1 == arguments.size())
        refuse(program, fmt::format("{} needs a value", text));
      result.given.emplace_back(text, takes ? arguments[++i] : "");
      result.options[std::string(text)] = result.given.back().second;
    } else if (looksLikeOption(std::string(text))) {
      refuse(program, fmt::format("unknown option {}", text));
    } else if (text.empty()) {
      refuse(program, "an empty word"); // e.g. an unset variable in a script
    } else {
      result.words.emplace_back(text);
    }
  }
  const std::size_t n = result.words.size();
  if (n < program.leastWords) refuse(program, fmt::format("{} expected", program.words));
  if (n > program.mostWords)
    refuse(program, fmt::format("{} is one word too many", result.words[program.mostWords]));
  return result;
}

// fmt::print would throw on a full device.
void say(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stdout); }

bool saidAll() { return std::fflush(stdout) == 0 && std::ferror(stdout) == 0; }

void giveUp(std::string_view name, std::string_view words, int status) {
  fmt::print(stderr, "{}: {}\n", name, words);
  std::exit(status);
}

} // namespace lcp::companions
