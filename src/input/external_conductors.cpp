// A record consists of 49 numbers T1 to T49 on one or more lines. T1 = 1 marks a conductor record
// (one bundle), any other value a ground wire record. At most 50 records are read.
#include "input/external_conductors.h"

#include "base/console.h"
#include "base/stop.h"
#include "base/text_source.h"
#include "input/bundles.h"
#include "input/free_form.h"
#include "input/reader_store.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace lcp {

namespace {

constexpr double PERKM = 0.001; // ohm/km to ohm/m

using ExternalRecord = Table<double, EXTRECORDLEN>;

struct ExternalFile {
  TextSource source;
  int circuit = 1;      // circuit counter of the file
  int circuitCount = 0; // conductors of its current circuit
  bool anyKept = false; // a kept ground wire was read
};

[[noreturn]] void cannotOpen() {
  console::line();
  console::rule('*', console::STARS);
  console::print("Error in Opening Input Data File: {}", READER.EXTFILE.text());
  console::rule('*', console::STARS);
  console::line("READTLDATA Ending!");
  stop(1);
}

[[noreturn]] void cannotRead() {
  console::line();
  console::rule('*', console::STARS);
  console::line("Line Constants Program: ERROR");
  console::print("Error in Reading Data File: {}", READER.EXTFILE.text());
  console::line("File does not appear to conform to correct");
  console::line("format.");
  console::rule('*', console::STARS);
  console::line("READTLDATA Ending!");
  stop(1);
}

// Reads the next record. Returns false at the end of the file; an incomplete record ends the run.
bool nextRecord(ExternalFile& file, ExternalRecord& T) {
  T.fill(0.0);
  RealList list(T.entries);
  std::string line;
  while (!list.complete()) {
    const TextSource::Result result = file.source.next(line, std::string::npos);
    if (result == TextSource::Result::End && !list.started()) return false;
    if (result != TextSource::Result::Record || !list.feed(line)) cannotRead();
  }
  return true;
}

// A count or a choice, truncated to an integer.
int whole(double t) { return static_cast<int>(std::clamp(std::trunc(t), -1.0e9, 1.0e9)); }

int newEntry() {
  checkConductorCount(RUNDATA.cond.NCOND + 1);
  return ++RUNDATA.cond.NCOND;
}

void takeGroundWire(ExternalFile& file, const ExternalRecord& T) {
  ConductorTable& C = RUNDATA.cond;
  const bool kept = whole(T[2]) != 1;
  if (kept && !file.anyKept) ++C.NCIRC;
  file.anyKept = file.anyKept || kept;
  const int e = newEntry();
  C.CPHASE[e] = whole(T[3]);
  C.CRAD[e] = T[4];
  C.CRDC[e] = PERKM * T[5];
  C.CMUR[e] = T[6];
  C.CSAG[e] = T[7];
  C.CX[e] = T[8];
  C.CY[e] = T[9];
  C.CSHUNT[e] = 0;
  C.CTRANSP[e] = 0;
  C.CYAVG[e] = T[9] - 2.0 / 3.0 * T[7];
  C.CCIRC[e] = C.NCIRC;
  C.CMAP[e] = kept ? MAPKEPT : MAPELIMINATED;
}

void followCircuits(ExternalFile& file, int circuit) {
  ConductorTable& C = RUNDATA.cond;
  if (circuit == file.circuit + 1) {
    if (file.circuitCount != 3) C.ALL3PH = false;
    ++C.NCIRC;
    file.circuit = circuit;
    file.circuitCount = 0;
  }
  ++file.circuitCount;
}

int bundleCount(const ExternalRecord& T) {
  const int s = whole(T[17]);
  checkSubConductorCount(s);
  if (s >= 1) return s;
  console::line(BUNDLEWARNING);
  console::line("Number of Bundled conductors is set to 1 ");
  return 1;
}

// Adds the offset of the k-th of s sub-conductors.
void placeInBundle(const ExternalRecord& T, int e, int k, int s) {
  ConductorTable& C = RUNDATA.cond;
  if (s < 2) return;
  if (whole(T[18]) != 0) {
    C.CX[e] += T[20 + 2 * (k - 1)];
    C.CY[e] += T[21 + 2 * (k - 1)];
    return;
  }
  const Offset offset = regularOffset(k, s, T[19]);
  C.CX[e] += offset.dx;
  C.CY[e] += offset.dy;
}

void fillConductor(const ExternalRecord& T, int e) {
  ConductorTable& C = RUNDATA.cond;
  const int construction = whole(T[5]);
  C.CTRANSP[e] = whole(T[3]);
  C.CPHASE[e] = whole(T[4]);
  C.CRAD[e] = T[7];
  if (construction == 1) {
    C.CTHICK[e] = T[7] - T[6];
    C.CTUBE[e] = true;
  }
  C.CRDC[e] = PERKM * T[8];
  C.CSHUNT[e] = T[9];
  C.CMUR[e] = T[10];
  C.CX[e] = T[11];
  C.CY[e] = T[12];
  C.CSAG[e] = T[13];
  if (construction == 2) {
    C.CSTRND[e] = true;
    C.CNTOT[e] = T[14];
    C.CNOUT[e] = T[15];
    C.CSTRAD[e] = T[16];
  }
  C.CCIRC[e] = C.NCIRC;
}

void takeConductor(ExternalFile& file, const ExternalRecord& T) {
  ConductorTable& C = RUNDATA.cond;
  followCircuits(file, whole(T[2]));
  const int s = bundleCount(T);
  const int first = C.NCOND + 1;
  for (int k = 1; k <= s; ++k) {
    const int e = newEntry();
    fillConductor(T, e);
    placeInBundle(T, e, k, s);
    C.CYAVG[e] = C.CY[e] - 2.0 / 3.0 * C.CSAG[e];
    C.CMAP[e] = k == 1 ? MAPMAIN : first;
  }
}

} // namespace

void readExternalConductors() {
  static ExternalFile file;
  file.circuit = 1;
  file.circuitCount = 0;
  file.anyKept = false;
  if (!file.source.open(READER.EXTFILE.whole())) cannotOpen();
  ++RUNDATA.cond.NCIRC;
  ExternalRecord T;
  for (int n = 1; n <= MAXEXTRECORDS && nextRecord(file, T); ++n) {
    if (whole(T[1]) == 1) {
      takeConductor(file, T);
    } else {
      takeGroundWire(file, T);
    }
  }
  file.source.close();
}

} // namespace lcp
