#include "diag/version_stamp.h"

#include "base/console.h"
#include "base/stop.h"
#include "base/table.h"

#include <algorithm>

namespace lcp {

namespace {

constexpr int FIRSTDATE = 800101;
constexpr int LASTDATE = 991231;
constexpr int MESSAGEFLOOR = 900329; // oldest release of the message routines
constexpr int UNITFLOOR = 900127;    // oldest release of the message unit

Table<int, STAMPSLOTS> DATESTAMP;

int floorOf(int index) {
  if (index == MESSAGESTAMP) return MESSAGEFLOOR;
  return index == UNITSTAMP ? UNITFLOOR : FIRSTDATE;
}

} // namespace

int NVDATE(int date, int index) {
  if (date < FIRSTDATE || date > LASTDATE) {
    console::line("NVDATE: BAD VALUE FOR DATE");
    stop(1);
  }
  if (!DATESTAMP.holds(index)) {
    console::line("NVDATE: ILLEGAL VALUE FOR INDEX");
    stop(1);
  }
  const bool taken = index != UNITSTAMP || date > UNITFLOOR;
  if (taken) DATESTAMP[index] = std::max(DATESTAMP[index], date);
  return DATESTAMP[index];
}

int newestStamp() {
  int newest = 0;
  for (int i = 1; i <= STAMPSLOTS; ++i) {
    DATESTAMP[i] = std::max(DATESTAMP[i], floorOf(i));
    newest = std::max(newest, DATESTAMP[i]);
  }
  return newest;
}

} // namespace lcp
