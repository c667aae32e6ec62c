#include "diag/message_package.h"

#include "base/stop.h"
#include "base/table.h"
#include "diag/message_unit.h"
#include "diag/version_stamp.h"

#include <algorithm>
#include <fmt/format.h>
#include <string>

namespace lcp {

namespace {

constexpr std::size_t MESSAGELENGTH = 132;
constexpr int STACKDATE = 900123;
constexpr int REPORTDATE = 901120;
constexpr int STOPDATE = 900127;

struct NameStack {
  Table<TextField<6>, NAMESTKSIZE> NAMESTK;
  Table<TextField<20>, NAMESTKSIZE> LIBSTK;
  int NAMEDEPTH = 0;
};

constinit NameStack stack;
int STOPLEVEL = 0;

std::string_view trimmed(std::string_view text) {
  return text.substr(0, static_cast<std::size_t>(ULEN(text)));
}

void report(std::string message) {
  message.resize(std::min(message.size(), MESSAGELENGTH));
  W_OUTMSG(trimmed(message), " ");
}

void printTraceback() {
  W_OUTMSG("-Traceback:", " ");
  for (int d = stack.NAMEDEPTH; d >= 1; --d)
    W_OUTMSG(fmt::format(" {} - {}", stack.NAMESTK[d].whole(), stack.LIBSTK[d].whole()), " ");
  W_OUTMSG("-", " ");
}

} // namespace

void ERRMSG(std::string_view name, std::string_view text, int action) {
  NVDATE(REPORTDATE, MESSAGESTAMP);
  const std::string_view who = trimmed(name), what = trimmed(text);
  switch (action) {
  case MSGWARNING:
    report(fmt::format(WARNINGREPORT, who, what));
    W_OUTMSG("-", " ");
    return;
  case MSGERROR:
    report(fmt::format("-*** ERROR: {}: {}--Execution continuing. ***", who, what));
    W_OUTMSG("-", " ");
    return;
  case MSGFATAL:
    report(fmt::format("-*** ERROR: {}: {}--Execution terminating. ***", who, what));
    printTraceback();
    break;
  default: report("-*** ERROR: ERRMSG: Variable ACTION out of range.--Execution terminating. ***");
  }
  RUNSTOP(12);
}

void BAKTRC(std::string_view name, std::string_view library, int code) {
  NVDATE(STACKDATE, MESSAGESTAMP);
  if (code == STACKPUSH) {
    if (stack.NAMEDEPTH >= NAMESTKSIZE) ERRMSG("BAKTRC", "List full", MSGFATAL);
    ++stack.NAMEDEPTH;
    stack.NAMESTK[stack.NAMEDEPTH] = name;
    stack.LIBSTK[stack.NAMEDEPTH] = library;
  } else if (code == STACKPOP) {
    if (stack.NAMEDEPTH <= 0) ERRMSG("BAKTRC", "Trying to pop too many names off list", MSGFATAL);
    --stack.NAMEDEPTH;
  } else if (code == STACKPRINT) {
    printTraceback();
  } else {
    ERRMSG("BAKTRC", "Bad value for CODE", MSGFATAL);
  }
}

void RUNSTOP(int level) {
  NVDATE(STOPDATE, MESSAGESTAMP);
  W_OUTMSG(fmt::format(" *** Version {:6d} ***", newestStamp()), " ");
  STOPLEVEL = std::max(STOPLEVEL, level);
  if (STOPLEVEL == 0) return;
  if (STOPLEVEL <= 3) stop(4);
  if (STOPLEVEL <= 8) stop(8);
  stop(STOPLEVEL <= 12 ? 12 : 16);
}

} // namespace lcp
