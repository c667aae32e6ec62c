#include "diag/message_package.h"

#include "base/console.h"
#include "base/stop.h"
#include "diag/message_unit.h"
#include "diag/version_stamp.h"
#include "support/child.h"
#include "support/scratch.h"
#include "support/version_line.h"

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace lcp;
using namespace lcp::test;

TEST(MessagePackage, ReportsAndGoesOn) {
  const ChildResult r = runChild([] {
    ERRMSG("ABC   ", " two words  ", MSGWARNING);
    ERRMSG("ABC", "x", MSGERROR);
    ERRMSG(std::string(100, 'n'), "beyond the line", MSGWARNING);
    console::line("end");
  });
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.console,
            lines({"-*** WARNING: ABC:  two words--Execution continuing. ***", "-",
                   "-*** ERROR: ABC: x--Execution continuing. ***", "-",
                   "-*** WARNING: " + std::string(100, 'n') + ": beyond the line-", "-", "end"}));
}

TEST(MessagePackage, FatalEnds) {
  const auto fatal = [](const char* text) {
    return fmt::format("-*** ERROR: {}--Execution terminating. ***", text);
  };
  const std::string trace = "-Traceback:", stamp = versionLine(901120);
  std::string fullStack = lines({fatal("BAKTRC: List full"), trace});
  for (int d = 100; d >= 1; --d) fullStack += fmt::format(" R{:<5} - LIBRARY OF TWENTY CH\n", d);
  const struct {
    const char* what;
    void (*code)();
    std::string console;
  } cases[] = {
      {"names are cut",
       [] {
         BAKTRC("OUTER", "LIB", STACKPUSH);
         BAKTRC("GONE", "LIB", STACKPUSH);
         BAKTRC("anything", "", STACKPOP);
         BAKTRC("SEVENCH", "MODALPAK", STACKPUSH);
         ERRMSG("SEVENCH", "text", MSGFATAL);
       },
       lines({fatal("SEVENCH: text"), trace, " SEVENC - MODALPAK            ",
              " OUTER  - LIB                 ", "-", stamp})},
      {"pop off an empty stack", [] { BAKTRC("X", "Y", STACKPOP); },
       lines({fatal("BAKTRC: Trying to pop too many names off list"), trace, "-", stamp})},
      {"101 names",
       [] {
         for (int d = 1; d <= 101; ++d)
           BAKTRC(fmt::format("R{}", d), "LIBRARY OF TWENTY CHARACTERS", STACKPUSH);
       },
       fullStack + lines({"-", stamp})},
      {"code of BAKTRC", [] { BAKTRC("X", "Y", 2); },
       lines({fatal("BAKTRC: Bad value for CODE"), trace, "-", stamp})},
      {"action of ERRMSG", [] { ERRMSG("X", "Y", 4); },
       lines({fatal("ERRMSG: Variable ACTION out of range."), stamp})},
  };
  for (const auto& c : cases) {
    const ChildResult r = runChild(c.code);
    EXPECT_EQ(r.status, 12) << c.what;
    EXPECT_EQ(r.console, c.console) << c.what;
  }
}

TEST(MessagePackage, StopLevels) {
  const int expected[][2] = {{0, 0}, {1, 4}, {3, 4}, {4, 8}, {8, 8}, {9, 12}, {12, 12}, {13, 16}};
  for (const auto& [level, status] : expected) {
    const ChildResult r = runChild([l = level] { RUNSTOP(l); });
    EXPECT_EQ(r.status, status) << level;
    EXPECT_EQ(r.console, versionLine(900329) + "\n") << level;
  }
}

TEST(VersionStamp, KeepsTheNewestDateOfASlot) {
  const ChildResult r = runChild([] {
    EXPECT_EQ(NVDATE(910101, 1), 910101);
    EXPECT_EQ(NVDATE(900101, 1), 910101);
    EXPECT_EQ(NVDATE(900127, UNITSTAMP), 0);
    EXPECT_EQ(NVDATE(900128, UNITSTAMP), 900128);
    RUNSTOP(0);
    EXPECT_EQ(NVDATE(800101, MESSAGESTAMP), 900329);
    if (testing::Test::HasFailure()) stop(2);
  });
  EXPECT_EQ(r.status, 0) << r.console;
  EXPECT_EQ(r.console, versionLine(910101) + "\n");
  const struct {
    int date, index;
    const char* text;
  } bad[] = {{800100, 1, "NVDATE: BAD VALUE FOR DATE\n"},
             {991232, 1, "NVDATE: BAD VALUE FOR DATE\n"},
             {900101, 0, "NVDATE: ILLEGAL VALUE FOR INDEX\n"},
             {900101, 11, "NVDATE: ILLEGAL VALUE FOR INDEX\n"}};
  for (const auto& b : bad) {
    const ChildResult end = runChild([&] { NVDATE(b.date, b.index); });
    EXPECT_EQ(end.status, 1);
    EXPECT_EQ(end.console, b.text);
  }
}

TEST(MessageUnit, GoesToFilesAndBack) {
  const Scratch scratch;
  const std::string d = scratch.path().string() + "/";
  std::ofstream(d + "old") << "first\n";
  const ChildResult r = runChild([&] {
    W_OUTMSG(" ", d + "new  ");
    if (!std::filesystem::exists(d + "new") || MSGUNIT == STDOUT_FILENO) stop(2);
    W_OUTMSG(" in new", " ");
    const int unit = MSGUNIT;
    W_OUTMSG("second", d + "old");
    W_OUTMSG("again in new", d + "new");
    if (MSGUNIT != unit) stop(3);
    int given = 50;
    OUTMS0(given, 0, d + "old", "OLD");
    MSGUNIT = given;
    W_OUTMSG("third", " ");
    W_OUTMSG("on the console", "*");
    W_OUTMSG("   ", " ");
  });
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.console, "on the console\n");
  EXPECT_EQ(contentOf(d + "new"), " in new\nagain in new\n");
  EXPECT_EQ(contentOf(d + "old"), "first\nsecond\nthird\n");
}

TEST(MessageUnit, Failures) {
  const Scratch scratch;
  const std::string d = scratch.path().string() + "/";
  std::ofstream(d + "file") << "";
  const auto onClosedUnit = [&](const char* file) {
    W_OUTMSG(" ", d + "file");
    close(MSGUNIT);
    W_OUTMSG("x", file);
  };
  const struct {
    std::function<void()> code;
    std::string text;
  } cases[] = {
      {[&] { W_OUTMSG("x", d + "missing/file"); }, "OUTMS0: ERROR DURING OPEN OF MESSAGE UNIT"},
      {[&] { W_OUTMSG("x", d + "file/below"); }, "W_OUTMSG: ERROR DURING INQUIRE FOR FILE"},
      {[&] { W_OUTMSG("x", "/dev/full"); }, "W_OUTMSG: ERROR DURING WRITE TO MESSAGE UNIT"},
      {[&] { onClosedUnit(" "); }, "W_OUTMSG: MESSAGE UNIT IS NOT ASSIGNED"},
      {[&] { onClosedUnit("*"); }, "W_OUTMSG: ERROR DURING CLOSE OF MESSAGE UNIT"},
      {[&] {
         for (int unit = 0; unit <= 99; ++unit) {
           if (fcntl(unit, F_GETFD) < 0) dup2(STDOUT_FILENO, unit);
         }
         W_OUTMSG("x", d + "file");
       },
       "OUTMS0: NO LOGICAL UNITS AVAILABLE"},
  };
  for (const auto& c : cases) {
    const ChildResult r = runChild(c.code);
    EXPECT_EQ(r.status, 1) << c.text;
    EXPECT_EQ(r.console, c.text + "\n");
  }
}
