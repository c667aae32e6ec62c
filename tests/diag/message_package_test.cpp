#include "diag/message_package.h"

#include "base/stop.h"
#include "diag/message_unit.h"
#include "diag/version_stamp.h"
#include "support/child.h"

#include <algorithm>
#include <fmt/format.h>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

// The version line for routines up to a date. Decompositions of other tests in the same process
// have left their dates.
std::string versionLine(int date) {
  return fmt::format(" *** Version {} ***", std::max(date, NVDATE(800101, EIGENSTAMP)));
}

void expectEnd(const std::function<void()>& code, int status, const std::string& console) {
  const ChildResult r = runChild(code);
  EXPECT_EQ(r.console, console);
  EXPECT_EQ(r.status, status) << console;
}

} // namespace

TEST(MessagePackage, ReportsAndGoesOn) {
  const std::string n(100, 'n'), going = "--Execution continuing. ***\n-\n";
  const auto report = [&] {
    ERRMSG("ABC   ", " two words  ", MSGWARNING);
    ERRMSG("ABC", "x", MSGERROR);
    ERRMSG(n, "beyond the line", MSGWARNING);
  };
  expectEnd(report, 0,
            "-*** WARNING: ABC:  two words" + going + "-*** ERROR: ABC: x" + going +
                "-*** WARNING: " + n + ": beyond the line-\n-\n");
}

TEST(MessagePackage, FatalEnds) {
  const auto push = [](int names) {
    for (int d = 1; d <= names; ++d)
      BAKTRC(fmt::format("NAME{}", d), "LIBRARY OF TWENTY CHARACTERS", STACKPUSH);
  };
  const auto trace = [](int names) { // names and libraries are cut
    std::string text = "-Traceback:\n";
    for (int d = names; d >= 1; --d)
      text += fmt::format(" {:<6.6} - LIBRARY OF TWENTY CH\n", fmt::format("NAME{}", d));
    return text + "-\n";
  };
  const auto popped = [&] {
    push(3);
    BAKTRC("anything", "", STACKPOP);
    ERRMSG("ABC", "text", MSGFATAL);
  };
  const struct {
    std::function<void()> code;
    std::string message, trace;
  } cases[] = {
      {popped, "ABC: text", trace(2)},
      {[&] { push(101); }, "BAKTRC: List full", trace(100)},
      {[] { BAKTRC("X", "Y", STACKPOP); }, "BAKTRC: Trying to pop too many names off list",
       trace(0)},
      {[] { BAKTRC("X", "Y", 2); }, "BAKTRC: Bad value for CODE", trace(0)},
      {[] { ERRMSG("X", "Y", 4); }, "ERRMSG: Variable ACTION out of range.", ""},
  };
  for (const auto& c : cases) {
    expectEnd(c.code, 12,
              "-*** ERROR: " + c.message + "--Execution terminating. ***\n" + c.trace +
                  versionLine(901120) + "\n");
  }
}

TEST(MessagePackage, StopLevelsAndDates) {
  const int levels[][2] = {{0, 0}, {1, 4}, {3, 4}, {4, 8}, {8, 8}, {9, 12}, {12, 12}, {13, 16}};
  for (const auto& [level, status] : levels)
    expectEnd([l = level] { RUNSTOP(l); }, status, versionLine(900329) + "\n");
  const auto older = [] {
    NVDATE(910101, 1);
    const bool newest = NVDATE(900101, 1) == 910101;
    RUNSTOP(newest && NVDATE(900127, UNITSTAMP) == 0 ? 0 : 1); // nor does a date below its first
  };
  expectEnd(older, 0, versionLine(910101) + "\n"); // a slot keeps its newest date
  for (const int date : {800100, 991232})
    expectEnd([=] { NVDATE(date, 1); }, 1, "NVDATE: BAD VALUE FOR DATE\n");
  for (const int index : {0, 11})
    expectEnd([=] { NVDATE(900101, index); }, 1, "NVDATE: ILLEGAL VALUE FOR INDEX\n");
}

TEST(MessageUnit, WriteThatFailsEndsTheRun) {
  expectEnd([] { W_OUTMSG("x", "/dev/full"); }, 1,
            "W_OUTMSG: ERROR DURING WRITE TO MESSAGE UNIT\n");
}
