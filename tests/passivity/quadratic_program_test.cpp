// Quadratic programs against solutions by hand and against sweeps over the multipliers.
#include "passivity/quadratic_program.h"

#include "support/overhead_lines.h"

#include <gtest/gtest.h>
#include <numeric>

using namespace lcp;
using namespace lcp::test;

namespace {

using Reals = std::vector<double>;

struct Problem {
  std::vector<Reals> G;
  Reals g;
  std::vector<Reals> A;
  Reals b;
};

// Solves it out of stores wider than the matrices, with NaN around them.
bool solve(const Problem& P, Reals& x) {
  SquareStore<double, 9> G, A;
  const std::size_t N = P.g.size(), M = P.b.size();
  for (std::size_t k = 0; k < 81; ++k) {
    const std::size_t i = k % 9, j = k / 9;
    G.elements[k] = i < N && j < N ? P.G[i][j] : std::nan("");
    A.elements[k] = i < M && j < N ? P.A[i][j] : std::nan("");
  }
  x.assign(N, 99.0);
  return QPDUAL(static_cast<int>(N), static_cast<int>(M), G, P.g.data(), A, P.b.data(), x.data());
}

double dot(const Reals& a, const Reals& x) {
  return std::inner_product(a.begin(), a.end(), x.begin(), 0.0);
}

double excess(const Problem& P, const Reals& x) {
  double worst = -1;
  for (std::size_t i = 0; i < P.b.size(); ++i) worst = std::max(worst, dot(P.A[i], x) - P.b[i]);
  return worst;
}

// For a diagonal G: the least point by sweeps over the multipliers; does not settle without one.
Reals leastPoint(const Problem& P) {
  Reals x(P.g), U(P.b.size());
  for (std::size_t l = 0; l < x.size(); ++l) x[l] /= -P.G[l][l];
  for (std::size_t k = 0; k < 2000 * U.size(); ++k) {
    const std::size_t i = k % U.size();
    Reals v(P.A[i]);
    for (std::size_t l = 0; l < x.size(); ++l) v[l] /= P.G[l][l];
    const double t = std::max(-U[i], (dot(P.A[i], x) - P.b[i]) / dot(P.A[i], v));
    U[i] += t;
    for (std::size_t l = 0; l < x.size(); ++l) x[l] -= t * v[l];
  }
  return x;
}

} // namespace

TEST(QuadraticProgram, SolutionsByHand) {
  const double TINY = 1.0000000036274937e-15, NaN = std::nan("");
  const std::vector<Reals> unit{{1, 0}, {0, 1}};
  const struct {
    Problem problem;
    bool solved;
    Reals x;
  } cases[] = {
      {{{{4, 1}, {1, 3}}, {1, 2}, {}, {}}, true, {-1 / 11., -7 / 11.}},
      {{{{4, 1}, {1, 3}}, {0, 0}, {{1, 1}}, {-1}}, true, {-0.4, -0.6}},
      {{unit, {0, 0}, {{1, 1}, {1, 1}, {2, 2}}, {-2, -2, -4}}, true, {-1, -1}},
      {{unit, {0, 0}, {{1, 0}, {0, 1}, {1, 1}}, {-1, -1, -2}}, true, {-1, -1}}, // three in a corner
      {{{{1}}, {0}, {{1}, {3}}, {-2, -4}}, true, {-2}},                         // one is dropped
      {{{{1}}, {0}, {{1}}, {-TINY}}, true, {0}},
      {{{{1}}, {0}, {{1}}, {-2 * TINY}}, true, {-2 * TINY}},
      {{unit, {0, 0}, {{1, 0}, {-1, 0}}, {-1, 0}}, false, {0, 0}}, // no point meets both
      {{unit, {0, 0}, {{0, 0}}, {-1}}, false, {0, 0}},
      // The quotients of all pairs make a step too short: feasible, but the least is (-2, 1/2).
      {{{{2, 0}, {0, 1}}, {0, 0}, {{0, -2}, {1, 0}, {3, 1}}, {-1, -2, -4}}, true, {-2, 0.75}},
      // A constraint is dropped and comes in again.
      {{{{1, 0, 0}, {0, 1, 0}, {0, 0, 3}},
        {0, 0, 0},
        {{0, 1, -2}, {-1, 3, -2}, {-1, 0, 3}, {3, -1, 2}},
        {-3, -3, 2, -3}},
       true,
       {-2, -3, 0}},
      {{{{NaN}}, {0}, {{1}}, {-1}}, false, {0}},
      {{{{1}}, {HUGE_VAL}, {{1}}, {-1}}, false, {0}},
  };
  for (const auto& [problem, solved, expected] : cases) {
    Reals x;
    SCOPED_TRACE(dot(problem.b, problem.b));
    EXPECT_EQ(solve(problem, x), solved);
    for (std::size_t i = 0; solved && i < x.size(); ++i)
      EXPECT_NEAR(x[i], expected[i], 1e-14 * std::sqrt(dot(expected, expected)));
  }
}

TEST(QuadraticProgram, RandomProgramsMeetTheirConstraints) {
  LineNumbers numbers(7);
  const auto random = [&](std::size_t n) {
    Reals row(n);
    for (double& v : row) v = numbers.between(-1, 1);
    return row;
  };
  int least = 0;
  for (std::size_t k = 0; k < 300; ++k) {
    const std::size_t N = k % 4 + 1, M = k % 7;
    Problem P{std::vector<Reals>(N, Reals(N)), random(N), {}, random(M)};
    for (std::size_t i = 0; i < M; ++i) P.A.push_back(random(N));
    for (std::size_t i = 0; i < N; ++i) P.G[i][i] = numbers.between(0.1, 2);
    const Reals best = leastPoint(P);
    Reals x;
    if (!solve(P, x)) {
      EXPECT_GT(excess(P, best), 1e-4) << k;
      continue;
    }
    EXPECT_LT(excess(P, x), 1e-12) << k;
    bool same = true;
    for (std::size_t i = 0; i < N; ++i) same = same && std::fabs(x[i] - best[i]) < 1e-6;
    EXPECT_TRUE(same || M > 2) << k; // of two constraints no two multipliers are in the way
    least += same;
  }
  EXPECT_GT(least, 200);
}
