// The scan for violations: nodal admittance, peaks over the grid, constraint frequencies.
#include "made_up_model.h"
#include "passivity/nodal_admittance.h"
#include "passivity/residue_sensitivity.h"
#include "passivity/violation_scan.h"
#include "support/child.h"
#include "support/dense_functions.h"

#include <gtest/gtest.h>
#include <numeric>

using namespace lcp;
using namespace lcp::test;

namespace {

std::vector<double> list(const double* x, int n) { return {x, x + n}; }

// Violations at the frequencies 1, 2, 3.. Hz.
void setViolations(const std::vector<double>& V) {
  ENFORCE.EGRID.NGRID = static_cast<int>(V.size());
  std::copy(V.begin(), V.end(), ENFORCE.V.data());
  std::iota(ENFORCE.EGRID.f.data(), ENFORCE.EGRID.f.data() + V.size(), 1.0);
  findPeaks();
}

void setPoints(int n, double first, double factor) {
  ENFORCE.VPOINT.count = n;
  for (int i = 1; i <= n; ++i) ENFORCE.VPOINT.frequency[i] = first * std::pow(factor, i - 1);
}

} // namespace

TEST(ViolationScan, NodalAdmittanceIsThatOfTheEndsDrivenAlikeAndAgainstEachOther) {
  static LineMatrix H, Yc;
  static NodalMatrix Y;
  NodalReals lambda;
  for (const int n : {1, 2, 5}) {
    const auto size = static_cast<std::size_t>(n);
    setMadeUpModel(n, 9, 6);
    ENFORCE.NFREE = ENFORCE.NVAR = 0;
    for (int m = 1; m <= ENFORCE.TOTORD; ++m) ENFORCE.FPERT[m](1, 1) = ENFORCE.FRES[m](1, 1) / 2.0;
    for (const double w : {2.0, 300.0, 4e4}) {
      for (const Residues which : {Residues::CHANGED, Residues::BASE}) {
        PASSYN(w / 6.2831854820251465, Y, which);
        propagationAt(residuesOf(which), Complex(0, w), H);
        characteristicAt(Complex(0, w), false, Yc);
        const Dense h = corner(H, n), yc = corner(Yc, n), y = corner(Y, 2 * n), I = identity(size);
        const Dense own = block(y, 0, 0, size), mutual = block(y, 0, size, size);
        const Dense ratio = product(inverse(sum(I, h)), sum(I, h, -1));
        EXPECT_LT(distance(sum(own, mutual), product(ratio, yc)), 1e-13);
        EXPECT_LT(distance(sum(own, mutual, -1), product(inverse(ratio), yc)), 1e-13);
        EXPECT_EQ(block(y, size, size, size), own);
        EXPECT_EQ(block(y, size, 0, size), mutual);
      }
      double alike = 0, against = 0; // sums of the eigenvalues of the Hermitian parts
      EIGSENS(w / 6.2831854820251465, RView(nullptr, 2 * n), lambda);
      for (int i = 1; i <= n; ++i) {
        alike += lambda[i] - (Y(i, i) + Y(i, n + i)).real();
        against += lambda[n + i] - (Y(i, i) - Y(i, n + i)).real();
      }
      EXPECT_LT(std::fabs(alike) + std::fabs(against), 1e-13);
    }
  }
}

TEST(ViolationScan, PeaksAreInnerMaximaOrTheFirstLargestValue) {
  const double e = 2e-20; // just above what counts as zero
  struct Case {
    std::vector<double> V, frequencies;
  };
  const std::vector<Case> cases = {
      {{}, {}},
      {{0, 0, 0}, {}},
      {{1e-21, 1e-21, 1e-21}, {}},
      {{0, 1, 0}, {2}},
      {{0, 1, 0, 2, 1, 3}, {2, 4}}, // the rise to the last point is no peak beside others
      {{0, 1, 1, 0}, {2}},          // a plateau is no peak: its first point, as the largest
      {{0, 1, 1, 0, 0.5, 0}, {5}},  // ... and nothing beside one
      {{0, 1, 2, 3}, {4}},          // rising to the end
      {{3, 2, 1}, {1}},             // falling from the start
      {{1, 2}, {2}},                // two points
      {{4}, {1}},                   // one
      {{0, e, 0}, {2}},
      {{0, e / 4, 0, 3 * e, 0}, {4}}, // a bump below zero's size
  };
  for (const Case& c : cases) {
    setViolations(c.V);
    EXPECT_EQ(list(ENFORCE.VPOINT.frequency.data(), ENFORCE.VPOINT.count), c.frequencies)
        << ::testing::PrintToString(c.V);
  }
  std::vector<double> comb(500);
  for (std::size_t i = 0; i < comb.size(); i += 2) comb[i] = 1 + static_cast<double>(i);
  setViolations(comb);
  EXPECT_EQ(ENFORCE.VPOINT.count, 100);
  EXPECT_EQ(ENFORCE.VPOINT.frequency[100], 201);
  EXPECT_EQ(ENFORCE.VPOINT.value[100], 201);
}

TEST(ViolationScan, ConstraintFrequenciesKeepTheirDistance) {
  ENFORCE.NCFREQ = 0;
  setPoints(0, 0, 0);
  PASSLIST();
  EXPECT_EQ(ENFORCE.NCFREQ, 0);
  setPoints(3, 100, 1.09); // 100, 109, 118.81: the higher of two close ones
  PASSLIST();
  EXPECT_EQ(list(ENFORCE.CFREQ.data(), ENFORCE.NCFREQ),
            (std::vector<double>{100 * std::pow(1.09, 2), 100}));
  setPoints(2, 125, 10); // thins out an old one, and stays itself
  PASSLIST();
  EXPECT_EQ(list(ENFORCE.CFREQ.data(), ENFORCE.NCFREQ), (std::vector<double>{1250, 125, 100}));
  setPoints(100, 1e4, 1.2); // the list is full after 97 of them
  PASSLIST();
  EXPECT_EQ(ENFORCE.NCFREQ, 100);
  EXPECT_EQ(ENFORCE.CFREQ[1], 1e4 * std::pow(1.2, 96));
  PASSLIST();
  EXPECT_EQ(ENFORCE.NCFREQ, 100);
  EXPECT_EQ(ENFORCE.VPOINT.count, 100); // violations stay violations
}

TEST(ViolationScan, SingularMatricesEndTheRun) {
  static LineMatrix A;
  A = {};
  A(1, 1) = 1;
  const ChildResult r = runChild([] { ZINVERSE(A, A, 2); });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.console,
            lines({"", std::string(43, '*'), "Corvo.exe: ERROR", "Matrix is numerically singular!",
                   std::string(43, '*'), "QUENT Ending!"}));
}
