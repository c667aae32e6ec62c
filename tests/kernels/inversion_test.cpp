#include "kernels/inversion.h"

#include "support/child.h"
#include "support/line_matrices.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

TEST(Inversion, RandomMatricesOfAnyOrderAndInPlace) {
  static SquareStore<Complex, MAXINV> A, R, S;
  std::mt19937 random(21);
  for (int n : {1, 2, 3, 10, 49, MAXINV}) {
    std::fill(std::begin(R.elements), std::end(R.elements), std::nan(""));
    fillRandom(A, n, n, random);
    EXPECT_TRUE(INVCHECKED(R, A, n));
    EXPECT_TRUE(n == MAXINV || std::isnan(R(1, n + 1).real())) << n;
    EXPECT_LT(distanceFromInverse(A, R, n), 1e-10) << n;
    S = A;
    EXPECT_TRUE(INVCHECKED(S, S, n));
    for (int e = 0; e < n * n; ++e) ASSERT_EQ(S(1 + e / n, 1 + e % n), R(1 + e / n, 1 + e % n));
  }
}

TEST(Inversion, StatusOfWhatIsNoInverse) {
  static LineMatrix A, R;
  for (int n : {3, 14}) { // Hilbert's matrix, condition 5e2 and 6e17
    for (int e = 0; e < n * n; ++e) A(1 + e / n, 1 + e % n) = 1.0 / (e / n + e % n + 1);
    EXPECT_EQ(INVCHECKED(R, A, n), n == 3);
  }
  A(1, 1) = std::nan("");
  EXPECT_FALSE(INVCHECKED(R, A, 3));
  A = {};
  A(1, 1) = 1.0;
  for (double last : {1.01e-50, 0.0, 0.99e-50}) {
    A(2, 2) = last;
    const ChildResult r = runChild([&] { INVCJD(R, A, 2); });
    EXPECT_EQ(r.status, last < 1e-50 ? 1 : 0);
    const std::string stars(43, '*');
    const std::string told =
        lines({" ", stars, "Corvo.exe: ERROR", "Error in INVCJD. Singularity occurs",
               "Verify Transmission line data", stars, "QUENT Ending!"});
    EXPECT_EQ(r.console, last < 1e-50 ? told : "");
  }
}

TEST(Solution, SolvesAndChecks) {
  static LineMatrix A;
  Table<Complex, LDMAT> x, b;
  std::mt19937 random(23);
  b.fill({1.0, -2.0});
  for (int n : {1, 4, 49}) {
    fillNaN(A);
    fillRandom(A, n, n, random);
    EXPECT_TRUE(SOLVEJD(x.data(), A, b.data(), n));
    for (int i = 1; i <= n; ++i) {
      Complex r = -b[i];
      for (int j = 1; j <= n; ++j) r += A(i, j) * x[j];
      EXPECT_LT(std::abs(r), 1e-12 * n);
    }
    for (int j = 1; j <= n; ++j) A(n, j) = A(1, j) * (1.0 + 1e-15 * (j % 2));
    EXPECT_EQ(SOLVEJD(x.data(), A, b.data(), n), n == 1); // no pivot below 1e-20: the check tells
  }
  A(1, 1) = 2.0;
  A(1, 2) = A(2, 1) = 0.0;
  for (double pivot : {1e-21, 1e-20, 1.01e-20}) {
    A(2, 2) = pivot;
    EXPECT_EQ(SOLVEJD(x.data(), A, b.data(), 2), pivot > 1e-20);
  }
}
