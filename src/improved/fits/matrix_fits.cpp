// The poles are those of the trace, relocated until its error stops decreasing. If no number of
// poles meets the target, the best one tried is used.
#include "improved/fits/matrix_fits.h"

#include "base/constants.h"
#include "base/finite.h"
#include "fit/dc_pole.h"
#include "fit/dc_values.h"
#include "fit/fit_console.h"
#include "fit/fit_driver.h"
#include "fit/fit_store.h"
#include "fit/matrix_fit.h"
#include "fit/series_fit.h"
#include "improved/fits/between_points.h"
#include "improved/fits/settled_fit.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace lcp {

namespace {

constexpr int FEWPASSES = 3;
constexpr double SEENJUMP = 0.2; // a jump to warn of, relative to the largest allowed error of H

using Samples = CurveMatrix<Complex, MAXFREQ>;

double peakOf(const Samples& F, int NS) {
  LargestModulus peak;
  for (int j = 1; j <= RUNDATA.line.NC; ++j) {
    for (int i = 1; i <= RUNDATA.line.NC; ++i) {
      for (int k = 1; k <= NS; ++k) peak.take(F(k, i, j));
    }
  }
  return peak;
}

// Largest deviation between the points, relative to the largest magnitude at the points.
double errorBetween(const MatrixFit& Q, const Samples& F, int N) {
  static ComplexCurve model;
  static PoleCurves u;
  poleCurves(Q.P, N, BETWEEN.WFREQ, BETWEEN.NB, u);
  LargestModulus most;
  for (int j = 1; j <= RUNDATA.line.NC; ++j) {
    for (int i = 1; i <= RUNDATA.line.NC; ++i) {
      const double E = Q.E == nullptr ? 0.0 : (*Q.E)(i, j);
      partialFractionCurve(u, Q.R(i, j), N, Q.D(i, j), E, BETWEEN.WFREQ, BETWEEN.NB, model);
      for (int k = 1; k <= BETWEEN.NB; ++k) most.take(model[k] - F(k, i, j));
    }
  }
  const double peak = peakOf(Q.F, SOLVEDATA.grid.NFUSE);
  return peak > 0 ? most / peak : most;
}

double wholeError(const MatrixFit& Q, const Samples& between, int N) {
  return larger(modelError(Q, N), errorBetween(Q, between, N));
}

// Copies the elements below the diagonal to those above, as in the model file.
void mirrorLower(const MatrixFit& Q, int N) {
  for (int c = 1; c <= RUNDATA.line.NC; ++c) {
    for (int r = c + 1; r <= RUNDATA.line.NC; ++r) {
      std::copy_n(Q.R(r, c).data(), N, Q.R(c, r).data());
      Q.D(c, r) = Q.D(r, c);
    }
  }
}

// Fits the residues over N given poles and returns the error.
double fitElements(const MatrixFit& Q, const Samples& between, int N) {
  fitResidues(Q, N);
  if (Q.E == nullptr) mirrorLower(Q, N);
  return wholeError(Q, between, N);
}

FitSamples traceSamples(const MatrixFit& Q, const ComplexCurve& trace) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  const int ASYMP = Q.E == nullptr ? WITHCONSTANT : WITHPROPORTION;
  return {G.NFUSE, 1, G.WFREQ, &trace, G.WFIT, FLIPUNSTABLE, ASYMP};
}

struct BestFit {
  MatrixFitResult fit{};
  PoleTable poles;
};

// Fits the elements over the current N poles and keeps them if they are better.
void tryPoles(const MatrixFit& Q, const Samples& between, int N, BestFit& best) {
  const double ERR = fitElements(Q, between, N);
  if (best.fit.N != 0 && !(ERR < best.fit.ERR)) return;
  best.fit = {N, ERR};
  std::copy_n(Q.P.data(), N, best.poles.data());
}

// The poles that fit the trace best need not fit the elements best, especially with prescribed
// values at zero frequency, so poles after only a few passes are tried too.
MatrixFitResult growMatrix(const MatrixFit& Q, const Samples& between, int limit, double TARGET) {
  static SettledFit fit;
  static BestFit best;
  const FrequencyGrid& G = SOLVEDATA.grid;
  const FitSamples samples = traceSamples(Q, formTrace(Q));
  best.fit = {};
  for (int N = 1; best.fit.N == 0 || (best.fit.ERR > TARGET && N <= limit); ++N) {
    SETTLE(samples, {0, G.WFREQ, nullptr}, N, 0.0, Q.P, fit);
    tryPoles(Q, between, N, best);
    if (best.fit.ERR <= TARGET) break;
    startingPoles(Q.P, N, G.WFREQ[1], G.WFREQ[G.NFUSE]);
    RELOCATE(FEWPASSES, samples, N, Q.P);
    tryPoles(Q, between, N, best);
  }
  std::copy_n(best.poles.data(), best.fit.N, Q.P.data());
  best.fit.ERR = fitElements(Q, between, best.fit.N);
  return best.fit;
}

// Adds the real pole that takes up the difference to the DC values and returns 0. If this raises
// the error above the target, the model is left unchanged and that error is returned.
double closeAtZero(const MatrixFit& Q, const RealMatrix& DC, double TARGET, MatrixFitResult& fit) {
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
  if (ERR <= std::max(TARGET, fit.ERR)) {
    fit = {N, ERR};
    return 0.0;
  }
  fit.ERR = wholeError(Q, BETWEEN.YC, fit.N);
  return ERR;
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

void settleAdmittance(const AdmittanceWish& wish) {
  static RealMatrix YDC, HDC;
  const int limit = std::min(wish.limit, NPMAX);
  const bool constrained = wish.dcType == DCCONSTRAINED;
  if (wish.dcType >= DCCONSTRAINED) DCVALUES(YDC, HDC);
  const MatrixFit Q{SOLVEDATA.second.YCST,
                    0,
                    FITMODEL.YPOLE,
                    FITMODEL.YRES,
                    FITMODEL.YD,
                    nullptr,
                    FITTED.YC,
                    constrained ? &YDC : nullptr,
                    nullptr};
  MatrixFitResult fit = growMatrix(Q, BETWEEN.YC, limit, wish.target);
  if (!std::isfinite(fit.ERR)) {
    refuseFit("The Fit of the Characteristic Admittance gives no Finite Numbers!");
  }
  const double refused = wish.dcType == DCEXTRAPOLE ? closeAtZero(Q, YDC, wish.target, fit) : 0.0;
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
      growMatrix({SOLVEDATA.at.ZSTORE, 0, M.ZFP, M.ZFR, M.ZFD, &M.ZFE, M.ZFIT, nullptr, &JPVT},
                 BETWEEN.Z, limit, TARGET);
  M.NPZ = fit.N;
  reportSeries(limit, TARGET, fit.ERR, fit.N);
  printSeriesEnd();
}

} // namespace lcp
