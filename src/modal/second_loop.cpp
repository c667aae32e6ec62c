// With unit vectors TI and the eigenvalues gamma_i^2 of Y Z:
//
//   YM = TI^-1 Y TI^-T, ZM = TI^T Z TI, surge impedance Zs_i = sqrt(ZM_ii / YM_ii)
//   Yc = (TI gamma TI^-1)^-1 Y          characteristic admittance of the phases
//   H  = TI exp(-gamma l) TI^-1         propagation matrix of the phases
//
// All square roots are principal. An eigenvalue with negative imaginary part is due to rounding of
// a lossless mode: its conjugate is used, so that every mode decays.
#include "modal/second_loop.h"

#include "base/constants.h"
#include "kernels/hyperbolic.h"
#include "kernels/inversion.h"
#include "kernels/matrix_kernels.h"
#include "modal/modal_transform.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <cmath>

namespace lcp {

namespace {

constexpr double FADED = 1e-10; // modal propagation below which the travel time is meaningless

LineMatrix work, phases, inverse; // intermediate results

void loadStep(int k, int n) {
  FirstLoopStore& S = SOLVEDATA.first;
  const FrequencyStore& A = SOLVEDATA.at;
  for (int i = 1; i <= n; ++i) S.EIG[i] = A.MEIG(k, i);
  A.YSTORE.load(k, S.YMAT, n);
  A.ZSTORE.load(k, S.ZMAT, n);
  if (S.IDEALT) return;
  A.MTI.load(k, S.TI, n);
  COLNORM(S.TI, S.TI, n);
  INVCJD(S.TIINV, S.TI, n);
}

// Converts normalised eigenvalues to squared propagation constants; those of a four-wire cable
// already are.
void scaleEigenvalues(int k, int n) {
  FirstLoopStore& S = SOLVEDATA.first;
  const double w = TWOPI * SOLVEDATA.grid.FREQ[k];
  if (RUNDATA.run.ISCABLE == FOURWIRECABLE) return;
  for (int i = 1; i <= n; ++i) {
    S.EIG[i] *= -w * w * MU0EPS0;
    SOLVEDATA.at.MEIG(k, i) = S.EIG[i];
  }
}

void formModes(int n) {
  FirstLoopStore& S = SOLVEDATA.first;
  SecondLoopStore& T = SOLVEDATA.second;
  for (int i = 1; i <= n; ++i) {
    if (S.EIG[i].imag() < 0.0) S.EIG[i] = std::conj(S.EIG[i]);
    T.GAM[i] = std::sqrt(S.EIG[i]);
    T.ZSURGE[i] = surgeImpedance(T.YM(i, i), T.ZM(i, i));
    T.ZSURGER[i] = T.ZSURGE[i].real();
  }
}

void storeModes(int k, int n) {
  SecondLoopStore& T = SOLVEDATA.second;
  for (int i = 1; i <= n; ++i) {
    const Complex gl = T.GAM[i] * RUNDATA.run.LINELEN;
    T.GAMLEN(k, i) = gl;
    T.ZSURGST(k, i) = T.ZSURGE[i];
    T.HMODE(k, i) = std::exp(-gl);
    T.HMAG(k, i) = std::abs(T.HMODE(k, i));
    T.HARG(k, i) = -gl.imag() * DEGREES;
    T.VELOC(k, i) = SOLVEDATA.grid.WFREQ[k] / T.GAM[i].imag();
    T.ZSARG(k, i) = PHASE2(T.ZSURGE[i].imag(), T.ZSURGE[i].real()) * DEGREES;
  }
}

void storeVectors(int k, int n) {
  const FirstLoopStore& S = SOLVEDATA.first;
  SecondLoopStore& T = SOLVEDATA.second;
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) {
      const Complex t = S.TI(i, j);
      T.TIST(k, i, j) = t;
      T.TIMAG(k, i, j) = std::abs(t);
      T.TIARG(k, i, j) = PHASE2(t.imag(), t.real()) * DEGREES;
      T.TISUM(i, j) += t.real();
    }
  }
}

void storePhaseFunctions(int k, int n) {
  const FirstLoopStore& S = SOLVEDATA.first;
  ModeComplex decay;
  SecondLoopStore& T = SOLVEDATA.second;
  diagonalToPhases(phases, S.TI, T.GAM, S.TIINV, n);
  INVCJD(inverse, phases, n);
  CMATMUL(phases, inverse, S.YMAT, n);
  T.YCST.store(k, phases, n);
  for (int i = 1; i <= n; ++i) decay[i] = T.HMODE(k, i);
  diagonalToPhases(phases, S.TI, decay, S.TIINV, n);
  T.HST.store(k, phases, n);
}

void storeLosses(int k, int n) {
  SecondLoopStore& T = SOLVEDATA.second;
  ModeReals& RLOSS = k == SOLVEDATA.grid.NFREQ - 1 ? T.RLOSS1 : T.RLOSS2;
  for (int i = 1; i <= n; ++i) RLOSS[i] = T.ZM(i, i).real();
}

// The travel time of a mode of a fitted model is that of the highest grid point where the mode has
// not decayed completely.
void storeTravelTimes(int k, int n) {
  SecondLoopStore& T = SOLVEDATA.second;
  const ModelChoice& M = RUNDATA.model;
  const int last = SOLVEDATA.grid.NFREQ;
  const double t = INMILLI * RUNDATA.run.LINELEN / SOLVEDATA.grid.WFREQ[k];
  const bool whole = M.atOneFrequency() || (M.atTwoFrequencies() && k == last);
  const bool fitted = M.fitted() && k < last;
  for (int i = 1; i <= n; ++i) {
    if (whole || (fitted && T.HMAG(k, i) >= FADED)) T.TAUMS[i] = T.GAM[i].imag() * t;
  }
}

} // namespace

void alignVectors() {
  FirstLoopStore& S = SOLVEDATA.first;
  const int n = RUNDATA.line.NC;
  if (S.IDEALT || !RUNDATA.model.needsModes()) return;
  for (int k = 1; k <= SOLVEDATA.grid.NFREQ; ++k) {
    SOLVEDATA.at.MTI.load(k, work, n);
    COLROT(work, S.PIVOT0, n);
    SOLVEDATA.at.MTI.store(k, work, n);
  }
}

void secondLoopStep(int k) {
  FirstLoopStore& S = SOLVEDATA.first;
  const int n = RUNDATA.line.NC;
  loadStep(k, n);
  scaleEigenvalues(k, n);
  formModalMatrices(SOLVEDATA.second.YM, SOLVEDATA.second.ZM, S.YMAT, S.ZMAT, S.TI, S.TIINV, n);
  formModes(n);
  if (RUNDATA.model.atTwoFrequencies()) {
    storeLosses(k, n);
  } else {
    storeModes(k, n);
    storeVectors(k, n);
    storePhaseFunctions(k, n);
  }
  storeTravelTimes(k, n);
}

void formFitWeights() {
  FrequencyGrid& G = SOLVEDATA.grid;
  const FitOptions& F = RUNDATA.fit;
  const double SSFREQ = RUNDATA.line.SSFREQ;
  G.NFUSE = G.NFREQ - (F.CONSTT ? 1 : 0);
  for (int k = 1; k <= G.NFUSE; ++k) {
    if (SSFREQ < G.FREQ[k]) {
      G.WFIT[k] = F.WF3;
    } else {
      G.WFIT[k] = k == G.NFREQ || SSFREQ < G.FREQ[k + 1] ? F.WF2 : F.WF1;
    }
  }
}

} // namespace lcp
