#include "diag/message_package.h"

#include "base/console.h"
#include "base/stop.h"
#include "diag/message_unit.h"
#include "diag/version_stamp.h"
#include "support/child.h"
#include "support/scratch.h"
#include "support/version_line.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace lcp;
using namespace lcp::test;

namespace {

void expectEnd(const std::function<void()>& code, int status, const std::string& console) {
  const ChildResult r = runChild(code);
  EXPECT_EQ(r.console, console);
  EXPECT_EQ(r.status, status) << console;
}

} // namespace

TEST(MessagePackage, ReportsAndGoesOn) {
  const std::string n(100, 'n'), going = "--Execution continuing. ***";
  const auto report = [&] {
    ERRMSG("ABC   ", " two words  ", MSGWARNING);
    ERRMSG("ABC", "x", MSGERROR);
    ERRMSG(n, "beyond the line", MSGWARNING);
  };
  expectEnd(report, 0,
            lines({"-*** WARNING: ABC:  two words" + going, "-", "-*** ERROR: ABC: x" + going, "-",
                   "-*** WARNING: " + n + ": beyond the line-", "-"}));
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
  const struct {
    std::function<void()> code;
    std::string message, trace;
  } cases[] = {
      {[&] {
         push(3);
         BAKTRC("anything", "", STACKPOP);
         ERRMSG("ABC", "text", MSGFATAL);
       },
       "ABC: text", trace(2)},
      {[&] { push(101); }, "BAKTRC: List full", trace(100)},
      {[] { BAKTRC("X", "Y", STACKPOP); }, "BAKTRC: Trying to pop too many names off list",
       trace(0)},
      {[] { BAKTRC("X", "Y", 2); }, "BAKTRC: Bad value for CODE", trace(0)},
      {[] { ERRMSG("X", "Y", 4); }, "ERRMSG: Variable ACTION out of range.", ""},
  };
  for (const auto& c : cases)
    expectEnd(c.code, 12,
              "-*** ERROR: " + c.message + "--Execution terminating. ***\n" + c.trace +
                  versionLine(901120) + "\n");
}

TEST(MessagePackage, StopLevels) {
  const int expected[][2] = {{0, 0}, {1, 4}, {3, 4}, {4, 8}, {8, 8}, {9, 12}, {12, 12}, {13, 16}};
  for (const auto& [level, status] : expected)
    expectEnd([l = level] { RUNSTOP(l); }, status, versionLine(900329) + "\n");
}

TEST(VersionStamp, KeepsTheNewestDateOfASlot) {
  const auto newest = [] {
    NVDATE(910101, 1);
    const bool good = NVDATE(900101, 1) == 910101 && NVDATE(900127, UNITSTAMP) == 0 &&
                      NVDATE(900128, UNITSTAMP) == 900128;
    RUNSTOP(good ? 0 : 1);
  };
  expectEnd(newest, 0, versionLine(910101) + "\n");
  for (const int date : {800100, 991232})
    expectEnd([=] { NVDATE(date, 1); }, 1, "NVDATE: BAD VALUE FOR DATE\n");
  for (const int index : {0, 11})
    expectEnd([=] { NVDATE(900101, index); }, 1, "NVDATE: ILLEGAL VALUE FOR INDEX\n");
}

TEST(MessageUnit, GoesToFilesAndBack) {
  const Scratch scratch;
  const std::string old = scratch.file("old", "first\n"), fresh = scratch.file("new");
  const auto write = [&] {
    W_OUTMSG(" ", fresh + "  ");
    W_OUTMSG(" in new", " ");
    const int unit = MSGUNIT;
    W_OUTMSG("second", old);
    W_OUTMSG("again in new", fresh);
    if (MSGUNIT != unit) stop(3);
    int given = 50;
    OUTMS0(given, 0, old, "OLD");
    MSGUNIT = given;
    W_OUTMSG("third", " ");
    W_OUTMSG("on the console", "*");
    W_OUTMSG("   ", " ");
  };
  expectEnd(write, 0, "on the console\n");
  EXPECT_EQ(contentOf(fresh), " in new\nagain in new\n");
  EXPECT_EQ(contentOf(old), "first\nsecond\nthird\n");
}

TEST(MessageUnit, Failures) {
  const Scratch scratch;
  const std::string file = scratch.file("file", "");
  const auto onClosedUnit = [&](const char* name) {
    W_OUTMSG(" ", file);
    close(MSGUNIT);
    W_OUTMSG("x", name);
  };
  const auto noUnitLeft = [&] {
    for (int unit = 0; unit <= 99; ++unit) {
      if (fcntl(unit, F_GETFD) < 0) dup2(STDOUT_FILENO, unit);
    }
    W_OUTMSG("x", file);
  };
  const std::pair<std::function<void()>, const char*> cases[] = {
      {[&] { W_OUTMSG("x", scratch.file("missing/file")); },
       "OUTMS0: ERROR DURING OPEN OF MESSAGE UNIT\n"},
      {[&] { W_OUTMSG("x", file + "/below"); }, "W_OUTMSG: ERROR DURING INQUIRE FOR FILE\n"},
      {[] { W_OUTMSG("x", "/dev/full"); }, "W_OUTMSG: ERROR DURING WRITE TO MESSAGE UNIT\n"},
      {[&] { onClosedUnit(" "); }, "W_OUTMSG: MESSAGE UNIT IS NOT ASSIGNED\n"},
      {[&] { onClosedUnit("*"); }, "W_OUTMSG: ERROR DURING CLOSE OF MESSAGE UNIT\n"},
      {noUnitLeft, "OUTMS0: NO LOGICAL UNITS AVAILABLE\n"},
  };
  for (const auto& [code, text] : cases) expectEnd(code, 1, text);
}
