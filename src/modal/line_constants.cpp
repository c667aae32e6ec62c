#include "modal/line_constants.h"

#include "base/console.h"
#include "base/number_forms.h"
#include "base/stop.h"
#include "modal/yz_interp.h"
#include "overhead/overhead_zy.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <cmath>

namespace lcp {

namespace {

bool finite(const LineMatrix& A, int n) {
  double sum = 0; // one infinity or one NaN shows in it
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) sum += std::fabs(A(i, j).real()) + std::fabs(A(i, j).imag());
  }
  return std::isfinite(sum);
}

void checkFinite(double f) {
  const FirstLoopStore& S = SOLVEDATA.first;
  const int n = RUNDATA.line.NC;
  if (finite(S.YMAT, n) && finite(S.ZMAT, n) && finite(S.PMAT, n)) return;
  console::openStars();
  console::print("The Line Constants at {} Hz are not Finite Numbers", pointedField(f, 11, 4));
  console::line("Verify Transmission line data");
  console::closeStars();
  console::line("QUENT Ending!");
  stop(1);
}

bool fromTable() { return RUNDATA.run.DATAFMT == ROUTEMULTIPLE; }

void finishConstants(double f) {
  SOLVEDATA.first.ISTATUS = false;
  checkFinite(f);
}

} // namespace

void constantsAt(double f) {
  FirstLoopStore& S = SOLVEDATA.first;
  if (fromTable()) {
    S.length = RUNDATA.run.LINELEN;
    tableConstants(f, S.YMAT, S.ZMAT, S.PMAT);
    finishConstants(f);
    return;
  }
  switch (RUNDATA.run.ISCABLE) {
  case OVERHEADLINE: OHZY(f, S.length, S.YMAT, S.ZMAT, S.PMAT); break;
  case CABLESYSTEM: unavailable("Cable Constants");
  default: unavailable("Four-Wire Cable Constants");
  }
  finishConstants(f);
}

void constantsAtStep(int k, double f, Place place) {
  FirstLoopStore& S = SOLVEDATA.first;
  if (!fromTable()) {
    constantsAt(f);
    return;
  }
  S.length = RUNDATA.run.LINELEN;
  YZINTERP(f, S.YMAT, S.ZMAT, S.PMAT, place == Place::OnTheWay ? 1 : 0, k);
  finishConstants(f);
}

void unavailable(const char* what) {
  console::openStars();
  console::print("{}: not available in this version.", what);
  console::closeStars();
  console::line("QUENT Ending!");
  stop(1);
}

} // namespace lcp
