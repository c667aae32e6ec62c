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
#include "improved/fits/relaxed_fit.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace lcp {

namespace {

constexpr int PASSES = 4;        // of relaxed vector fitting
constexpr int STEPS = 15;        // of the poles
constexpr double SEENJUMP = 0.2; // of the largest error of H that is allowed: a jump to warn of

PoleTargets& TARGETS = bigStore<PoleTargets>();
PoleSet& SET = bigStore<PoleSet>();

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

// What the poles are found for: the elements that count.
void takeTargets(const MatrixFit& Q) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  const int n = RUNDATA.line.NC;
  int element = 0;
  beginTargets(TARGETS, G.NFUSE, G.WFREQ, G.WFIT, n * (n + 1) / 2);
  for (int c = 1; c <= n; ++c) {
    for (int r = c; r <= n; ++r) {
      const double atZero = Q.DC == nullptr ? 0.0 : (*Q.DC)(r, c);
      addTarget(TARGETS, ++element, Q.F.curve(r, c).steps, atZero);
    }
  }
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

// N poles for all elements together, from poles spread over the logarithm.
void findPoles(const MatrixFit& Q, int N, bool complexStart) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  const PoleFrame frame{true, Q.E != nullptr, Q.DC != nullptr, false};
  SET.groups = 1;
  SET.NH[1] = N;
  SET.TAU[1] = 0;
  if (complexStart) {
    spreadPoles(SET.HPOLE[1], N, G.WFREQ[1], G.WFREQ[G.NFUSE]);
  } else {
    startingPoles(SET.HPOLE[1], N, G.WFREQ[1], G.WFREQ[G.NFUSE]);
  }
  for (int pass = 1; pass <= PASSES; ++pass) RELOCATERELAXED(TARGETS, frame, 0, N, SET.HPOLE[1]);
  MOVEPOLES(TARGETS, frame, STEPS, SET);
  std::copy_n(SET.HPOLE[1].data(), N, Q.P.data());
}

// From complex starting poles, and from real ones where those do not lead to the target.
MatrixFitResult growMatrix(const MatrixFit& Q, const Samples& between, int limit, double TARGET) {
  static BestFit best;
  takeTargets(Q);
  best.fit = {};
  for (int N = 1; best.fit.N == 0 || (best.fit.ERR > TARGET && N <= limit); ++N) {
    for (const bool complexStart : {true, false}) {
      findPoles(Q, N, complexStart);
      tryPoles(Q, between, N, best);
      if (best.fit.ERR <= TARGET) break;
    }
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
