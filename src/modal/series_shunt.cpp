#include "modal/series_shunt.h"

#include "base/console.h"
#include "base/solve_error.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>

namespace lcp {

namespace {

constexpr int SHUNTSTEP = 10; // frequency step of G and C, or the last row of a shorter table

} // namespace

void formSeriesShunt(SeriesShunt& shunt) {
  const int n = RUNDATA.line.NC;
  const int k = std::min(SHUNTSTEP, SOLVEDATA.grid.NFUSE);
  double sum = 0.0; // infinite or NaN if an element is
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) {
      const Complex y = SOLVEDATA.at.YSTORE(k, i, j);
      shunt.G(i, j) = y.real();
      shunt.C(i, j) = y.imag() / SOLVEDATA.grid.WFREQ[k];
      sum += std::fabs(shunt.G(i, j)) + std::fabs(shunt.C(i, j));
    }
  }
  if (std::isfinite(sum)) return;
  console::openStars();
  console::print("The Capacitance at Frequency Step {} is not a Finite Number!", k);
  stopInStars();
}

} // namespace lcp
