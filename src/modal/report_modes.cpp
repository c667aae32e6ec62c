#include "modal/report_modes.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/solve_error.h"
#include "kernels/inversion.h"
#include "kernels/lapack.h"
#include "kernels/matrix_kernels.h"
#include "modal/modal_transform.h"
#include "store/rundata.h"

#include <cmath>

namespace lcp {

namespace {

constexpr double LARGETIME = 1000.0; // ms
constexpr double ROUNDING = 1e-12;   // relative imaginary part of the eigenvalue of a lossless mode

// Keeps a lossless mode travelling forward: the square of its propagation constant is real and
// negative, and rounding of its imaginary part must not select the root.
Complex withoutRounding(Complex square) {
  const bool lossless = std::fabs(square.imag()) <= ROUNDING * std::abs(square);
  return lossless && std::signbit(square.imag()) ? std::conj(square) : square;
}

[[noreturn]] void refuseVelocity(double v, const char* why) {
  console::openStars();
  console::print("The velocity ({} ) is {} ", v, why);
  stopInStars();
}

void checkMode(double tau) {
  const double v = modeVelocity(tau);
  if (!std::isfinite(v)) refuseVelocity(v, "not finite");
  if (v > LIGHTSPEED) {
    console::print("{}: The modal velocity ({}", console::WARNINGMARK, v);
    console::line("is greater than speed of light (~3e8 m/s)");
  }
  if (v < 0.0) refuseVelocity(v, "negative");
  if (tau > LARGETIME) {
    console::print("{}: The travel time ({} ms)", console::WARNINGMARK, tau);
    console::line(" is very large");
  }
}

} // namespace

double modeVelocity(double tau) { return RUNDATA.run.LINELEN / (tau * MILLI); }

void formModeTimes(CConstView YM, CConstView ZM, ModeReals& TAU, ModeComplex& Z0) {
  static LineMatrix product;
  const int n = RUNDATA.line.NC;
  const double w = TWOPI * RUNDATA.display.DISPFREQ;
  CMATMUL(product, YM, ZM, n);
  for (int i = 1; i <= n; ++i) {
    const Complex g = std::sqrt(withoutRounding(product(i, i)));
    TAU[i] = g.imag() / MILLI * RUNDATA.run.LINELEN / w;
    Z0[i] = surgeImpedance(YM(i, i), ZM(i, i));
  }
  for (int i = 1; i <= n; ++i) checkMode(TAU[i]);
}

void formReportModes() {
  static LineMatrix copy;
  FirstLoopStore& S = SOLVEDATA.first;
  const int n = RUNDATA.line.NC;
  copyCorner(copy, S.PMAT, n);
  ZGEEV(copy, S.EIG, S.TI, n, BackSubstitution::ByColumns);
  finishReportModes();
}

void finishReportModes() {
  FirstLoopStore& S = SOLVEDATA.first;
  SecondLoopStore& T = SOLVEDATA.second;
  const int n = RUNDATA.line.NC;
  COLNORM(S.TI, S.TI, n);
  INVCJD(S.TIINV, S.TI, n);
  formModalMatrices(T.YM, T.ZM, S.YMAT, S.ZMAT, S.TI, S.TIINV, n);
  formModeTimes(T.YM, T.ZM, T.TAUMS, T.ZSURGE);
}

} // namespace lcp
