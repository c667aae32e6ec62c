#include "fit/fit_driver.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/solve_error.h"
#include "fit/admittance_fit.h"
#include "fit/dc_values.h"
#include "fit/fit_console.h"
#include "fit/fitted_curves.h"
#include "fit/improved_matrix.h"
#include "fit/improved_propagation.h"
#include "fit/propagation_fit.h"
#include "modal/between_points.h"
#include "store/fitmodel.h"
#include "store/rundata.h"

#include <fmt/format.h>

namespace lcp {

namespace {

constexpr double LARGEDELAY = 1.0; // s
constexpr double SEENJUMP = 0.2;   // of the error of H asked for, by which a jump is told

void printHeading() {
  console::line();
  console::line();
  fitRule('=');
  console::line(" CURVE FITTING OUTPUT");
  fitRule('=');
  console::line();
  console::line(" Fitting Characteristic Admittance Yc:");
  fitRule('=');
}

void warnOfSamples(const PhaseSampling& found, double target) {
  if (found.lost > 0) {
    warnInLine(fmt::format("Modes are lost at {} of {} Frequencies: turn Improved Modes on",
                           found.lost, SOLVEDATA.grid.NFUSE));
  }
  if (found.moved > SEENJUMP * target) {
    warnInLine(
        fmt::format("Z jumps, as at {:.6g} Hz by {:.2g} %, which can move H by {:.2g} %: the "
                    "Fit has no Jumps between its Points",
                    found.jumps.f, INPERCENT * found.jumps.largest, INPERCENT * found.moved));
  }
}

// The elements below the diagonal stand for both.
void makeSymmetric() {
  const int n = FITMODEL.NC;
  for (int c = 1; c <= n; ++c) {
    for (int r = c + 1; r <= n; ++r) {
      for (int m = 1; m <= FITMODEL.NPY; ++m) FITMODEL.YRES(c, r)[m] = FITMODEL.YRES(r, c)[m];
      FITMODEL.YD(c, r) = FITMODEL.YD(r, c);
    }
  }
}

void checkDelay(double tau) {
  if (tau < 0.0) {
    console::openStars();
    console::print("The travel time ({} s) is negative ", tau);
    stopInStars();
  }
  if (tau > LARGEDELAY) {
    console::print("{}: The travel time ({} s ) ", console::WARNINGMARK, tau);
    console::line(" is very large");
  }
}

} // namespace

void fitAdmittance() {
  const FitOptions& F = RUNDATA.fit;
  FITMODEL.NC = RUNDATA.line.NC;
  mapResidues(FITMODEL, FITMODEL.NC);
  FITTED.YC.map(FITMODEL.NC);
  FITTED.H.map(FITMODEL.NC);
  printHeading();
  const AdmittanceWish wish{F.ERRY * PERCENT, F.MAXPY, F.DCCORR};
  if (RUNDATA.numerics.IMPROVEDFITS) {
    const PhaseSampling found = samplePhasesBetween();
    fitAdmittanceImproved(wish);
    warnOfSamples(found, F.ERRA * PERCENT);
  } else {
    YCFIT(wish);
  }
  fitRule('=');
  console::line();
  makeSymmetric();
}

void fitPropagation() {
  static RealMatrix YDC, HDC;
  const FitOptions& F = RUNDATA.fit;
  if (F.DCCORR >= DCCONSTRAINED) DCVALUES(YDC, HDC);
  const PropagationWish wish{F.ERRA, F.MAXPA, F.RPRATIO, F.DCCORR, &HDC};
  if (RUNDATA.numerics.IMPROVEDFITS) {
    fitPropagationImproved(wish);
  } else {
    HFIT(wish);
  }
}

void CHECKDELAYS() {
  fitRule('=');
  for (int g = 1; g <= FITMODEL.NGROUP; ++g) checkDelay(FITMODEL.TAU[g]);
}

} // namespace lcp
