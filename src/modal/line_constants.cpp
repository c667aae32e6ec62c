#include "modal/line_constants.h"

#include "base/console.h"
#include "base/solve_error.h"
#include "cable/cable_zy.h"
#include "cable/four_wire.h"
#include "cable/numbering.h"
#include "modal/unsound_constants.h"
#include "modal/yz_interp.h"
#include "overhead/bundle_reduction.h"
#include "overhead/odd_entries.h"
#include "overhead/overhead_zy.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <algorithm>
#include <cmath>

namespace lcp {

namespace {

bool finite(const LineMatrix& A, int n) {
  double sum = 0; // infinite or NaN if an element is
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) sum += std::fabs(A(i, j).real()) + std::fabs(A(i, j).imag());
  }
  return sum < BEYOND;
}

// With HALO Options the conductor table is not ordered, so its first entries may not be those NC
// counts.
void checkOrder() {
  const RunData& R = RUNDATA;
  if (!R.model.MODHALO || R.run.DATAFMT != ROUTECONSTANTS) return;
  const int leading = leadingKept(R.cond.NCOND);
  if (R.run.ISCABLE != OVERHEADLINE || leading >= R.line.NC) return;
  console::openStars();
  console::line("HALO Options keep the Conductors in the Order of their");
  console::print("Sections. The first {} Must be Phase Conductors or Kept", R.line.NC);
  console::print("Ground Wires, as the Number of Conductors says, not {}!", leading);
  stopInStars();
}

// Names a bad input value if there is one, since that says more than the element it spoils.
void noteReason(int n) {
  if (!RUNDATA.run.fromTable() && noteOddEntry()) return;
  noteUnsoundElement(SOLVEDATA.first.YMAT, SOLVEDATA.first.ZMAT, n);
}

void checkFinite(double f) {
  const FirstLoopStore& S = SOLVEDATA.first;
  const int n = RUNDATA.line.NC;
  if (finite(S.YMAT, n) && finite(S.ZMAT, n) && finite(S.PMAT, n)) return;
  checkOrder();
  noteReason(n);
  console::openStars();
  console::print("The Line Constants at {:.4g} Hz are not Finite Numbers", f);
  console::line("Verify Transmission line data");
  stopInStars();
}

void finishConstants(double f) {
  SOLVEDATA.first.ISTATUS = false;
  checkFinite(f);
}

} // namespace

int mostConductors() {
  const RunControl& R = RUNDATA.run;
  if (RUNDATA.run.fromTable() || R.ISCABLE == OVERHEADLINE) return RUNDATA.line.NC;
  if (R.ISCABLE == FOURWIRECABLE) return FOURWIRES;
  static CableNumbering N;
  numberConductors(N);
  return std::min(N.total, LDMAT);
}

void constantsAt(double f) {
  FirstLoopStore& S = SOLVEDATA.first;
  if (RUNDATA.run.fromTable()) {
    tableConstants(f, S.YMAT, S.ZMAT, S.PMAT);
    finishConstants(f);
    return;
  }
  switch (RUNDATA.run.ISCABLE) {
  case OVERHEADLINE: OHZY(f, S.YMAT, S.ZMAT, S.PMAT); break;
  case CABLESYSTEM: CBZY(f, S.YMAT, S.ZMAT, S.PMAT); break;
  default: FWZY(f, S.YMAT, S.ZMAT, S.PMAT); break;
  }
  finishConstants(f);
}

void constantsAtStep(int k, double f, Place place) {
  FirstLoopStore& S = SOLVEDATA.first;
  if (!RUNDATA.run.fromTable()) {
    constantsAt(f);
    return;
  }
  YZINTERP(f, S.YMAT, S.ZMAT, S.PMAT, place == Place::OnTheWay ? 1 : 0, k);
  finishConstants(f);
}

} // namespace lcp
