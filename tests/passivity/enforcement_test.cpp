// The steps of the enforcement.
//
// Variables, their sensitivities against central differences, peaks of the violation over the grid,
// constraint frequencies.
#include "made_up_model.h"

#include "passivity/nodal_admittance.h"
#include "passivity/residue_model.h"
#include "passivity/residue_sensitivity.h"
#include "passivity/violation_scan.h"
#include "support/child.h"
#include "support/console_capture.h"
#include "support/dense_functions.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <numeric>

using namespace lcp;
using namespace lcp::test;

namespace {

// Linearises around the current residues; returns the printed text.
std::string linearise() {
  RESCLASS();
  decomposeResidues();
  return consoleOf(RESMASK);
}

// Moves one variable by a number of its steps, all others being 0: a power of two, which survives
// the rounding to single precision.
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

using Reals = std::vector<double>;

Reals list(const double* x, int n) { return {x, x + n}; }

// Violations at the frequencies 1, 2, 3.. Hz.
void setViolations(const Reals& V) {
  ENFORCE.EGRID.NGRID = static_cast<int>(V.size());
  std::copy(V.begin(), V.end(), ENFORCE.V.data());
  std::iota(ENFORCE.EGRID.f.data(), ENFORCE.EGRID.f.data() + V.size(), 1.0);
  findPeaks();
}

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
    EXPECT_TRUE(printed.ends_with(fmt::format("  Original {:5}, Reduced {:5}\n", all, variables)));
  }
}

// Sensitivities of H and of the eigenvalues of the nodal admittance.
TEST(ResidueModel, SensitivitiesAreCentralDifferences) {
  static ResidueList before;
  for (const int n : {1, 3}) {
    setMadeUpModel(n, 9, 6);
    linearise();
    copyResidues(before, ENFORCE.FRES);
    move(1, 0);
    for (int m = 1; m <= ENFORCE.TOTORD; ++m) // no change gives the residues back
      EXPECT_LT(distance(corner(ENFORCE.FPERT[m], n), corner(ENFORCE.FRES[m], n)), 1e-13) << m;
    std::vector<double> ofH(static_cast<std::size_t>(2 * n * n * ENFORCE.NVAR));
    std::vector<double> told(static_cast<std::size_t>(2 * n * ENFORCE.NVAR)), unused = told;
    for (const double f : {0.7, 1234.5}) {
      const double w = static_cast<float>(6.2831854820251465 * f);
      NodalReals up, down;
      RESSENS(f, {ofH.data(), 2 * n * n});
      EIGSENS(f, {told.data(), 2 * n}, up);
      const double* at = ofH.data();
      const double step = f < 100 ? 0x1p-10 : 0x1p-4; // H fades
      std::vector<double> slopes;
      for (int k = 1; k <= ENFORCE.NVAR; ++k) {
        move(k, 1024);
        const Dense above = changedH(w);
        move(k, -1024);
        const Dense slope = times(1 / 2048.0L, sum(above, changedH(w), -1));
        const Dense ofThis = formed(slope.size(), [&](std::size_t r, std::size_t c) {
          const std::size_t element = 2 * (c * slope.size() + r);
          return Wide(at[element], at[element + 1]);
        });
        EXPECT_LT(distance(ofThis, slope), 1e-7) << f << " variable " << k;
        at += 2 * n * n;
        for (const double d : {step, -step}) {
          move(k, d);
          copyResidues(ENFORCE.FRES, ENFORCE.FPERT);
          EIGSENS(f, {unused.data(), 2 * n}, d > 0 ? up : down);
          copyResidues(ENFORCE.FRES, before);
        }
        for (int i = 1; i <= 2 * n; ++i) slopes.push_back((up[i] - down[i]) / (2 * step));
      }
      const auto [low, high] = std::minmax_element(slopes.begin(), slopes.end());
      const double scale = std::max(-*low, *high);
      for (std::size_t i = 0; i < slopes.size(); ++i)
        EXPECT_NEAR(told[i], slopes[i], 1e-7 * scale) << f << " " << i;
    }
  }
}

TEST(ViolationScan, PeaksAreInnerMaximaOrTheFirstLargestValue) {
  const double e = 2e-20; // just above what counts as zero
  const struct {
    Reals V, frequencies;
  } cases[] = {
      {{}, {}},
      {{1e-21, 1e-21, 1e-21}, {}},
      {{0, 1, 0, 2, 1, 3}, {2, 4}}, // the rise to the last point is not a peak if there are others
      {{0, 1, 1, 0}, {2}},          // a plateau is not a peak: its first point, as the largest
      {{0, 1, 1, 0, 0.5, 0}, {5}},  // ... and it is ignored if there is a peak
      {{0, 1, 2, 3}, {4}},
      {{3, 2, 1}, {1}},
      {{4}, {1}},
      {{0, e, 0}, {2}},
      {{0, e / 4, 0, 3 * e, 0}, {4}}, // a bump below zero's size
  };
  for (const auto& c : cases) {
    setViolations(c.V);
    EXPECT_EQ(list(ENFORCE.VPOINT.frequency.data(), ENFORCE.VPOINT.count), c.frequencies)
        << ::testing::PrintToString(c.V);
  }
}
