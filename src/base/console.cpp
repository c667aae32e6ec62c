#include "base/console.h"

#include "base/write_all.h"

#include <csignal>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace lcp::console {

namespace {

constexpr std::size_t FULL = 1 << 14; // characters collected before they are written

struct State {
  std::string collected;
  bool failed = false;
};

State& state() {
  static State s;
  return s;
}

// A failure is ignored: there is nowhere left to report it.
void writeError(std::string_view line) {
  [[maybe_unused]] const bool written = writeAll(STDERR_FILENO, line);
}

} // namespace

void prepare() {
  state().collected.reserve(2 * FULL);
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    // Open for reading only, so that writing to a closed console still fails.
    if (fcntl(standard, F_GETFD) < 0) open("/dev/null", O_RDONLY);
  }
}

void text(std::string_view words) {
  state().collected.append(words);
  if (state().collected.size() > FULL) flush();
}

void line(std::string_view words) {
  text(words);
  text("\n");
}

void rule(char sign, int length) { line(std::string(static_cast<std::size_t>(length), sign)); }

void openStars() {
  line();
  rule('*', STARS);
  line("Corvo.exe: ERROR");
}

void closeStars() { rule('*', STARS); }

void note(std::string_view words) { writeError(fmt::format("corvo: note: {}\n", words)); }

void warning(std::string_view words) { writeError(fmt::format("{}{}\n", WARNINGHEAD, words)); }

bool flush() {
  State& s = state();
  s.failed = s.failed || !writeAll(STDOUT_FILENO, s.collected);
  s.collected.clear();
  return !s.failed;
}

} // namespace lcp::console
