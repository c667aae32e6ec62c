// Newton steps of single modes, and the order of modes; whole walks are tested with the first loop.
#include "modal/newton.h"

#include "support/line_matrices.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

int updates(int k) { return SOLVEDATA.first.NRITER[k]; }
Complex& LSTEP(int k) { return SOLVEDATA.first.LSTEP[k]; }

// A diagonal matrix; mode k is guessed as L(k) and column k of X, with element k fixed.
struct Single {
  LineMatrix A, TI, X;
  ModeComplex EIG, L;
  ModeInts P;
  double s = 0.0;

  Single() {
    for (int k = 1; k <= LDMAT; ++k) X(k, P[k] = k) = 1.0;
  }
  bool solve(std::initializer_list<double> entries) {
    int n = 0;
    A = {};
    for (double a : entries) {
      ++n;
      A(n, n) = a;
    }
    return NREIG(EIG, TI, L, X, A, s, P, n);
  }
};

} // namespace

TEST(Newton, StepsAreLimited) {
  Single S;
  // Eigenvalue 1 from 1.2 in steps of 5 %: 1.14, 1.083, 1.02885, 1.
  S.L[1] = 1.2;
  EXPECT_TRUE(S.solve({7.0}));
  EXPECT_EQ(updates(1), 4);
  EXPECT_NEAR(S.EIG[1].real(), 7.0, 1e-12);
  EXPECT_EQ(S.s, 7.0);
  // An element of the vector from 0.11 to 0 in steps of 0.025: the fifth step is a full one.
  S.L[1] = 0.5;
  S.X(2, 1) = {0.0, 0.11};
  S.L[2] = 1.5;
  EXPECT_TRUE(S.solve({1.0, 3.0}));
  EXPECT_EQ(updates(1), 5);
  EXPECT_EQ(updates(2), 1);
  EXPECT_EQ(LSTEP(1), 0.5);
}

// A zero vector has a singular Jacobian at any eigenvalue, so only the eigenvalue moves.
TEST(Newton, ASingularStepMovesTheEigenvalue) {
  Single S;
  S.X(1, 1) = 0.0;
  S.L[1] = 0.5;
  S.TI(1, 1) = 42.0;
  LSTEP(1) = {0.2, 0.3};
  EXPECT_FALSE(S.solve({1.0}));
  EXPECT_LT(std::abs(LSTEP(1) - std::pow(1.01, MAXNEWTON) * Complex(0.2, 0.3)), 1e-13);
  EXPECT_TRUE(S.EIG[1] == LSTEP(1) && S.TI(1, 1) == 42.0); // no vector was found
}

TEST(ModeTracking, RestoresOrderAndSigns) {
  static LineMatrix V, TI, TIINV;
  ModeComplex EIG;
  std::mt19937 random(52);
  const int n = 5, from[] = {4, 2, 5, 1, 3};
  const double sign[] = {-1.0, 1.0, 1.0, -1.0, -1.0};
  fillNaN(TI);
  fillNaN(TIINV);
  fillRandom(V, n, n, random);
  for (int k = 1; k <= n; ++k) {
    for (int i = 1; i <= n; ++i) TI(i, k) = sign[k - 1] * V(i, from[k - 1]) + 1e-3 * i;
    EIG[k] = 10.0 * from[k - 1];
  }
  INVCJD(TIINV, TI, n);
  MTRACK(TI, TIINV, V, EIG, n);
  EXPECT_TRUE(onlyCornerSet(TI, n));
  EXPECT_LT(distanceFromInverse(TIINV, TI, n), 1e-13);
  for (int k = 1; k <= n; ++k) {
    EXPECT_EQ(EIG[k], 10.0 * k);
    for (int i = 1; i <= n; ++i) EXPECT_LT(std::abs(TI(i, k) - V(i, k)), 6e-3) << k;
  }
  // Among equally near vectors the first one is taken; it is reversed, and is negated.
  for (int i = 1; i <= n; ++i) TI(i, 1) = TI(i, 2) = -V(i, 1);
  EIG[2] = 99.0;
  MTRACK(TI, TIINV, V, EIG, 2);
  EXPECT_EQ(EIG[1], 10.0);
  EXPECT_EQ(TI(1, 1), V(1, 1));
}
