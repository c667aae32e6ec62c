#include "input/bundles.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/number_forms.h"
#include "input/reader_store.h"
#include "input/trace_store.h"
#include "store/rundata.h"

#include <array>
#include <cmath>
#include <fmt/format.h>

namespace lcp {

namespace {

// Angle of the first sub-conductor in bundles of 2, 3, ... 15.
constexpr std::array<double, MAXSUB - 1> STARTANGLES = {
    0,      PI / 2,  PI / 4, 3 * PI / 10, 0,      PI / 14, PI / 8,
    PI / 6, PI / 10, PI / 2, 0,           PI / 2, PI / 14, PI / 2};

// Reads x and y of the current line into an entry.
void readPosition(int entry) {
  ConductorTable& C = RUNDATA.cond;
  std::array<double, 2> xy{};
  const bool open = entryOpen(entry);
  if (open) xy = {C.CX[entry], C.CY[entry]};
  const std::string_view line = READER.LINE;
  if (line.size() > POSITIONCOLUMN && !readReals(line.substr(POSITIONCOLUMN), xy))
    readError(NUMBERDUE);
  if (!open) return;
  C.CX[entry] = xy[0];
  C.CY[entry] = xy[1];
}

} // namespace

Offset regularOffset(int k, int s, double spacing) {
  const double R = spacing / (2.0 * std::sin(PI / s));
  const double a = (k - 1) * TWOPI / s + STARTANGLES[static_cast<std::size_t>(s - 2)];
  return {R * std::cos(a), R * std::sin(a)};
}

void checkSubConductorCount(int s) {
  if (s <= MAXSUB) return;
  console::print("Circuit {} has {} Sub-Conductors,", integerField(RUNDATA.cond.NCIRC, 3),
                 integerField(s, 3));
  console::print("Maximum of {} Allowed!", MAXSUB);
  readError();
}

void openBundle(int s) {
  ConductorTable& C = RUNDATA.cond;
  if (s < 0) readError("its value must not be below 0");
  checkSubConductorCount(s);
  const int n = READER.CURN;
  const int f = firstEntry();
  checkConductorCount(f - 1 + n * s);
  for (int j = f; j <= f + n - 1; ++j) {
    for (int m = 1; m <= s - 1; ++m) {
      C.CX[j + m * n] = C.CX[j];
      C.CY[j + m * n] = C.CY[j];
      C.CMAP[j + m * n] = j;
    }
  }
}

void moveSubConductors(int k, Offset offset) {
  ConductorTable& C = RUNDATA.cond;
  if (k > READER.CURSUB) return; // more offset lines than sub-conductors
  const int start = firstEntry() + (k - 1) * READER.CURN;
  for (int e = start; e <= start + READER.CURN - 1; ++e) {
    C.CX[e] += offset.dx;
    C.CY[e] += offset.dy;
  }
}

void spreadBundle(double spacing) {
  const int s = READER.CURSUB;
  if (s < 2) return;
  for (int k = 1; k <= s; ++k) moveSubConductors(k, regularOffset(k, s, spacing));
}

void readPositions() {
  readPosition(firstEntry());
  for (int c = 2; c <= READER.CURN; ++c) {
    if (!nextLine()) return;
    if (!READER.LINE.starts_with('P'))
      readError(fmt::format("a list of {} positions must go on here", READER.CURN));
    if (tracing()) tracePosition(POSITIONROW, openGroup());
    readPosition(firstEntry() + c - 1);
  }
}

} // namespace lcp
