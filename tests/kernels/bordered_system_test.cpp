#include "kernels/bordered_system.h"

#include "support/line_matrices.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

using BorderedStore = SquareStore<Complex, BORDERED>;

void writeOut(BorderedStore& J, CConstView A, Complex l, const ModeComplex& x, int p, int n) {
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) J(i, j) = A(i, j);
    J(j, j) -= l;
    J(j, n + 1) = -x[j];
    J(n + 1, j) = 0.0;
  }
  J(n + 1, n + 1) = 0.0;
  J(n + 1, p) = 1.0;
}

// Largest residual of J d = r against the sizes of J, d and rounding.
double residual(const BorderedStore& J, const BorderedVector& d, const BorderedVector& r, int m) {
  double worst = 0.0, sizeJ = 0.0, sizeD = 0.0;
  for (int i = 1; i <= m; ++i) {
    Complex sum = -r[i];
    double row = 0.0;
    for (int j = 1; j <= m; ++j) {
      sum += J(i, j) * d[j];
      row += std::abs(J(i, j));
    }
    worst = std::max(worst, std::abs(sum));
    sizeJ = std::max(sizeJ, row);
    sizeD = std::max(sizeD, std::abs(d[i]));
  }
  return worst / (sizeJ * sizeD * 2.2e-16);
}

// A matrix with eigenvalues at 1 and 1 + distance, solved at the first of them. Returns whether
// the system was found singular.
bool solveNearPair(int n, double distance, std::mt19937& random) {
  static LineMatrix X, XI, A;
  static BorderedMatrix M;
  static BorderedStore J;
  ModeComplex x;
  BorderedVector r, d, full;
  fillNaN(A);
  fillRandom(X, n, n, random);
  INVCJD(XI, X, n);
  x.fill(0.0);
  for (int i = 1; i <= n; ++i) x[i] = X(i, 1) / X(1, 1);
  for (int j = 1; j <= n; ++j) {
    const Complex l = j == 2 ? 1.0 + distance : Complex(1.0, 0.05 * (j - 1));
    for (int i = 1; i <= n; ++i) X(i, j) *= l;
  }
  CMATMUL(A, X, XI, n);
  reduce(M, A, n);
  for (int i = 1; i <= n + 1; ++i) r[i] = Complex(0.1 * (i % 3) - 0.1, 0.02 * (i % 5));
  writeOut(J, A, 1.0, x, 1, n);
  const bool singular = SOLVEBORDERED(d, M, 1.0, x.data(), 1, r);
  EXPECT_EQ(singular, SOLVEJD(full.data(), J, r.data(), n + 1)) << n << ' ' << distance;
  if (distance > 1e-7) {
    EXPECT_FALSE(singular) << n << ' ' << distance;
    EXPECT_LT(residual(J, d, r, n + 1), 30.0) << n << ' ' << distance;
  }
  return singular;
}

} // namespace

TEST(BorderedSystem, VerdictIsThatOfTheFullElimination) {
  std::mt19937 random(31);
  for (int n : {1, 2, 3, 7, 20, 49}) {
    int singular = 0;
    for (double distance = 0.1; distance > 1e-19; distance /= 10.0) {
      for (int trial = 0; trial < 5; ++trial) singular += solveNearPair(n, distance, random);
    }
    if (n > 2) {
      EXPECT_GT(singular, 0) << n;
    }
  }
}

TEST(BorderedSystem, ExactlySingularSystems) {
  static LineMatrix A;
  static BorderedMatrix M;
  BorderedVector d, r;
  ModeComplex x;
  r.fill(1.0);
  for (int i = 1; i <= 3; ++i) A(i, i) = i == 3 ? 2.0 : 1.0;
  reduce(M, A, 3);
  x[1] = 1.0;
  EXPECT_TRUE(SOLVEBORDERED(d, M, 1.0, x.data(), 1, r)); // a double eigenvalue
  EXPECT_FALSE(SOLVEBORDERED(d, M, 0.5, x.data(), 1, r));
  EXPECT_TRUE(SOLVEBORDERED(d, M, 0.5, x.data(), 2, r)); // the held element is 0
  x[1] = std::nan("");
  EXPECT_TRUE(SOLVEBORDERED(d, M, 0.5, x.data(), 1, r));
}
