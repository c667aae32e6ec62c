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
  COLNORM(S.TI, S.TI, n);
  INVCJD(S.TIINV, S.TI, n);
  formModalMatrices(T.YM, T.ZM, S.YMAT, S.ZMAT, S.TI, S.TIINV, n);
  CMATMUL(product, T.YM, T.ZM, n);
  const double w = TWOPI * RUNDATA.display.DISPFREQ;
  for (int i = 1; i <= n; ++i) {
    const Complex g = std::sqrt(product(i, i));
    T.TAUMS[i] = g.imag() / MILLI * RUNDATA.run.LINELEN / w;
    T.ZSURGE[i] = std::sqrt(T.ZM(i, i) / T.YM(i, i));
  }
  for (int i = 1; i <= n; ++i) checkMode(i);
}

} // namespace lcp
