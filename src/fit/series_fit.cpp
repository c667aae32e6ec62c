// The pivots of one pole count are used for the next, and those of one line length for the next:
// columns that were chosen before come first, new ones follow.
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

ColumnInts JPVT; // column pivots, 0 only at the start of the run

// Poles start at the logarithms of the frequencies, which must be positive.
void checkFrequencies() {
  const FrequencyGrid& G = SOLVEDATA.grid;
  if (std::all_of(G.WFREQ.steps, G.WFREQ.steps + G.NFUSE, [](double w) { return w > 0.0; })) return;
  refuseFit("All Frequencies of the Series Impedance Fit Must be > 0!");
}

void rule(char sign) { fitRule(sign, RULELENGTH); }

} // namespace

void prepareSeriesFit() {
  checkFrequencies();
  SERIESMODEL.ZFR.map(RUNDATA.line.NC);
  SERIESMODEL.ZFIT.map(RUNDATA.line.NC);
}

void reportSeries(int NMAX, double TARGET, double err, int N) {
  if (!std::isfinite(err)) refuseFit("The Fit of the Series Impedance gives no Finite Numbers!");
  console::line(" Relative Fitting Error          Number of Poles");
  console::line(" ----------------------          ---------------");
  Record wish(" Maximum: ");
  wish.fixed(INPERCENT * TARGET, 9, 4).text(" %").blanks(11).text(" Maximum: ").integer(NMAX, 3);
  console::line(wish.view());
  const int shift = INPERCENT * err < SMALLERROR ? 3 : 0;
  Record actual(SERIESRESULT);
  addError(actual.blanks(shift), INPERCENT * err).blanks(11 - shift);
  console::line(actual.text(SERIESRESULT).integer(N, 3).view());
  if (INPERCENT * err > INPERCENT * TARGET) warnOfError(" ");
}

double SERIESFIT(int NMAX, double TARGET) {
  SeriesModel& M = SERIESMODEL;
  const int limit = std::min(NMAX, NPMAX);
  prepareSeriesFit();
  const auto [N, err] =
      FITMATRIX({SOLVEDATA.at.ZSTORE, PASSES, M.ZFP, M.ZFR, M.ZFD, &M.ZFE, M.ZFIT, nullptr, &JPVT},
                limit, TARGET);
  M.NPZ = N;
  reportSeries(limit, TARGET, err, N);
  return err;
}

void printSeriesHeading() {
  console::line();
  console::line();
  rule('*');
  console::line(" CURVE FITTING OUTPUT");
  rule('*');
  console::line();
  console::line(" Fitting Series Impedance Z:");
  rule('=');
}

void printSeriesEnd() {
  rule('=');
  console::line();
}

void fitSeriesImpedance() {
  printSeriesHeading();
  SERIESFIT(RUNDATA.fit.MAXPZ, RUNDATA.fit.ERRZ * PERCENT);
  printSeriesEnd();
}

} // namespace lcp
