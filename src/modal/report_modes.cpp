#include "modal/report_modes.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/stop.h"
#include "kernels/inversion.h"
#include "kernels/lapack_eigen.h"
#include "kernels/matrix_kernels.h"
#include "modal/modal_transform.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <cmath>

namespace lcp {

namespace {

constexpr double LARGETIME = 1000.0; // ms
constexpr double MILLI = 0.001;      // ms to s
constexpr double EQUAL = 1e-9;       // relative; two modes that differ by less are one
constexpr double ROUNDING = 1e-12;   // relative imaginary part of a lossless mode's eigenvalue
constexpr double ISOTROPIC = 1e-3;   // x^T x of a unit vector that others cannot be turned against

// Vectors of equal modes come from LAPACK at any angle. At right angles, x_a^T x_b = 0, the modal
// matrices of a square are diagonal, and their quotients surge impedances.
void turnEqualModes(CView TI, const ModeComplex& EIG, int n) {
  for (int b = 2; b <= n; ++b) {
    for (int a = 1; a < b; ++a) {
      if (std::abs(EIG[a] - EIG[b]) > EQUAL * std::abs(EIG[a])) continue;
      Complex ab, aa;
      for (int i = 1; i <= n; ++i) {
        ab += TI(i, a) * TI(i, b);
        aa += TI(i, a) * TI(i, a);
      }
      if (std::abs(aa) < ISOTROPIC) continue;
      for (int i = 1; i <= n; ++i) TI(i, b) -= ab / aa * TI(i, a);
    }
  }
}

// A lossless mode travels forward: of the square of its propagation constant, real and negative,
// rounding must not decide the side.
Complex withoutRounding(Complex square) {
  const bool lossless = std::fabs(square.imag()) <= ROUNDING * std::abs(square);
  return lossless && std::signbit(square.imag()) ? std::conj(square) : square;
}

void checkMode(int i) {
  const double v = modeVelocity(i);
  const double tau = SOLVEDATA.second.TAUMS[i];
  if (v > LIGHTSPEED) {
    console::print("*WARNING*: The modal velocity ({}", v);
    console::line("is greater than speed of light (~3e8 m/s)");
  }
  if (v < 0.0) {
    console::openStars();
    console::print("The velocity ({} ) is negative ", v);
    console::closeStars();
    console::line("QUENT Ending!");
    stop(1);
  }
  if (v >= 0.0 && tau > LARGETIME) {
    console::print("*WARNING*: The travel time ({} ms)", tau);
    console::line(" is very large");
  }
}

} // namespace

double modeVelocity(int i) { return RUNDATA.run.LINELEN / (SOLVEDATA.second.TAUMS[i] * MILLI); }

void formReportModes() {
  static LineMatrix copy, product;
  FirstLoopStore& S = SOLVEDATA.first;
  SecondLoopStore& T = SOLVEDATA.second;
  const int n = RUNDATA.line.NC;
  copyCorner(copy, S.PMAT, n);
  ZGEEV(copy, S.EIG, S.TI, n);
  if (RUNDATA.run.ISCABLE == FOURWIRECABLE) turnEqualModes(S.TI, S.EIG, n);
  COLNORM(S.TI, S.TI, n);
  INVCJD(S.TIINV, S.TI, n);
  formModalMatrices(T.YM, T.ZM, S.YMAT, S.ZMAT, S.TI, S.TIINV, n);
  CMATMUL(product, T.YM, T.ZM, n);
  const double w = TWOPI * RUNDATA.display.DISPFREQ;
  for (int i = 1; i <= n; ++i) {
    const Complex g = std::sqrt(withoutRounding(product(i, i)));
    T.TAUMS[i] = g.imag() / MILLI * RUNDATA.run.LINELEN / w;
    T.ZSURGE[i] = std::sqrt(T.ZM(i, i) / T.YM(i, i));
  }
  for (int i = 1; i <= n; ++i) checkMode(i);
}

} // namespace lcp
