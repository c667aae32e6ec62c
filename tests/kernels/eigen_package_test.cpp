#include "kernels/eigen_package.h"

#include "diag/message_package.h"
#include "kernels/hyperbolic.h"
#include "support/child.h"
#include "support/line_matrices.h"
#include "support/version_line.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

// The squaring ends when a power and its square agree to 1e-6. Two eigenvalues so close that a
// squaring does not part them any more give vectors in the plane of the pair, and a residual of
// the size of their distance; all others come out to rounding.
constexpr double CLOSEPAIR = 1e-8;
constexpr double ROUNDING = 1e-13;

struct Decomposition {
  LineMatrix A, X, Y;
  ModeComplex L;
};

void decompose(Decomposition& D, int n) {
  static LineMatrix copy;
  copy = D.A;
  fillNaN(D.X);
  fillNaN(D.Y);
  D.L.fill(0.0);
  VALVC(D.L, D.Y, D.X, copy, n);
}

Complex shiftOf(CConstView A, int n) {
  double m = 0.0;
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) m += L1MAG(A(i, j)) / n / n;
  }
  return {0.7 * m, 0.812345 * m};
}

// Largest |A x - l x| over |A| |x|.
double residual(const Decomposition& D, int n) {
  double worst = 0.0;
  for (int k = 1; k <= n; ++k) {
    double size = 0.0, length = 0.0, error = 0.0;
    for (int i = 1; i <= n; ++i) {
      Complex sum = -D.L[k] * D.X(i, k);
      for (int j = 1; j <= n; ++j) {
        sum += D.A(i, j) * D.X(j, k);
        size += std::norm(D.A(i, j));
      }
      error += std::norm(sum);
      length += std::norm(D.X(i, k));
    }
    worst = std::max(worst, std::sqrt(error / size / length));
  }
  return worst;
}

void check(const Decomposition& D, int n, const char* what, double limit = ROUNDING) {
  EXPECT_TRUE(onlyCornerSet(D.X, n)) << what << n;
  EXPECT_TRUE(onlyCornerSet(D.Y, n)) << what << n;
  EXPECT_LT(residual(D, n), limit) << what << n;
  EXPECT_LT(distanceFromInverse(D.Y, D.X, n), ROUNDING) << what << n;
  for (int k = 1; k <= n; ++k) {
    int ones = 0;
    for (int i = 1; i <= n; ++i) ones += D.X(i, k) == 1.0;
    EXPECT_GE(ones, 1) << what << n;
  }
}

} // namespace

TEST(EigenPackage, RandomMatricesInTheOrderOfTheDistanceFromTheShift) {
  static Decomposition D;
  std::mt19937 random(41);
  for (int n : {1, 2, 3, 8, 20, 49}) {
    fillNaN(D.A);
    fillRandom(D.A, n, n, random);
    decompose(D, n);
    check(D, n, "random ");
    const Complex s = shiftOf(D.A, n);
    for (int k = 2; k <= n; ++k)
      EXPECT_LE(std::abs(D.L[k] - s), std::abs(D.L[k - 1] - s) * (1.0 + ROUNDING)) << n;
  }
}

TEST(EigenPackage, LinesAndMatricesWithPatterns) {
  static Decomposition D;
  for (int n : {3, 12, 48}) {
    for (double f : {0.25, 60.0, 1e6}) {
      lineProduct(D.A, f, towers(n));
      decompose(D, n);
      check(D, n, "line ", n == 48 ? CLOSEPAIR : ROUNDING);
    }
  }
  const double opposite[2][2][2] = {{{0, 1}, {1, 0}}, {{0, -1}, {1, 0}}}; // +-1 and +-j
  for (const auto& m : opposite) {
    for (int i = 1; i <= 2; ++i) {
      for (int j = 1; j <= 2; ++j) D.A(i, j) = m[i - 1][j - 1];
    }
    decompose(D, 2);
    check(D, 2, "opposite ");
    EXPECT_LT(std::abs(D.L[1] + D.L[2]), ROUNDING);
  }
}

TEST(EigenPackage, MultiplesOfTheIdentityKeepTheirVectors) {
  static Decomposition D;
  for (const Complex l : {Complex(0.0, 3.0), Complex(0.0)}) {
    for (int i = 1; i <= 4; ++i) {
      for (int j = 1; j <= 4; ++j) D.A(i, j) = i == j ? l : 0.0;
    }
    decompose(D, 4);
    check(D, 4, "identity ", l == 0.0 ? 1.0 : ROUNDING);
    for (int k = 1; k <= 4; ++k) {
      EXPECT_LT(std::abs(D.L[k] - l), 1e-14);
      EXPECT_EQ(D.X(k, k), 1.0);
      EXPECT_EQ(D.Y(k, k % 4 + 1), 0.0);
    }
  }
}

TEST(EigenPackage, WhatDoesNotSettleLeavesThePairsAsTheyStood) {
  static Decomposition D;
  D.A(1, 1) = D.A(2, 2) = std::nan("");
  D.A(1, 2) = D.A(2, 1) = 1.0;
  decompose(D, 2);
  EXPECT_EQ(EITER[1], EITERFAILED);
  EXPECT_TRUE(std::isnan(D.X(1, 1).real()) && std::isnan(D.Y(2, 2).real())); // as filled
  D.A(1, 1) = D.A(2, 2) = 0.0;
  decompose(D, 2);
  EXPECT_LT(EITER[1], 100);
  check(D, 2, "after a failure ");
}

TEST(EigenPackage, OrderIsCheckedAndTheStackOfNamesLeftEmpty) {
  const ChildResult bad = runChild([] {
    static LineMatrix A;
    ModeComplex L;
    VALVC(L, A, A, A, 50);
  });
  EXPECT_EQ(bad.status, 12);
  EXPECT_EQ(
      bad.console,
      lines({"-*** ERROR: VALVC:  Matrix dimensions out of bounds--Execution terminating. ***",
             "-Traceback:", " VALVC  - MODALPAK            ", "-", versionLine(901220)}));
  const ChildResult good = runChild([] {
    static Decomposition D;
    lineProduct(D.A, 60.0, towers(3));
    decompose(D, 3);
    BAKTRC("", "", STACKPRINT);
    RUNSTOP(0);
  });
  EXPECT_EQ(good.console, lines({"-Traceback:", "-", versionLine(910209)}));
}
