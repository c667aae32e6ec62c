// The pivots of one pole count go into the next, and those of one length into the next length: a
// column that was in it keeps its place there, and one that is new stands behind them.
#include "fit/series_fit.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/record.h"
#include "fit/fit_console.h"
#include "fit/matrix_fit.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>

namespace lcp {

namespace {

constexpr int PASSES = 10; // of the vector fit, for each number of poles
constexpr int RULELENGTH = 53;

ColumnInts JPVT; // column pivots, 0 at the start of the run only

// Poles start at the logarithms of the frequencies.
void checkFrequencies() {
  const FrequencyGrid& G = SOLVEDATA.grid;
  if (std::all_of(G.WFREQ.steps, G.WFREQ.steps + G.NFUSE, [](double w) { return w > 0.0; })) return;
  refuseFit("All Frequencies of the Series Impedance Fit Must be > 0!");
}

void printResult(int NMAX, double TARGET, double err, int N) {
  console::line(" Relative Fitting Error          Number of Poles");
  console::line(" ----------------------          ---------------");
  Record wish(" Maximum: ");
  wish.fixed(INPERCENT * TARGET, 9, 4).text(" %").blanks(11).text(" Maximum: ").integer(NMAX, 3);
  console::line(wish.view());
  const int shift = INPERCENT * err < SMALLERROR ? 3 : 0;
  Record actual("  Actual: ");
  addError(actual.blanks(shift), INPERCENT * err).blanks(11 - shift);
  console::line(actual.text("  Actual: ").integer(N, 3).view());
}

void rule(char sign) { fitRule(sign, RULELENGTH); }

} // namespace

double SERIESFIT(int NMAX, double TARGET) {
  SeriesModel& M = SERIESMODEL;
  const int limit = std::min(NMAX, NPMAX);
  checkFrequencies();
  M.ZFR.map(RUNDATA.line.NC);
  M.ZFIT.map(RUNDATA.line.NC);
  const auto [N, err] =
      FITMATRIX({SOLVEDATA.at.ZSTORE, PASSES, M.ZFP, M.ZFR, M.ZFD, &M.ZFE, M.ZFIT, nullptr, &JPVT},
                limit, TARGET);
  if (!std::isfinite(err)) refuseFit("The Fit of the Series Impedance gives no Finite Numbers!");
  M.NPZ = N;
  printResult(limit, TARGET, err, N);
  if (INPERCENT * err > INPERCENT * TARGET) warnOfError(" ");
  return err;
}

void fitSeriesImpedance() {
  console::line();
  console::line();
  rule('*');
  console::line(" CURVE FITTING OUTPUT");
  rule('*');
  console::line();
  console::line(" Fitting Series Impedance Z:");
  rule('=');
  SERIESFIT(RUNDATA.fit.MAXPZ, RUNDATA.fit.ERRZ * PERCENT);
  rule('=');
  console::line();
}

} // namespace lcp
