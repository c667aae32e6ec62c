#include "modal/pi_model.h"

#include "base/constants.h"
#include "modal/long_line.h"
#include "store/rundata.h"

#include <cmath>

namespace lcp {

namespace {

constexpr double MICRO = 1e6; // F to microfarad

double angularFrequency() { return TWOPI * RUNDATA.line.SSFREQ; }

} // namespace

void correctPi(LineMatrix& YLC, LineMatrix& ZLC) {
  const FirstLoopStore& S = SOLVEDATA.first;
  bool shown = false;
  LONGCOR(S.YMAT, S.ZMAT, RUNDATA.run.LINELEN, YLC, ZLC, RUNDATA.line.NC, shown);
}

void formShuntData(LineMatrix& PIW, const LineMatrix& YLC) {
  const int n = RUNDATA.line.NC;
  const double h = RUNDATA.run.LINELEN / 2.0;
  for (int i = 1; i <= n; ++i) {
    PIW(i, i) = YLC(i, i) * h;
    for (int j = 1; j <= n; ++j) {
      if (j == i) continue;
      PIW(i, j) = YLC(i, j) * h;
      PIW(i, i) += PIW(i, j);
    }
  }
}

ShuntBranch shuntBranch(Complex y) {
  return {y.real(), std::fabs(y.imag() * MICRO / angularFrequency())};
}

void formSeriesData(LineMatrix& PIW, const LineMatrix& ZLC) {
  const int n = RUNDATA.line.NC;
  const double l = RUNDATA.run.LINELEN;
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) {
      PIW(i, j) = {ZLC(i, j).real() * l, ZLC(i, j).imag() * l / angularFrequency()};
    }
  }
}

} // namespace lcp
