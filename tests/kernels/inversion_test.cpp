#include "kernels/inversion.h"

#include "kernels/bordered_system.h"
#include "kernels/lane_vectors.h"
#include "kernels/matrix_kernels.h"
#include "support/child.h"
#include "support/dense_functions.h"
#include "support/line_matrices.h"

#include <gtest/gtest.h>

using namespace lcp::test;
using namespace lcp;

namespace {

// A matrix with eigenvalues at 1 and 1 + apart, solved at the first of them, and the same system
// written out. Returns whether it was found singular.
bool solveNearPair(int n, double apart, std::mt19937& random) {
  static SquareStore<Complex, BORDERED> J;
  static LineMatrix A, X, XI;
  static BorderedMatrix M;
  static BorderedSystems S; // other vectors in the other lanes
  static LaneVectors lanes;
  bool solved[LANES];
  ModeComplex x;
  Table<Complex, BORDERED> r, d, full;
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
  const int c = static_cast<int>(random() % LANES);
  for (int other = 0; other < LANES; ++other) {
    S.used[other] = other == c || n > 2;
    S.l.set(other, other == c ? 1.0 : 0.3);
    S.p[other] = other == c ? 1 : 1 + other % n;
    S.x.setLane(other, other == c ? x.data() : X.view().column(1 + other % n), n);
    S.r.setLane(other, r.data(), n + 1);
  }
  SOLVEBORDERED(lanes, solved, M, S);
  const bool singular = !solved[c];
  lanes.getLane(c, d.data(), n + 1);
  EXPECT_NE(singular, SOLVEJD(full.data(), J, r.data(), n + 1)) << n << ' ' << apart;
  const Dense j = corner(J, n + 1);
  for (std::size_t i = 0; i < j.size() && apart > 1e-7; ++i) { // residual at rounding level
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
    for (int e = 0; e < n * n; ++e) {
      const int i = e / n, j = e % n;
      A(1 + i, 1 + j) = 1.0 / (i + j + 1);
    }
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
  Complex x[2];
  for (double last : {1.01e-20, 0.99e-20}) { // a solve wants larger pivots
    A(2, 2) = last;
    EXPECT_EQ(SOLVEJD(x, A, std::array<Complex, 2>{1.0, 1.0}.data(), 2), last > 1e-20);
  }
}

TEST(BorderedSystem, VerdictIsThatOfTheFullElimination) {
  std::mt19937 random(31);
  for (int n : {1, 2, 3, 7, 20, 49}) {
    int singular = 0;
    for (int digits = 1; digits <= 18; ++digits) {
      const double apart = std::pow(10.0, -digits);
      for (int trial = 0; trial < 5; ++trial) singular += solveNearPair(n, apart, random);
    }
    EXPECT_TRUE(singular > 0 || n <= 2) << n;
  }
}

// A lane has the bits of a single vector, whatever the other lanes hold.
TEST(LaneVectors, HaveTheBitsOfOneVector) {
  static SquareStore<Complex, MAXINV> A, X;
  static LeftFactor F;
  static LaneVectors x, y;
  std::mt19937 random(41);
  for (int n : {1, 2, 3, 4, 7, 49, MAXINV}) {
    Table<Complex, MAXINV> one, lane;
    fillRandom(A, n, n, random);
    fillRandom(X, n, n, random);
    prepare(F, A, n);
    takeColumns(x, X, 1, std::min(n, LANES), n);
    if (n > 1) x.setLane(1, std::vector<Complex>(MAXINV, std::nan("")).data(), n);
    multiply(y, F, x);
    for (int c = 0; c < std::min(n, LANES); ++c) {
      multiply(one.data(), A, X.view().column(c + 1), n);
      y.getLane(c, lane.data(), n);
      for (int i = 1; i <= n; ++i) EXPECT_TRUE(c == 1 || lane[i] == one[i]) << n;
    }
  }
  const double parts[] = {0.0, -0.0, 1e-320, 3e-308, -1.0, 1.5, 1e160, -1e308, INFINITY};
  for (int e = 0; e < 81 * 81; ++e) {
    ComplexLanes z{};
    const Complex a(parts[e % 9], parts[e / 9 % 9]), b(parts[e / 81 % 9], parts[e / 729]);
    z.set(0, a);
    z.set(3, b);
    const auto same = [](Complex p, Complex q) {
      const auto equal = [](double s, double t) {
        return (std::isnan(s) && std::isnan(t)) || (s == t && std::signbit(s) == std::signbit(t));
      };
      return equal(p.real(), q.real()) && equal(p.imag(), q.imag());
    };
    EXPECT_TRUE(same(reciprocal(z).lane(0), 1.0 / a) && same(reciprocal(z).lane(3), 1.0 / b)) << e;
  }
}

TEST(MatrixKernels, PivotsOfColumns) {
  static LineMatrix T, U;
  ModeInts P;
  std::mt19937 random(13);
  fillRandom(T, 3, 3, random);
  U = T;
  T(2, 1) = {0.0, 5.0}; // equal moduli: the last row counts
  T(3, 1) = {-3.0, 4.0};
  for (int i = 1; i <= 3; ++i) T(i, 3) = 0.0; // no pivot at all
  const LineMatrix before = U;
  PIVNORM(T, U, P, 3);
  EXPECT_TRUE(P[1] == 3 && T(3, 1) == 1.0 && T(P[2], 2) == 1.0 && T(1, 3) == 0.0);
  EXPECT_TRUE(U(1, 2) == before(1, 2) * Complex(-3.0, 4.0) && U(3, 2) == before(3, 2));
  T(3, 1) = {-0.6, 0.8};
  T(P[2], 2) = 0.0; // of no direction
  const LineMatrix held = T;
  COLROT(T, P, 3);
  EXPECT_LT(std::abs(T(3, 1) - 1.0), 1e-15);
  EXPECT_NEAR(std::abs(T(2, 1)), std::abs(held(2, 1)), 1e-15);
  EXPECT_EQ(T(P[2] % 3 + 1, 2), held(P[2] % 3 + 1, 2));
}
