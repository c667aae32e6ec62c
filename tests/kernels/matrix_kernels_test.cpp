#include "kernels/matrix_kernels.h"

#include "support/line_matrices.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

TEST(MatrixKernels, UnitColumns) {
  static LineMatrix A;
  static RealMatrix R;
  fillNaN(A);
  const Complex given[] = {3.0, {0.0, 4.0}, 0.0, {0.0, 2e-31}, 0.0, 0.0, 0.0, 1e-20, 0.0};
  for (int e = 0; e < 9; ++e) A(1 + e % 3, 1 + e / 3) = given[e];
  REALPT(R, A, 3);
  RCOLNORM(R, R, 3);
  COLNORM(A, A, 3);
  EXPECT_TRUE(onlyCornerSet(A, 3));
  EXPECT_EQ(A(1, 1), 3.0 * (1.0 / 5.0));
  EXPECT_EQ(A(2, 1), Complex(0.0, 4.0 * (1.0 / 5.0)));
  EXPECT_EQ(A(1, 2), Complex(0.0, 2e-31)); // too short to be scaled
  EXPECT_DOUBLE_EQ(A(2, 3).real(), 1.0);
  EXPECT_EQ(R(1, 1), 1.0);
  EXPECT_EQ(R(1, 2), 0.0); // a zero column stays
  A(1, 1) = {1e-19, -1.1e-19};
  ZEROSM(A, 3, 1e-19);
  EXPECT_EQ(A(1, 1), Complex(0.0, -1.1e-19));
}

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
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) EXPECT_LE(std::abs(T(i, j)), 1.0 + 1e-15);
    EXPECT_TRUE(j == 3 || T(P[j], j) == 1.0);
  }
  Complex &held = T(P[2], 2), &beside = T(P[2] % n + 1, 2);
  const double size = std::abs(beside);
  for (const Complex start : {Complex(-0.6, 0.8), Complex(0.0)}) { // the last has no direction
    held = start;
    COLROT(T, P, n);
    EXPECT_NEAR(std::abs(held - std::abs(start)), 0.0, 1e-15);
    EXPECT_NEAR(std::abs(beside), size, 1e-15);
  }
}
