// Least squares, eigenvalues and singular values: residuals, orthogonality and limits, with leading
// dimensions wider than the problem and NaN around it.
#include "fit/lapack.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>
#include <vector>

using namespace lcp;

namespace {

constexpr double OUTSIDE = std::numeric_limits<double>::quiet_NaN();
constexpr double EPS = std::numeric_limits<double>::epsilon();

// An m by n matrix in a store with room below, NaN where nothing of it stands.
struct Block {
  int m;
  int n;
  int ld;
  std::vector<double> elements;

  Block(int rows, int columns, int leading)
      : m(rows), n(columns), ld(leading),
        elements(static_cast<std::size_t>(leading) * static_cast<std::size_t>(columns), OUTSIDE) {}
  RView view() { return {elements.data(), ld}; }
  double& operator()(int i, int j) { return view()(i, j); }
};

Block randomBlock(int m, int n, int ld, unsigned seed) {
  Block b(m, n, ld);
  std::mt19937 engine(seed);
  std::uniform_real_distribution<double> number(-1.0, 1.0);
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= m; ++i) b(i, j) = number(engine);
  }
  return b;
}

double largest(Block& b) {
  double most = 0;
  for (int j = 1; j <= b.n; ++j) {
    for (int i = 1; i <= b.m; ++i) most = std::max(most, std::abs(b(i, j)));
  }
  return most;
}

// A x - b for right-hand side c, x of n rows and b of m rows.
std::vector<double> residual(Block& A, Block& X, Block& B, int c) {
  std::vector<double> r;
  for (int i = 1; i <= A.m; ++i) {
    double sum = -B(i, c);
    for (int j = 1; j <= A.n; ++j) sum += A(i, j) * X(j, c);
    r.push_back(sum);
  }
  return r;
}

// Largest element of A^T r: zero for the residual of a least-squares solution.
double alongColumns(Block& A, const std::vector<double>& r) {
  double most = 0;
  for (int j = 1; j <= A.n; ++j) {
    double sum = 0;
    for (int i = 1; i <= A.m; ++i) sum += A(i, j) * r[static_cast<std::size_t>(i - 1)];
    most = std::max(most, std::abs(sum));
  }
  return most;
}

struct Shape {
  int m;
  int n;
  int nrhs;
};

} // namespace

TEST(LeastSquares, ResidualIsOrthogonalToTheColumns) {
  // The last two ask for more work numbers than a fit with one set of poles.
  for (const auto& [m, n, nrhs] : {Shape{1, 1, 1},
                                   {12, 5, 1},
                                   {30, 30, 4},
                                   {212, 42, 9},
                                   {8, 20, 2},
                                   {40, 2500, 1},
                                   {16, 4, LSRHS}}) {
    SCOPED_TRACE(std::to_string(m) + " by " + std::to_string(n));
    const int ldb = std::max(m, n) + 3;
    Block A = randomBlock(m, n, m + 2, 1);
    Block B = randomBlock(m, nrhs, ldb, 2);
    Block factored = A;
    Block X = B;
    EXPECT_EQ(DGELSY(factored.view(), X.view(), m, n, nrhs, 1e-14), std::min(m, n));
    for (int c : {1, nrhs}) {
      const std::vector<double> r = residual(A, X, B, c);
      EXPECT_LT(alongColumns(A, r), 30 * EPS * (m + n) * largest(A));
      for (int i = std::max(m, n) + 1; i <= ldb; ++i) EXPECT_TRUE(std::isnan(X(i, c)));
    }
  }
}

TEST(LeastSquares, EqualColumnsShareTheSolution) {
  // The shortest of all solutions gives equal parts to equal columns.
  Block A = randomBlock(20, 4, 25, 3);
  for (int i = 1; i <= 20; ++i) A(i, 4) = A(i, 2);
  Block B = randomBlock(20, 1, 20, 4);
  Block factored = A;
  Block X = B;
  EXPECT_EQ(DGELSY(factored.view(), X.view(), 20, 4, 1, 1e-12), 3);
  EXPECT_NEAR(X(2, 1), X(4, 1), 1e-13);
  EXPECT_LT(alongColumns(A, residual(A, X, B, 1)), 1e-13);
}

TEST(LeastSquares, ColumnsNamedInThePivotsGoFirst) {
  Block A = randomBlock(10, 4, 10, 7);
  for (int i = 1; i <= 10; ++i) A(i, 3) *= 1e-3; // by length it would go last
  Block B = randomBlock(10, 1, 10, 8);
  Block freeA = A;
  Block freeB = B;
  ColumnInts JPVT;
  DGELSY(freeA.view(), freeB.view(), 10, 4, 1, JPVT, 1e-14);
  EXPECT_EQ(JPVT[4], 3);
  JPVT.fill(0);
  JPVT[3] = 1;
  DGELSY(A.view(), B.view(), 10, 4, 1, JPVT, 1e-14);
  EXPECT_EQ(JPVT[1], 3);
  for (int j = 1; j <= 4; ++j) EXPECT_NEAR(B(j, 1), freeB(j, 1), 1e-12 * std::abs(freeB(j, 1)));
}

TEST(LeastSquares, ScaledColumnsGiveTheSameSolution) {
  Block A = randomBlock(30, 4, 33, 9);
  for (int i = 1; i <= 30; ++i) {
    A(i, 1) *= 1e9;
    A(i, 2) *= 1e-9;
    A(i, 4) = 0;
  }
  Block scaled = A;
  ColumnReals SCALE;
  scaleColumns(scaled.view(), 30, 4, SCALE);
  for (int j = 1; j <= 3; ++j) {
    double sum = 0;
    for (int i = 1; i <= 30; ++i) {
      sum += scaled(i, j) * scaled(i, j);
      EXPECT_NEAR(scaled(i, j) * SCALE[j], A(i, j), 4 * EPS * std::abs(A(i, j)));
    }
    EXPECT_NEAR(sum, 1.0, 60 * EPS);
  }
  EXPECT_EQ(SCALE[4], 1.0);
  EXPECT_EQ(scaled(7, 4), 0.0);

  Block X(4, 2, 5); // the solution of the scaled problem is what the columns are worth
  for (int j = 1; j <= 4; ++j) {
    X(j, 1) = SCALE[j];
    X(j, 2) = 2 * SCALE[j];
  }
  unscaleRows(X.view(), 4, 2, SCALE);
  for (int j = 1; j <= 4; ++j) {
    EXPECT_EQ(X(j, 1), 1.0);
    EXPECT_EQ(X(j, 2), 2.0);
  }
  EXPECT_TRUE(std::isnan(X(5, 1)));
}

TEST(Eigenvalues, OfBlocksAndTriangles) {
  // Block diagonal [a b; -b a] and reals, mixed by an upper triangle, which moves no eigenvalue.
  Block A = randomBlock(5, 5, 8, 10);
  for (int j = 1; j <= 5; ++j) {
    for (int i = j; i <= 5; ++i) A(i, j) = 0;
  }
  A(1, 1) = -3;
  A(2, 2) = A(3, 3) = -0.5;
  A(2, 3) = 40;
  A(3, 2) = -40;
  A(4, 4) = 7;
  A(5, 5) = 0;
  Table<double, NPMAX> WR;
  Table<double, NPMAX> WI;
  DGEEV(A.view(), 5, WR, WI);
  std::vector<double> reals;
  int pairs = 0;
  for (int m = 1; m <= 5; ++m) {
    if (WI[m] == 0) {
      reals.push_back(WR[m]);
    } else if (WI[m] > 0) {
      ++pairs;
      EXPECT_NEAR(WR[m], -0.5, 1e-12);
      EXPECT_NEAR(WI[m], 40, 1e-12);
      EXPECT_EQ(WR[m + 1], WR[m]);
      EXPECT_EQ(WI[m + 1], -WI[m]);
    }
  }
  std::sort(reals.begin(), reals.end());
  EXPECT_EQ(pairs, 1);
  ASSERT_EQ(reals.size(), 3U);
  EXPECT_NEAR(reals[0], -3, 1e-13);
  EXPECT_NEAR(reals[1], 0, 1e-13);
  EXPECT_NEAR(reals[2], 7, 1e-13);
}

TEST(SingularValues, RebuildTheMatrix) {
  for (const auto& [m, n] : {std::pair{9, 4}, {4, 9}, {1, 6}, {60, 60}}) {
    SCOPED_TRACE(std::to_string(m) + " by " + std::to_string(n));
    const int k = std::min(m, n);
    Block A = randomBlock(m, n, m + 1, 11);
    Block work = A;
    Block U(m, k, m + 2);
    Block VT(k, n, k + 2);
    static Table<double, LSROWS> S;
    DGESVD(work.view(), m, n, S, U.view(), VT.view());
    for (int j = 1; j <= n; ++j) {
      for (int i = 1; i <= m; ++i) {
        double sum = 0;
        for (int l = 1; l <= k; ++l) sum += S[l] * U(i, l) * VT(l, j);
        EXPECT_NEAR(sum, A(i, j), 30 * EPS * S[1]);
      }
    }
    for (int l = 1; l < k; ++l) EXPECT_GE(S[l], S[l + 1]);
  }
}
