// Sections "Line Summary" and "Cable Summary".
#include "base/console.h"
#include "base/stop.h"
#include "input/key_rows.h"
#include "input/reader_store.h"
#include "input/sections.h"
#include "store/rundata.h"

namespace lcp {

namespace {

constexpr double LOWESTFREQ = 0.001; // Hz

enum Rule { LINENAME = 1, ENTRYMETHOD, CONDUCTORCOUNT, FREQUENCY };

constexpr KeyRow rows[] = {
    realKey("Line Length", &READER.dropped),
    realKey("Cable Length", &READER.dropped),
    itemsKey("Line Name", LINENAME),
    itemsKey("Cable Name", LINENAME),
    textKey("Data Entry Method", ENTRYMETHOD).at(20),
    integerKey("Number of Conductors", &RUNDATA.line.NC).then(CONDUCTORCOUNT),
    realKey("Steady State Frequency", &RUNDATA.line.SSFREQ)
        .in("Hz")
        .atLeast(LOWESTFREQ)
        .then(FREQUENCY)
        .undoing("Frequency for Calculation"),
};
static_assert(noRowHidden(rows));

void readLineName(const KeyRow& key) {
  std::string word;
  const Got got = readWord(valueField(key, READER.LINE), word);
  if (got == Got::Malformed) readError(QUOTEDUE);
  if (got == Got::None) return;
  LineSummary& L = RUNDATA.line;
  L.LNAME = word;
  const std::size_t blank = L.LNAME.whole().find(' ');
  L.LNAMELEN = blank == std::string_view::npos ? LINENAMELEN + 1 : static_cast<int>(blank) + 1;
}

void readEntryMethod(const KeyRow& key) {
  const std::string_view method = valueField(key, READER.LINE);
  if (method.starts_with("Line Constants")) {
    RUNDATA.run.DATAFMT = ROUTECONSTANTS;
    progress("Line Constants to be Used..");
  } else if (method.starts_with("Manually Entered Data")) {
    RUNDATA.run.DATAFMT = ROUTEMANUAL;
    progress("Line Data Entered Manually..");
  }
}

void checkEquivalentCount() {
  if (RUNDATA.line.NC <= MAXEQUIV) return;
  noteLine();
  console::line("Error, Too Many Equivalent Conductors!");
  console::print("(Max= ,{}!)", MAXEQUIV);
  stop(1);
}

} // namespace

bool summaryLine() {
  const KeyRow* key = findKey(rows, READER.LINE);
  if (key == nullptr) return false;
  const Got got = readKey(*key, READER.LINE);
  switch (key->rule) {
  case LINENAME: readLineName(*key); break;
  case ENTRYMETHOD: readEntryMethod(*key); break;
  case CONDUCTORCOUNT:
    if (got == Got::Value) checkEquivalentCount();
    break;
  case FREQUENCY:
    if (got == Got::Value) RUNDATA.display.DISPFREQ = RUNDATA.line.SSFREQ;
    break;
  default: break;
  }
  return true;
}

} // namespace lcp
