// The variables of the enforcement and the sensitivities to them, against central differences.
#include "made_up_model.h"
#include "passivity/nodal_admittance.h"
#include "passivity/residue_model.h"
#include "passivity/residue_sensitivity.h"
#include "support/child.h"
#include "support/console_capture.h"
#include "support/dense_functions.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

// The linearisation around the residues as they are; returns what is printed.
std::string linearise() {
  RESCLASS();
  decomposeResidues();
  return consoleOf(RESMASK);
}

// One variable moved by so many of its step, all others 0: a power of two, which survives the
// rounding to single precision.
void move(int k, double step) {
  Table<double, MAXVARIABLES> x{};
  x[k] = step;
  RESAPPLY(x);
}

Dense changedH(double w) {
  static LineMatrix H;
  propagationAt(ENFORCE.FPERT, Complex(0, w), H);
  return corner(H, ENFORCE.NC);
}

double roundedOmega(double f) { return double{static_cast<float>(6.2831854820251465 * f)}; }

constexpr double FREQUENCIES[] = {0.7, 1234.5};

} // namespace

TEST(ResidueModel, ChoosesTheSmallestEigenvaluesWithinTheLimit) {
  const struct {
    int n, first, perPole;
  } cases[] = {{2, 50, 2}, {2, 51, 1}, {3, 40, 2}, {49, 3, 33}, {1, 101, 0}, {3, 0, 0}};
  for (const auto& c : cases) {
    setMadeUpModel(c.n, c.first, 5);
    const std::string printed = linearise();
    EXPECT_EQ(ENFORCE.NFREE, c.perPole * c.first) << c.n << " " << c.first;
    int all = 0, variables = 0;
    for (int m = 1; m <= c.first; ++m) {
      for (int j = 1; j <= c.n; ++j) {
        all += 1 + ENFORCE.EIGFLAG[m][j];
        variables += j <= c.perPole ? 1 + ENFORCE.EIGFLAG[m][j] : 0;
        EXPECT_LE(std::abs(ENFORCE.FEIG[m][std::max(j - 1, 1)]), std::abs(ENFORCE.FEIG[m][j]));
      }
    }
    EXPECT_EQ(ENFORCE.NVAR, variables);
    EXPECT_EQ(printed, lines({"    ...........   ", "  Model Order reduction ",
                              fmt::format("  Original {:5}, Reduced {:5}", all, variables)}));
  }
}

TEST(ResidueModel, SensitivityOfHIsItsCentralDifference) {
  const double step = 1024;
  for (const int n : {1, 3}) {
    setMadeUpModel(n, 9, 6);
    linearise();
    move(1, 0);
    for (int m = 1; m <= ENFORCE.TOTORD; ++m) // no change gives the residues back
      EXPECT_LT(distance(corner(ENFORCE.FPERT[m], n), corner(ENFORCE.FRES[m], n)), 1e-13) << m;
    std::vector<double> store(static_cast<std::size_t>(2 * n * n * ENFORCE.NVAR));
    for (const double f : FREQUENCIES) {
      RESSENS(f, {store.data(), 2 * n * n});
      const double* at = store.data();
      for (int k = 1; k <= ENFORCE.NVAR; ++k) {
        move(k, step);
        const Dense up = changedH(roundedOmega(f));
        move(k, -step);
        const Dense slope = times(0.5L / step, sum(up, changedH(roundedOmega(f)), -1));
        Dense told = slope;
        for (std::size_t c = 0; c < slope.size(); ++c) {
          for (std::size_t r = 0; r < slope.size(); ++r, at += 2) told[r][c] = Wide(at[0], at[1]);
        }
        EXPECT_LT(distance(told, slope), 1e-7) << f << " variable " << k;
      }
    }
  }
}

TEST(ResidueModel, SensitivityOfTheEigenvaluesIsTheirCentralDifference) {
  static ResidueList before;
  for (const int n : {1, 3}) {
    setMadeUpModel(n, 9, 6);
    linearise();
    copyResidues(before, ENFORCE.FRES);
    std::vector<double> told(static_cast<std::size_t>(2 * n * ENFORCE.NVAR)), unused = told;
    for (const double f : FREQUENCIES) {
      NodalReals up, down;
      std::vector<double> slope;
      const double step = f < 100 ? 0x1p-10 : 0x1p-4; // H fades
      EIGSENS(f, {told.data(), 2 * n}, up);
      for (int k = 1; k <= ENFORCE.NVAR; ++k) {
        for (const double d : {step, -step}) {
          move(k, d);
          copyResidues(ENFORCE.FRES, ENFORCE.FPERT);
          EIGSENS(f, {unused.data(), 2 * n}, d > 0 ? up : down);
          copyResidues(ENFORCE.FRES, before);
        }
        for (int i = 1; i <= 2 * n; ++i) slope.push_back((up[i] - down[i]) / (2 * step));
      }
      const auto [low, high] = std::minmax_element(slope.begin(), slope.end());
      const double scale = std::max(-*low, *high);
      for (std::size_t i = 0; i < slope.size(); ++i)
        EXPECT_NEAR(told[i], slope[i], 1e-7 * scale) << f << " " << i;
    }
  }
}
