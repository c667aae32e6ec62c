#include "fit/fit_driver.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/solve_error.h"
#include "fit/admittance_fit.h"
#include "fit/dc_values.h"
#include "fit/fit_console.h"
#include "fit/fit_store.h"
#include "fit/propagation_fit.h"
#include "store/fitmodel.h"
#include "store/rundata.h"

namespace lcp {

namespace {

constexpr double LARGEDELAY = 1.0; // s

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

// Copies the elements below the diagonal to those above it.
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

void beginPhaseFit() {
  FITMODEL.NC = RUNDATA.line.NC;
  mapResidues(FITMODEL, FITMODEL.NC);
  FITTED.YC.map(FITMODEL.NC);
  FITTED.H.map(FITMODEL.NC);
  printHeading();
}

AdmittanceWish admittanceWish() {
  const FitOptions& F = RUNDATA.fit;
  return {F.ERRY * PERCENT, F.MAXPY, F.DCCORR};
}

void endAdmittanceFit() {
  fitRule('=');
  console::line();
  makeSymmetric();
}

PropagationWish propagationWish() {
  static RealMatrix YDC, HDC;
  const FitOptions& F = RUNDATA.fit;
  if (F.DCCORR >= DCCONSTRAINED) DCVALUES(YDC, HDC);
  return {F.ERRA, F.MAXPA, F.RPRATIO, F.DCCORR, &HDC};
}

void fitAdmittance() {
  beginPhaseFit();
  YCFIT(admittanceWish());
  endAdmittanceFit();
}

void fitPropagation() { HFIT(propagationWish()); }

void CHECKDELAYS() {
  fitRule('=');
  for (int g = 1; g <= FITMODEL.NGROUP; ++g) checkDelay(FITMODEL.TAU[g]);
}

} // namespace lcp
