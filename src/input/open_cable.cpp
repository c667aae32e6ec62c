#include "input/open_cable.h"

#include "base/console.h"
#include "input/reader_store.h"
#include "store/rundata.h"

namespace lcp {

namespace {

constexpr int LONGSTARS = 45;

void checkCableNumber(int n) {
  if (!RUNDATA.cable.CB.holds(n)) {
    openCableError();
    console::print("Incorrect Cable Number Entered ({})!", n);
    console::print("Cable Number Must be > 0 and <= {}", MAXCABLE);
    console::line("Check the Cable Number In the Cable Sub-Page!");
    closeCableError();
  }
  if (RUNDATA.cable.CB[n].CBUSED != 0) {
    openCableError();
    console::print("Data For Cable ({}) ", n);
    console::line("Has Already Been Entered!");
    console::line("In the Cable Sub-Page, Each Cable Must Have");
    console::line("a Unique Cable Number!");
    closeCableError();
  }
}

} // namespace

void openCableNumber(const KeyRow& key) {
  int n = 0;
  const Got got = readInteger(valueField(key, READER.LINE), n);
  if (got == Got::Malformed) readError(INTEGERDUE);
  if (got != Got::Value) return;
  checkCableNumber(n);
  READER.CURCABLE = n;
  READER.openCable = RUNDATA.cable.CB[n];
  READER.openCable.CBUSED = n;
}

void storeOpenCable() {
  if (RUNDATA.cable.CB.holds(READER.CURCABLE)) {
    RUNDATA.cable.CB[READER.CURCABLE] = READER.openCable;
  }
}

void checkCableCount(int count) {
  if (count >= 1 && count <= MAXCABLE) return;
  openCableError();
  console::print("Too Many Cables Entered ({})!", count);
  console::print("Cable Number Must be > 0 and <= {}", MAXCABLE);
  console::line("Check the Cable Number Data for Each Cable");
  console::line("In the Cable Sub-Page!");
  closeCableError();
}

void openCableError() {
  console::rule('*', LONGSTARS);
  console::line("Corvo.exe: ERROR");
}

void closeCableError() {
  console::rule('*', LONGSTARS);
  readError();
}

} // namespace lcp
