// What holds before the first test. Tests fill stores by hand, of any order and before a solve:
// they are mapped for the largest. Numbers are computed in the program's floating-point mode, in
// which a denormal number is 0. A run that ends inside a test, not in a child of it, fails this
// test alone: the linker puts the routine below in the place of stop(). CORVO_TEST_FOLDERS names
// folders, with blanks between them, when not all tests are to run.
#include "fit/fit_store.h"
#include "fit/series_fit.h"
#include "run/lcpmain.h"
#include "store/fitmodel.h"
#include "store/solvedata.h"

#include "base/console.h"

#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <sstream>
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

// The filter that leaves the tests of these folders; empty when there are none.
std::string testsIn(const std::string& folders) {
  std::string filter, folder;
  const auto& all = *testing::UnitTest::GetInstance();
  for (std::istringstream words(folders); words >> folder;) {
    const std::string place =
        "tests/" + folder + "/"; // a compiler's cache may have cut what is ahead
    for (int i = 0; i < all.total_test_suite_count(); ++i) {
      const auto& suite = *all.GetTestSuite(i);
      for (int k = 0; k < suite.total_test_count(); ++k) {
        const auto& test = *suite.GetTestInfo(k);
        if (std::string_view(test.file()).find(place) != std::string_view::npos)
          filter += std::string(suite.name()) + "." + test.name() + ":";
      }
    }
  }
  return filter;
}

} // namespace

} // namespace lcp::test

extern "C" {
// NOLINTBEGIN(bugprone-reserved-identifier): the names that the linker gives them
[[noreturn]] void __real__ZN3lcp4stopEi(int status);
[[noreturn]] void __wrap__ZN3lcp4stopEi(int status) {
  // NOLINTEND(bugprone-reserved-identifier)
  if (getpid() != lcp::test::TESTS) __real__ZN3lcp4stopEi(status);
  lcp::console::flush();
  throw std::runtime_error("the run ended with status " + std::to_string(status));
}
}

int main(int count, char** values) {
  testing::InitGoogleTest(&count, values);
  const char* folders = std::getenv("CORVO_TEST_FOLDERS");
  if (folders != nullptr && *folders != 0) {
    const std::string filter = lcp::test::testsIn(folders);
    if (filter.empty()) return 1;
    GTEST_FLAG_SET(filter, filter);
  }
  return RUN_ALL_TESTS();
}
