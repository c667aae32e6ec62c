// Least squares: residuals and limits, with leading dimensions wider than the problem and NaN
// around it. The eigenvalues and singular values are tested by the fits that use them.
#include "fit/lapack.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

using namespace lcp;

namespace {

constexpr double EPS = std::numeric_limits<double>::epsilon();

// An m by n matrix of random numbers in a store with room below, NaN where nothing of it stands.
struct Block {
  int m, n, ld;
  std::vector<double> elements;

  Block(int rows, int columns, int leading, unsigned seed)
      : m(rows), n(columns), ld(leading),
        elements(static_cast<std::size_t>(leading) * static_cast<std::size_t>(columns),
                 std::nan("")) {
    std::mt19937 engine(seed);
    std::uniform_real_distribution<double> number(-1.0, 1.0);
    for (int j = 1; j <= n; ++j) {
      for (int i = 1; i <= m; ++i) (*this)(i, j) = number(engine);
    }
  }
  RView view() { return {elements.data(), ld}; }
  double& operator()(int i, int j) { return view()(i, j); }
};

// Largest element of A^T (A x - b) of column c: zero for a least-squares solution.
double alongColumns(Block& A, Block& X, Block& B, int c) {
  std::vector<double> r;
  for (int i = 1; i <= A.m; ++i) {
    r.push_back(-B(i, c));
    for (int j = 1; j <= A.n; ++j) r.back() += A(i, j) * X(j, c);
  }
  double most = 0;
  for (int j = 1; j <= A.n; ++j) {
    double sum = 0;
    for (int i = 1; i <= A.m; ++i) sum += A(i, j) * r[static_cast<std::size_t>(i - 1)];
    most = std::max(most, std::abs(sum));
  }
  return most;
}

} // namespace

TEST(LeastSquares, ResidualIsOrthogonalToTheColumns) {
  struct Shape {
    int m, n, nrhs;
  };
  // The last two ask for more work numbers than a fit with one set of poles.
  for (const auto& [m, n, nrhs] : {Shape{1, 1, 1},
                                   {12, 5, 1},
                                   {30, 30, 4},
                                   {212, 42, 9},
                                   {8, 20, 2},
                                   {40, 2500, 1},
                                   {16, 4, LSRHS}}) {
    const int ldb = std::max(m, n) + 3;
    Block A(m, n, m + 2, 1), B(m, nrhs, ldb, 2), factored = A, X = B;
    EXPECT_EQ(DGELSY(factored.view(), X.view(), m, n, nrhs, 1e-14), std::min(m, n));
    for (int c : {1, nrhs}) {
      EXPECT_LT(alongColumns(A, X, B, c), 30 * EPS * (m + n)) << m << ' ' << n;
      EXPECT_TRUE(std::isnan(X(ldb, c)));
    }
  }
}

// The shortest of all solutions gives equal parts to equal columns; a column that is named in the
// pivots goes first though it is short.
TEST(LeastSquares, EqualAndNamedColumns) {
  Block A(20, 4, 25, 3), B(20, 1, 20, 4);
  for (int i = 1; i <= 20; ++i) A(i, 4) = A(i, 2);
  Block factored = A, X = B;
  EXPECT_EQ(DGELSY(factored.view(), X.view(), 20, 4, 1, 1e-12), 3);
  EXPECT_NEAR(X(2, 1), X(4, 1), 1e-13);
  EXPECT_LT(alongColumns(A, X, B, 1), 1e-13);
  ColumnInts JPVT;
  JPVT[3] = 1;
  for (int i = 1; i <= 20; ++i) A(i, 3) *= 1e-3; // by length it would go last
  DGELSY(A.view(), B.view(), 20, 4, 1, JPVT, 1e-12);
  EXPECT_EQ(JPVT[1], 3);
}

TEST(LeastSquares, ScaledColumnsGiveTheSameSolution) {
  Block A(30, 4, 33, 9), B(30, 1, 33, 10);
  for (int i = 1; i <= 30; ++i) A(i, 4) = 0;
  Block plain = A, X = B, scaled = A, Y = B;
  for (int i = 1; i <= 30; ++i) {
    scaled(i, 1) *= 1e9;
    scaled(i, 2) *= 1e-9;
  }
  ColumnReals SCALE;
  scaleColumns(scaled.view(), 30, 4, SCALE);
  EXPECT_EQ(SCALE[4], 1.0);
  DGELSY(scaled.view(), Y.view(), 30, 4, 1, 1e-12);
  unscaleRows(Y.view(), 4, 1, SCALE);
  DGELSY(plain.view(), X.view(), 30, 4, 1, 1e-12);
  EXPECT_NEAR(Y(1, 1) * 1e9, X(1, 1), 1e-13);
  EXPECT_NEAR(Y(2, 1) * 1e-9, X(2, 1), 1e-13);
  EXPECT_NEAR(Y(3, 1), X(3, 1), 1e-13);
  EXPECT_EQ(Y(4, 1), 0.0);
}
