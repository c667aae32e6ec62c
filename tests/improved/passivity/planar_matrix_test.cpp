// Products, factors and solutions against their definitions, at orders beside whole registers.
#include "improved/passivity/planar_matrix.h"

#include "support/overhead_lines.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

TEST(PlanarMatrix, FactorsSolutionsAndProductsAreThose) {
  LineNumbers numbers(5);
  for (const int n : {1, 3, 4, 5, 17, 48}) {
    PlanarMatrix A(n), AT(n), W(n), L(n), B(n), X(n), LX(n);
    for (int c = 1; c <= n; ++c) {
      for (int r = 1; r <= n; ++r) {
        A.set(r, c, {numbers.between(-1, 1), numbers.between(-1, 1)});
        B.set(r, c, {numbers.between(-1, 1), numbers.between(-1, 1)});
      }
    }
    adjoint(AT, A);
    multiply(W, A, AT);
    ASSERT_TRUE(factorise(L, W, 0.5)) << n;
    X = B;
    solveLower(L, X);
    for (int c = 1; c <= n; ++c) {
      for (int r = 1; r <= n; ++r) {
        Complex w = r == c ? -0.5 : 0.0, plain = 0, b = 0;
        for (int k = 1; k <= n; ++k) plain += A(r, k) * std::conj(A(c, k));
        for (int k = 1; k <= std::min(r, c); ++k) w += L(r, k) * std::conj(L(c, k));
        for (int k = 1; k <= r; ++k) b += L(r, k) * X(k, c);
        EXPECT_LT(std::abs(W(r, c) - plain), 1e-13 * n) << n;
        EXPECT_LT(std::abs(W(r, c) - w), 1e-12 * n) << n;
        EXPECT_LT(std::abs(B(r, c) - b), 1e-12 * n) << n;
      }
    }
    W.set(n, n, W(n, n) - 10.0 * n);
    EXPECT_FALSE(factorise(L, W, 0.5)) << n;
  }
}
