// The poles are those that fit all elements best. Of all numbers of poles tried the best counts
// when none meets the target.
#include "improved/fits/matrix_fits.h"

#include "base/big_store.h"
#include "base/constants.h"
#include "base/finite.h"
#include "fit/dc_pole.h"
#include "fit/dc_values.h"
#include "fit/fit_console.h"
#include "fit/fit_driver.h"
#include "fit/fit_store.h"
#include "fit/matrix_fit.h"
#include "fit/series_fit.h"
#include "fit/vector_fit.h"
#include "improved/fits/between_points.h"
#include "improved/fits/grown_matrix.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace lcp {

namespace {

constexpr double SEENJUMP = 0.2; // of the largest error of H that is allowed: a jump to warn of

// Adds the real pole that takes up the difference to the DC values. False when that lifts the error
// above the one requested.
bool closeAtZero(const MatrixFit& Q, const RealMatrix& DC, double TARGET, MatrixFitResult& fit) {
  const double a = dcPole(slowestOf(Q.P, fit.N));
  const int N = fit.N + 1;
  Q.P[N] = a;
  for (int c = 1; c <= RUNDATA.line.NC; ++c) {
    for (int r = 1; r <= RUNDATA.line.NC; ++r) {
      PoleTable& R = Q.R(r, c);
      R[N] = a * (Q.D(r, c) - DC(r, c) - ratioSum(Q.P, R, fit.N));
    }
  }
  mirrorLower(Q, N);
  const double ERR = wholeError(Q, BETWEEN.YC, N);
  if (!(ERR <= std::max(TARGET, fit.ERR))) return false;
  fit = {N, ERR};
  return true;
}

void warnOfSamples(const PhaseSampling& found, double target) {
  if (found.lost > 0) {
    warnInLine(fmt::format("Modes are lost at {} of {} Frequencies: turn Improved Modes on",
                           found.lost, SOLVEDATA.grid.NFUSE));
  }
  if (found.moved > SEENJUMP * target) {
    warnInLine(
        fmt::format("Z jumps, as at {:.6g} Hz by {:.2g} %, which can move H by {:.2g} %: the "
                    "Fit has no Jumps between its Points",
                    found.jumps.f, INPERCENT * found.jumps.largest, INPERCENT * found.moved));
  }
}

MatrixFit admittance(const RealMatrix* DC) {
  return {SOLVEDATA.second.YCST,
          0,
          FITMODEL.YPOLE,
          FITMODEL.YRES,
          FITMODEL.YD,
          nullptr,
          FITTED.YC,
          DC,
          nullptr};
}

// Where a pole of its own spoils the finished fit, the DC values become conditions of the fit; the
// error of one that spoils it as well, and is left out.
double correctAdmittance(const AdmittanceWish& wish, const RealMatrix& YDC, MatrixFitResult& fit) {
  const int limit = std::min(wish.limit, NPMAX);
  if (closeAtZero(admittance(nullptr), YDC, wish.target, fit)) return 0.0;
  const double allowed = std::max(wish.target, fit.ERR);
  fit = GROWMATRIX(admittance(&YDC), BETWEEN.YC, limit, wish.target);
  if (fit.ERR <= allowed) return 0.0;
  const double refused = fit.ERR;
  fit = GROWMATRIX(admittance(nullptr), BETWEEN.YC, limit, wish.target);
  return refused;
}

void settleAdmittance(const AdmittanceWish& wish) {
  static RealMatrix YDC, HDC;
  if (wish.dcType >= DCCONSTRAINED) DCVALUES(YDC, HDC);
  MatrixFitResult fit = GROWMATRIX(admittance(wish.dcType == DCCONSTRAINED ? &YDC : nullptr),
                                   BETWEEN.YC, std::min(wish.limit, NPMAX), wish.target);
  if (!std::isfinite(fit.ERR)) {
    refuseFit("The Fit of the Characteristic Admittance gives no Finite Numbers!");
  }
  const double refused = wish.dcType == DCEXTRAPOLE ? correctAdmittance(wish, YDC, fit) : 0.0;
  FITMODEL.NPY = fit.N;
  reportAdmittance(wish, fit.ERR, fit.N);
  if (refused > 0) warnOfRefusedCorrection("Yc", refused);
}

} // namespace

void fitAdmittanceImproved() {
  beginPhaseFit();
  const PhaseSampling found = samplePhasesBetween();
  settleAdmittance(admittanceWish());
  warnOfSamples(found, RUNDATA.fit.ERRA * PERCENT);
  endAdmittanceFit();
}

void fitSeriesImproved() {
  static ColumnInts JPVT;
  SeriesModel& M = SERIESMODEL;
  const int limit = std::min(RUNDATA.fit.MAXPZ, NPMAX);
  const double TARGET = RUNDATA.fit.ERRZ * PERCENT;
  printSeriesHeading();
  prepareSeriesFit();
  sampleSeriesBetween();
  JPVT.fill(0);
  const MatrixFitResult fit =
      GROWMATRIX({SOLVEDATA.at.ZSTORE, 0, M.ZFP, M.ZFR, M.ZFD, &M.ZFE, M.ZFIT, nullptr, &JPVT},
                 BETWEEN.Z, limit, TARGET);
  M.NPZ = fit.N;
  reportSeries(limit, TARGET, fit.ERR, fit.N);
  printSeriesEnd();
}

} // namespace lcp
