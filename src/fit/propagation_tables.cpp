#include "fit/propagation_tables.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/record.h"
#include "fit/fit_console.h"

namespace lcp {

namespace {

Record& delay(Record& row, double TAU) { return row.fixed(TAU * INMILLI, 10, 6).text(" ms"); }

} // namespace

void printPropagationHeading(double percentRequested, int limit) {
  console::line(" Fitting Propagation Function H:");
  fitRule('=');
  printErrorRequested(percentRequested);
  Record row(" Maximum Number of Poles (per delay group): ");
  console::line(row.blanks(20).integer(limit, 3).view());
  console::line();
}

void printAttempt(int attempt, double TARGET) {
  fitRule('-');
  Record row(" Attempt # ");
  row.integer(attempt, 2).blanks(31).text("Target error: ").fixed(TARGET * INPERCENT, 9, 4);
  console::line(row.text(" %").view());
}

void printModeHeading() {
  fitRule('-');
  console::line(" Hmode:       Delay      Maximum          Number      Time");
  console::line("              Group #    Fitting Error    of Poles    Delay");
  console::line("              -------    -------------    --------    -----");
}

void printModeRow(int g, double ERRG, int NH, double TAU) {
  Record row;
  row.blanks(16).integer(g, 2).blanks(7).fixed(ERRG * INPERCENT, 10, 5).text(" %");
  row.blanks(7).integer(NH, 2).blanks(7);
  console::line(delay(row, TAU).view());
}

void printPhaseFit(const PhaseFit& fit) {
  console::line();
  console::line(HPHASEHEADING);
  console::line("              Fitting Error     RMS Error     Residue/Pole Ratio");
  console::line("              --------------    ----------    ------------------");
  Record row;
  row.blanks(15).fixed(fit.MAXERR * INPERCENT, 9, 4).text(" %");
  row.blanks(5).fixed(fit.RMSERR * INPERCENT, 9, 4).text(" %");
  console::line(row.blanks(7).fixed(fit.RATIO, 11, 2).view());
}

void printReductionHeading() {
  fitRule('-');
  console::line(" Removing Large Residue/Pole Ratios (Model Order Reduction)");
  fitRule('-');
}

void printReducedGroups() {
  console::line("              Delay      Number");
  console::line("              Group #    of Poles");
  console::line("              -------    --------");
  for (int g = 1; g <= FITMODEL.NGROUP; ++g) {
    Record row;
    console::line(row.blanks(16).integer(g, 2).blanks(7).integer(FITMODEL.NH[g], 2).view());
  }
  console::line();
}

void printCorrectionHeading() {
  console::line();
  console::line(" Applying DC Correction");
  fitRule('-');
  console::line();
}

void printFinalFit(const PhaseFit& fit) {
  console::line();
  console::line(FINALHEADING);
  console::line("              Fitting Error  RMS Error    of Poles    Time Delays");
  console::line("              -------------  ---------    --------    -----------");
  Record row;
  row.blanks(13).fixed(fit.MAXERR * INPERCENT, 10, 5).text(" %");
  row.blanks(1).fixed(fit.RMSERR * INPERCENT, 10, 5).text(" %");
  row.blanks(5).integer(FITMODEL.NH[1], 3).blanks(7);
  console::line(delay(row, FITMODEL.TAU[1]).view());
  for (int g = 2; g <= FITMODEL.NGROUP; ++g) {
    row = Record();
    row.blanks(44).integer(FITMODEL.NH[g], 2).blanks(7);
    console::line(delay(row, FITMODEL.TAU[g]).view());
  }
  console::line();
  row = Record();
  row.blanks(27).text("Maximum Residue/Pole Ratio:").blanks(2).scientific(fit.RATIO, 13, 7);
  console::line(row.view());
  printFitEnd();
}

void printFitEnd() {
  console::line();
  fitRule('-');
}

} // namespace lcp
