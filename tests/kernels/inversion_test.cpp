#include "kernels/inversion.h"

#include "support/child.h"
#include "support/line_matrices.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

TEST(Inversion, RandomMatricesOfAnyOrderAndInPlace) {
  static LineMatrix A, R;
  std::mt19937 random(21);
  for (int n : {1, 2, 3, 10, 49}) {
    fillNaN(A);
    fillNaN(R);
    fillRandom(A, n, n, random);
    EXPECT_FALSE(INVCJD(R, A, n));
    EXPECT_TRUE(onlyCornerSet(R, n)) << n;
    EXPECT_LT(distanceFromInverse(A, R, n), 1e-11) << n;
    EXPECT_LT(distanceFromInverse(R, A, n), 1e-11) << n;
    EXPECT_FALSE(INVCJD(A, A, n));
    for (int j = 1; j <= n; ++j) {
      for (int i = 1; i <= n; ++i) ASSERT_EQ(A(i, j), R(i, j));
    }
  }
}

TEST(Inversion, LargestOrder) {
  static SquareStore<Complex, MAXINV> A, R;
  std::mt19937 random(22);
  fillRandom(A, MAXINV, MAXINV, random);
  EXPECT_FALSE(INVCJD(R, A, MAXINV));
  EXPECT_LT(distanceFromInverse(A, R, MAXINV), 1e-10);
}

TEST(Inversion, IsExactWhereItCanBe) {
  static LineMatrix A, R;
  const int n = 5, image[] = {3, 5, 1, 2, 4};
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) A(i, j) = image[j - 1] == i ? Complex(0.0, 4.0) : 0.0;
  }
  EXPECT_FALSE(INVCJD(R, A, n));
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i)
      EXPECT_EQ(R(i, j), image[i - 1] == j ? Complex(0.0, -0.25) : 0.0) << i << j;
  }
}

TEST(Inversion, StatusOfWhatIsNoInverse) {
  static LineMatrix A, R;
  for (int n : {3, 14}) {
    for (int j = 1; j <= n; ++j) { // Hilbert's matrix, condition 5e2 and 6e17
      for (int i = 1; i <= n; ++i) A(i, j) = 1.0 / (i + j - 1);
    }
    EXPECT_EQ(INVCJD(R, A, n), n == 14);
    EXPECT_TRUE(std::isfinite(std::abs(R(1, 1))));
  }
  A(1, 1) = std::nan("");
  EXPECT_TRUE(INVCJD(R, A, 3));
}

TEST(Inversion, SingularMatrixEndsTheRun) {
  const auto diagonal = [](double last) {
    static LineMatrix A;
    A(1, 1) = 1.0;
    A(2, 2) = last;
    INVCJD(A, A, 2);
  };
  EXPECT_EQ(runChild([&] { diagonal(1.01e-50); }).status, 0);
  for (double last : {0.0, 0.99e-50}) {
    const ChildResult r = runChild([&] { diagonal(last); });
    const std::string stars(43, '*');
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.console,
              lines({" ", stars, "Corvo.exe: ERROR", "Error in INVCJD. Singularity occurs",
                     "Verify Transmission line data", stars, "QUENT Ending!"}));
  }
}

TEST(Solution, ThresholdOfThePivots) {
  static LineMatrix A;
  const Complex b[2] = {3.0, 4.0};
  for (double last : {1e-21, 1e-20, 1.01e-20}) {
    Complex x[2] = {};
    A(1, 1) = 2.0;
    A(2, 2) = last;
    EXPECT_EQ(SOLVEJD(x, A, b, 2), last <= 1e-20);
    if (last > 1e-20) {
      EXPECT_EQ(x[0], 1.5);
    }
  }
}

TEST(Solution, SolvesAndChecks) {
  static LineMatrix A;
  Table<Complex, LDMAT> x, b;
  std::mt19937 random(23);
  for (int n : {1, 4, 49}) {
    fillNaN(A);
    fillRandom(A, n, n, random);
    b.fill({1.0, -2.0});
    EXPECT_FALSE(SOLVEJD(x.data(), A, b.data(), n));
    for (int i = 1; i <= n; ++i) {
      Complex r = -b[i];
      for (int j = 1; j <= n; ++j) r += A(i, j) * x[j];
      EXPECT_LT(std::abs(r), 1e-12 * n);
    }
    if (n == 1) continue;
    for (int j = 1; j <= n; ++j) A(n, j) = A(1, j) * (1.0 + 1e-15 * (j % 2));
    EXPECT_TRUE(SOLVEJD(x.data(), A, b.data(), n)); // no pivot is below 1e-20: the check tells
  }
}
