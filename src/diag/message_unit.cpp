#include "diag/message_unit.h"

#include "base/console.h"
#include "base/stop.h"
#include "base/write_all.h"
#include "diag/version_stamp.h"

#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace lcp {

namespace {

constexpr int CONSOLE = STDOUT_FILENO;

int MSGUNIT = CONSOLE; // descriptor that messages go to

constexpr int LASTUNIT = 99;
constexpr int NOUNIT = -1;
constexpr int UNITDATE = 900127;
constexpr int ULENDATE = 900127;

[[noreturn]] void fail(std::string_view words) {
  console::line(words);
  stop(1);
}

// Whether a channel is open. If the look-up fails, the run ends with the given message.
bool isOpen(int unit, std::string_view failure) {
  if (fcntl(unit, F_GETFD) >= 0) return true;
  if (errno != EBADF) fail(failure);
  return false;
}

bool takesWrites(int unit) {
  const int flags = fcntl(unit, F_GETFL);
  return flags >= 0 && (flags & O_ACCMODE) != O_RDONLY;
}

// Returns the channel on which a file is open for writing, or NOUNIT.
int unitOfFile(const struct stat& file) {
  for (int unit = 0; unit <= LASTUNIT; ++unit) {
    if (!isOpen(unit, "W_OUTMSG: ERROR DURING INQUIRE FOR UNIT") || !takesWrites(unit)) continue;
    struct stat open = {};
    if (fstat(unit, &open) != 0) fail("W_OUTMSG: ERROR DURING INQUIRE FOR UNIT");
    if (open.st_dev == file.st_dev && open.st_ino == file.st_ino) return unit;
  }
  return NOUNIT;
}

int unitFor(const std::string& name) {
  struct stat file = {};
  int unit = NOUNIT;
  if (stat(name.c_str(), &file) != 0) {
    if (errno != ENOENT) fail("W_OUTMSG: ERROR DURING INQUIRE FOR FILE");
    OUTMS0(unit, NOUNIT, name, "NEW");
    return unit;
  }
  unit = unitOfFile(file);
  if (unit == NOUNIT) OUTMS0(unit, NOUNIT, name, "OLD");
  return unit;
}

void backToConsole() {
  if (MSGUNIT != CONSOLE && close(MSGUNIT) != 0)
    fail("W_OUTMSG: ERROR DURING CLOSE OF MESSAGE UNIT");
  MSGUNIT = CONSOLE;
}

void writeLine(std::string_view text) {
  if (MSGUNIT == CONSOLE) {
    console::line(text);
    return;
  }
  if (!writeAll(MSGUNIT, std::string(text) + '\n'))
    fail("W_OUTMSG: ERROR DURING WRITE TO MESSAGE UNIT");
}

int firstFreeUnit() {
  for (int unit = 0; unit <= LASTUNIT; ++unit) {
    if (!isOpen(unit, "OUTMS0: ERROR DURING INQUIRE FOR UNIT")) return unit;
  }
  fail("OUTMS0: NO LOGICAL UNITS AVAILABLE");
}

std::string trimmed(std::string_view text) {
  return std::string(text.substr(0, static_cast<std::size_t>(ULEN(text))));
}

} // namespace

int ULEN(std::string_view text) {
  NVDATE(ULENDATE, MESSAGESTAMP);
  const auto last = text.find_last_not_of(' ');
  return last == std::string_view::npos ? 0 : static_cast<int>(last) + 1;
}

void W_OUTMSG(std::string_view text, std::string_view file) {
  NVDATE(UNITDATE, UNITSTAMP);
  const std::string name = trimmed(file);
  if (name.empty()) {
    if (!isOpen(MSGUNIT, "W_OUTMSG: ERROR DURING INQUIRE FOR UNIT"))
      fail("W_OUTMSG: MESSAGE UNIT IS NOT ASSIGNED");
  } else if (name == "*") {
    backToConsole();
  } else {
    MSGUNIT = unitFor(name);
  }
  if (ULEN(text) > 0) writeLine(text);
}

void OUTMS0(int& unit, int test, std::string_view file, std::string_view status) {
  NVDATE(UNITDATE, UNITSTAMP);
  if (unit == test) unit = firstFreeUnit();
  const int flags = O_WRONLY | O_APPEND | O_CLOEXEC | (status == "NEW" ? O_CREAT | O_EXCL : 0);
  const int opened = open(trimmed(file).c_str(), flags, 0666);
  if (opened < 0) fail("OUTMS0: ERROR DURING OPEN OF MESSAGE UNIT");
  if (opened == unit) return;
  if (dup2(opened, unit) < 0) fail("OUTMS0: ERROR DURING OPEN OF MESSAGE UNIT");
  close(opened);
}

} // namespace lcp
