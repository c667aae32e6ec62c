// What holds before the first test. Tests fill stores by hand, of any order and before a solve:
// they are mapped for the largest. Numbers are computed in the program's floating-point mode, in
// which a denormal number is 0. A run that ends inside a test, not in a child of it, fails this
// test alone: the linker puts the routine below in the place of stop().
#include "fit/fitted_curves.h"
#include "fit/series_fit.h"
#include "run/lcpmain.h"
#include "store/fitmodel.h"
#include "store/solvedata.h"

#include "base/console.h"

#include <csignal>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <unistd.h>

namespace lcp::test {

[[maybe_unused]] const bool PREPARED = [] {
  mapCurves(SOLVEDATA, LDMAT);
  mapResidues(FITMODEL, LDMAT);
  for (auto* curves : {&FITTED.YC, &FITTED.H, &SERIESMODEL.ZFIT}) curves->map(LDMAT);
  SERIESMODEL.ZFR.map(LDMAT);
  flushDenormals();
  return true;
}();

namespace {

const pid_t TESTS = getpid();

constexpr unsigned LIMIT = 600; // seconds of a test, also in a build with sanitizers
std::string name;               // of the test that runs

// A test that does not end ends them all, with its name.
class Clock : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo& test) override {
    name = std::string(test.test_suite_name()) + "." + test.name() + " does not end\n";
    std::signal(SIGALRM, [](int) {
      [[maybe_unused]] const auto written = write(STDERR_FILENO, name.data(), name.size());
      _exit(1);
    });
    alarm(LIMIT);
  }
  void OnTestEnd(const testing::TestInfo& /*test*/) override { alarm(0); }
};

[[maybe_unused]] const bool LIMITED = [] {
  testing::UnitTest::GetInstance()->listeners().Append(new Clock); // which owns it
  return true;
}();

} // namespace

} // namespace lcp::test

extern "C" {
[[noreturn]] void __real__ZN3lcp4stopEi(int status);
[[noreturn]] void __wrap__ZN3lcp4stopEi(int status) {
  if (getpid() != lcp::test::TESTS) __real__ZN3lcp4stopEi(status);
  lcp::console::flush();
  throw std::runtime_error("the run ended with status " + std::to_string(status));
}
}
