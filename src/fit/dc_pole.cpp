#include "fit/dc_pole.h"

#include "base/constants.h"
#include "fit/fit_console.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <limits>

namespace lcp {

namespace {

constexpr double BELOW = 0.1;       // relative to the lowest frequency of the fit
constexpr double APART = 0.3162278; // relative to a slow pole of the fit: half a decade

} // namespace

double slowestOf(const PoleTable& P, int N) {
  double slowest = std::numeric_limits<double>::infinity();
  for (int m = 1; m <= N; ++m) slowest = std::min(slowest, std::abs(P[m]));
  return slowest;
}

double dcPole(double slowest) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  const double lowest = std::min(G.WFREQ[1], G.WFREQ[G.NFUSE]);
  return -std::min(BELOW * lowest, APART * slowest);
}

void warnOfRefusedCorrection(const char* function, double err) {
  warnInLine(fmt::format("{} stays without its DC Correction, which leads to an Error of {:.4g} %",
                         function, INPERCENT * err));
}

} // namespace lcp
