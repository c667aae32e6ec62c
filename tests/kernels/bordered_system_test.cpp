#include "kernels/bordered_system.h"

#include "support/dense_functions.h"
#include "support/line_matrices.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

// A matrix with eigenvalues at 1 and 1 + apart, solved at the first of them with the system written
// out beside it. Returns whether it was found singular.
bool solveNearPair(int n, double apart, std::mt19937& random) {
  static SquareStore<Complex, BORDERED> J;
  static LineMatrix A, X, XI;
  static BorderedMatrix M;
  ModeComplex x;
  BorderedVector r, d, full;
  fillNaN(A);
  fillRandom(X, n, n, random);
  INVCJD(XI, X, n);
  for (int i = 1; i <= n; ++i) x[i] = X(i, 1) / X(1, 1);
  for (int e = 0; e < n * n; ++e) {
    const int i = 1 + e / n, j = 1 + e % n;
    X(i, j) *= j == 2 ? 1.0 + apart : Complex(1.0, 0.05 * (j - 1));
  }
  CMATMUL(A, X, XI, n);
  reduce(M, A, n);
  for (int i = 1; i <= n + 1; ++i) {
    r[i] = Complex(0.1 * (i % 3) - 0.1, 0.02 * (i % 5));
    for (int j = 1; j <= n + 1; ++j) {
      const bool inside = i <= n && j <= n;
      J(i, j) = inside ? A(i, j) - double(i == j) : i <= n ? -x[i] : Complex(j == 1);
    }
  }
  const bool singular = !SOLVEBORDERED(d, M, 1.0, x.data(), 1, r);
  EXPECT_NE(singular, SOLVEJD(full.data(), J, r.data(), n + 1)) << n << ' ' << apart;
  const Dense j = corner(J, n + 1);
  for (std::size_t i = 0; i < j.size() && apart > 1e-7; ++i) { // the residual is of rounding
    Wide left = -r[int(i) + 1];
    long double size = 0;
    for (std::size_t k = 0; k < j.size(); ++k) {
      left += j[i][k] * Wide(d[int(k) + 1]);
      size += std::abs(d[int(k) + 1]);
    }
    EXPECT_LT(std::abs(left), 1e-14L * size * largest(j)) << n << ' ' << apart;
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
  static BorderedMatrix M;
  static LineMatrix A;
  BorderedVector d, r;
  ModeComplex x;
  r.fill(1.0);
  for (int i = 1; i <= 3; ++i) A(i, i) = i < 3 ? 1.0 : 2.0;
  reduce(M, A, 3);
  const struct {
    double x, l;
    int p;
    bool singular;
  } cases[] = {{1, 1.0, 1, true}, // a double eigenvalue
               {1, 0.5, 1, false},
               {1, 0.5, 2, true}, // the held element is 0
               {NAN, 0.5, 1, true}};
  for (const auto& c : cases) {
    x[1] = c.x;
    EXPECT_NE(SOLVEBORDERED(d, M, c.l, x.data(), c.p, r), c.singular) << c.x << c.l << c.p;
  }
}
