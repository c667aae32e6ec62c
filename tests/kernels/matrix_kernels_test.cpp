#include "kernels/matrix_kernels.h"

#include "support/line_matrices.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

TEST(MatrixKernels, PivotColumnsKeepTheProduct) {
  static LineMatrix T, U;
  ModeInts P;
  std::mt19937 random(13);
  const int n = 7;
  fillNaN(T);
  fillNaN(U);
  fillRandom(T, n, n, random);
  T(2, 1) = {0.0, 5.0}; // equal moduli: the last row counts
  T(4, 1) = {-3.0, 4.0};
  for (int i = 1; i <= n; ++i) T(i, 3) = 0.0; // no pivot at all
  fillRandom(U, n, n, random);
  const Complex row1 = U(1, 2), row3 = U(3, 5), pivot = T(4, 1);
  PIVNORM(T, U, P, n);
  EXPECT_TRUE(onlyCornerSet(T, n));
  EXPECT_EQ(P[1], 4);
  EXPECT_EQ(P[3], n);
  EXPECT_EQ(U(1, 2), row1 * pivot);
  EXPECT_EQ(U(3, 5), row3);
  for (int e = 0; e < n * n; ++e) EXPECT_LE(std::abs(T(1 + e / n, 1 + e % n)), 1.0 + 1e-15);
  for (int j : {1, 2, 4, 5, 6, 7}) EXPECT_EQ(T(P[j], j), 1.0);
  Complex &held = T(P[2], 2), &beside = T(P[2] % n + 1, 2);
  const double size = std::abs(beside);
  for (const Complex start : {Complex(-0.6, 0.8), Complex(0.0)}) { // the last has no direction
    held = start;
    COLROT(T, P, n);
    EXPECT_NEAR(std::abs(held - std::abs(start)), 0.0, 1e-15);
    EXPECT_NEAR(std::abs(beside), size, 1e-15);
  }
}
