#include "fit/admittance_fit.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/number_forms.h"
#include "base/record.h"
#include "fit/dc_values.h"
#include "fit/fit_console.h"
#include "fit/fit_store.h"
#include "fit/matrix_fit.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>

namespace lcp {

namespace {

constexpr int PASSES = 3;         // of the vector fit, for each number of poles
constexpr double EXTRAPOLE = -PI; // rad/s

RealMatrix YDC, HDC;

// Adds the real pole that takes up the difference to the DC values.
void addExtraPole(int& N) {
  const int n = RUNDATA.line.NC;
  DCVALUES(YDC, HDC);
  const int before = N;
  FITMODEL.YPOLE[++N] = EXTRAPOLE;
  for (int r = 1; r <= n; ++r) {
    for (int c = 1; c <= n; ++c) {
      PoleTable& R = FITMODEL.YRES(r, c);
      const double ratios = ratioSum(FITMODEL.YPOLE, R, before);
      R[N] = EXTRAPOLE * (FITMODEL.YD(r, c) - YDC(r, c) - ratios);
    }
  }
}

} // namespace

void YCFIT(const AdmittanceWish& wish) {
  const int limit = std::min(wish.limit, NPMAX);
  const bool constrained = wish.dcType == DCCONSTRAINED;
  if (constrained) DCVALUES(YDC, HDC);
  auto [N, err] =
      FITMATRIX({SOLVEDATA.second.YCST, PASSES, FITMODEL.YPOLE, FITMODEL.YRES, FITMODEL.YD, nullptr,
                 FITTED.YC, constrained ? &YDC : nullptr, nullptr},
                limit, wish.target);
  if (!std::isfinite(err)) {
    refuseFit("The Fit of the Characteristic Admittance gives no Finite Numbers!");
  }
  if (wish.dcType == DCEXTRAPOLE) addExtraPole(N);
  FITMODEL.NPY = N;
  reportAdmittance(wish, err, N);
}

void reportAdmittance(const AdmittanceWish& wish, double err, int N) {
  printErrorRequested(INPERCENT * wish.target);
  console::print(" Maximum Number of Poles: {:38}{}", "",
                 integerField(std::min(wish.limit, NPMAX), 3));
  console::line();
  console::line(YCHEADING);
  console::line("              Fitting Error    of Poles");
  console::line("              --------------   --------");
  Record row;
  addError(row.blanks(15), INPERCENT * err).blanks(6).integer(N, 3);
  console::line(row.view());
  console::line();
  if (INPERCENT * err > INPERCENT * wish.target) warnOfError("");
}

} // namespace lcp
