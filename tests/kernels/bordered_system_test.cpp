#include "kernels/bordered_system.h"

#include "support/line_matrices.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

SquareStore<Complex, BORDERED> J; // the system written out
LineMatrix A;
BorderedMatrix M;

// Largest residual of J d = r against the sizes of J, d and rounding.
double residual(const BorderedVector& d, const BorderedVector& r, int m) {
  double worst = 0.0, sizeJ = 0.0, sizeD = 0.0;
  for (int i = 1; i <= m; ++i) {
    Complex sum = -r[i];
    for (int j = 1; j <= m; ++j) {
      sum += J(i, j) * d[j];
      sizeJ = std::max(sizeJ, std::abs(J(i, j)));
    }
    worst = std::max(worst, std::abs(sum));
    sizeD = std::max(sizeD, std::abs(d[i]));
  }
  return worst / (sizeJ * sizeD * 2.2e-16);
}

// A matrix with eigenvalues at 1 and 1 + apart, solved at the first of them. Returns whether the
// system was found singular.
bool solveNearPair(int n, double apart, std::mt19937& random) {
  static LineMatrix X, XI;
  ModeComplex x;
  BorderedVector r, d, full;
  fillNaN(A);
  fillRandom(X, n, n, random);
  INVCJD(XI, X, n);
  for (int i = 1; i <= n; ++i) {
    x[i] = X(i, 1) / X(1, 1);
    J(i, n + 1) = -x[i];
    J(n + 1, i) = i == 1;
  }
  J(n + 1, n + 1) = 0.0;
  for (int j = 1; j <= n; ++j) {
    const Complex l = j == 2 ? 1.0 + apart : Complex(1.0, 0.05 * (j - 1));
    for (int i = 1; i <= n; ++i) X(i, j) *= l;
  }
  CMATMUL(A, X, XI, n);
  reduce(M, A, n);
  copyCorner(J, A, n);
  for (int i = 1; i <= n; ++i) J(i, i) -= 1.0;
  for (int i = 1; i <= n + 1; ++i) r[i] = Complex(0.1 * (i % 3) - 0.1, 0.02 * (i % 5));
  const bool singular = !SOLVEBORDERED(d, M, 1.0, x.data(), 1, r);
  EXPECT_NE(singular, SOLVEJD(full.data(), J, r.data(), n + 1)) << n << ' ' << apart;
  if (apart > 1e-7) {
    EXPECT_FALSE(singular) << n << ' ' << apart;
    EXPECT_LT(residual(d, r, n + 1), 30.0) << n << ' ' << apart;
  }
  return singular;
}

} // namespace

TEST(BorderedSystem, VerdictIsThatOfTheFullElimination) {
  std::mt19937 random(31);
  for (int n : {1, 2, 3, 7, 20, 49}) {
    int singular = 0;
    for (double apart = 0.1; apart > 1e-19; apart /= 10.0) {
      for (int trial = 0; trial < 5; ++trial) singular += solveNearPair(n, apart, random);
    }
    EXPECT_TRUE(singular > 0 || n <= 2) << n;
  }
}

TEST(BorderedSystem, ExactlySingularSystems) {
  BorderedVector d, r;
  ModeComplex x;
  r.fill(1.0);
  x[1] = 1.0;
  for (int e = 0; e < 9; ++e) A(1 + e / 3, 1 + e % 3) = e % 4 != 0 ? 0.0 : e == 8 ? 2.0 : 1.0;
  reduce(M, A, 3);
  EXPECT_FALSE(SOLVEBORDERED(d, M, 1.0, x.data(), 1, r)); // a double eigenvalue
  EXPECT_TRUE(SOLVEBORDERED(d, M, 0.5, x.data(), 1, r));
  EXPECT_FALSE(SOLVEBORDERED(d, M, 0.5, x.data(), 2, r)); // the held element is 0
  x[1] = std::nan("");
  EXPECT_FALSE(SOLVEBORDERED(d, M, 0.5, x.data(), 1, r));
}
