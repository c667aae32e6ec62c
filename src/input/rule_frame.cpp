#include "input/rule_frame.h"

#include "base/console.h"
#include "base/stop.h"

namespace lcp {

namespace {
constexpr int EQUALS = 53;
} // namespace

void openRules() {
  console::rule('=', EQUALS);
  console::line("ORVEX Line Constants Program: ERROR");
  console::line();
}

void closeRules() { console::rule('=', EQUALS); }

void stopWithRules() {
  closeRules();
  stop(1);
}

} // namespace lcp
