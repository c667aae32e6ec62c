#include "kernels/eigen_package.h"

#include "kernels/hyperbolic.h"
#include "support/dense_functions.h"
#include "support/line_matrices.h"

#include <algorithm>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

// Squaring ends when a power and its square agree to 1e-6. Two eigenvalues that are too close to be
// separated give vectors in the plane of the pair, and a residual of the size of their distance;
// all others are exact to rounding.
constexpr double CLOSEPAIR = 1e-8;
constexpr double ROUNDING = 1e-13;

LineMatrix A, X, Y;
ModeComplex L;

void decompose(int n) {
  static LineMatrix copy;
  copy = A;
  fillNaN(X);
  fillNaN(Y);
  L.fill(0.0);
  VALVC(L, Y, X, copy, n);
}

// The largest element of each vector is 1.
void check(int n, double limit = ROUNDING) {
  EXPECT_TRUE(onlyCornerSet(X, n) && onlyCornerSet(Y, n)) << n;
  EXPECT_LT(distanceFromInverse(Y, X, n), ROUNDING) << n;
  const Dense a = corner(A, n), x = corner(X, n),
              left = sum(
                  product(a, x),
                  formed(x.size(), [&](std::size_t i,
                                       std::size_t k) { return x[i][k] * Wide(L[int(k) + 1]); }),
                  -1);
  EXPECT_LT(largest(left), limit * n * largest(a)) << n;
  for (int k = 1; k <= n; ++k)
    EXPECT_GE(std::count(X.view().column(k), X.view().column(k) + n, 1.0), 1) << n;
}

void fill2(Complex a, Complex b, Complex c, Complex d) {
  A(1, 1) = a;
  A(1, 2) = b;
  A(2, 1) = c;
  A(2, 2) = d;
}

} // namespace

TEST(EigenPackage, RandomMatricesInTheOrderOfTheDistanceFromTheShift) {
  std::mt19937 random(41);
  for (int n : {1, 2, 3, 8, 20, 49}) {
    fillNaN(A);
    fillRandom(A, n, n, random);
    decompose(n);
    check(n);
    double mean = 0.0;
    for (int e = 0; e < n * n; ++e) mean += L1MAG(A(1 + e / n, 1 + e % n)) / n / n;
    const Complex shift(0.7 * mean, 0.812345 * mean);
    for (int k = 2; k <= n; ++k)
      EXPECT_LE(std::abs(L[k] - shift), std::abs(L[k - 1] - shift) * (1.0 + ROUNDING)) << n;
  }
}

TEST(EigenPackage, LinesAndMatricesWithPatterns) {
  for (int n : {3, 12, 48}) {
    for (double f : {0.25, 60.0, 1e6}) {
      lineProduct(A, f, towers(n));
      decompose(n);
      check(n, n == 48 ? CLOSEPAIR : ROUNDING);
    }
  }
  for (const double sign : {1.0, -1.0}) { // +-1 and +-j
    fill2(0, sign, 1, 0);
    decompose(2);
    check(2);
  }
  for (const Complex l : {Complex(0.0, 3.0), Complex(0.0)}) { // these keep their vectors
    fill2(l, 0, 0, l);
    decompose(2);
    for (int k = 1; k <= 2; ++k) {
      EXPECT_LT(std::abs(L[k] - l), 1e-14);
      EXPECT_EQ(X(k, k), 1.0);
      EXPECT_EQ(Y(k, k % 2 + 1), 0.0);
    }
  }
}
