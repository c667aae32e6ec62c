// Programs with equalities and bounds against the conditions of their minimum.
#include "improved/passivity/active_set_program.h"

#include "support/overhead_lines.h"

#include <gtest/gtest.h>
#include <numeric>

using namespace lcp;
using namespace lcp::test;

namespace {

using Reals = std::vector<double>;

double dot(const Reals& a, const Reals& x) {
  return std::inner_product(a.begin(), a.end(), x.begin(), 0.0);
}

LeastVectorProgram programOf(const std::vector<Reals>& A, const Reals& b, int equalities) {
  LeastVectorProgram P{static_cast<int>(A.size()), equalities, {}, b};
  for (const Reals& row : A) {
    for (const Reals& column : A) P.M.push_back(dot(row, column));
  }
  return P;
}

} // namespace

// Conditions that hold only at the minimum of a convex program: feasible, y = A^T u, no bound with
// a negative multiplier, none with a multiplier that is not met exactly.
TEST(ActiveSetProgram, RandomProgramsEndAtTheirMinimum) {
  LineNumbers numbers(11);
  const auto random = [&](std::size_t n) {
    Reals row(n);
    for (double& v : row) v = numbers.between(-1, 1);
    return row;
  };
  int held = 0, dropped = 0;
  for (std::size_t k = 0; k < 400; ++k) {
    const std::size_t N = 3 + k % 6, rows = 1 + k % 23, equalities = std::min(k % 3, rows);
    const Reals inside = random(N); // meets all
    std::vector<Reals> A;
    Reals b;
    for (std::size_t i = 0; i < rows; ++i) {
      A.push_back(i > 3 && i % 5 == 0 ? A[i - 1] : random(N)); // some twice
      b.push_back(dot(A[i], inside) - (i < equalities ? 0 : numbers.between(0, 0.3)));
    }
    const LeastVector found = leastVector(programOf(A, b, static_cast<int>(equalities)));
    EXPECT_EQ(found.contradicted, 0) << k;
    Reals y(N);
    for (std::size_t i = 0; i < rows; ++i) {
      for (std::size_t j = 0; j < N; ++j) y[j] += found.multiplier[i] * A[i][j];
    }
    for (std::size_t i = 0; i < rows; ++i) {
      const double over = dot(A[i], y) - b[i], u = found.multiplier[i];
      EXPECT_GT(over, -1e-9) << k;
      EXPECT_LT(i < equalities || u != 0 ? over : 0, 1e-9) << k;
      EXPECT_TRUE(i < equalities || u >= 0) << k;
      held += u != 0;
      dropped += u == 0 && b[i] > 0; // would hold y = 0
    }
  }
  EXPECT_GT(held, 500);
  EXPECT_GT(dropped, 200);
}

TEST(ActiveSetProgram, WhatContradictsTheOthersIsLeftOut) {
  const LeastVector found =
      leastVector(programOf({{1, 0}, {1, 0}, {-1, 0}, {0, 2}}, {1, 3, 2, 4}, 1));
  EXPECT_EQ(found.contradicted, 2); // y1 = 1 forbids y1 >= 3 and y1 <= -2
  EXPECT_NEAR(found.multiplier[0], 1, 1e-14);
  EXPECT_NEAR(found.multiplier[3], 1, 1e-14); // y2 = 2
}
