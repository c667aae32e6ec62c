// Quadratic programs with solutions known by hand.
#include "passivity/quadratic_program.h"

#include <gtest/gtest.h>
#include <numeric>

using namespace lcp;

namespace {

using Reals = std::vector<double>;

struct Problem {
  std::vector<Reals> G;
  Reals g;
  std::vector<Reals> A;
  Reals b;
};

// Solves the program in stores wider than the matrices, with NaN around them.
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
      // The quotients of all pairs make a step too short: feasible, but the minimum is (-2, 1/2).
      {{{{2, 0}, {0, 1}}, {0, 0}, {{0, -2}, {1, 0}, {3, 1}}, {-1, -2, -4}}, true, {-2, 0.75}},
      // A constraint is dropped and added again.
      {{{{1, 0, 0}, {0, 1, 0}, {0, 0, 3}},
        {0, 0, 0},
        {{0, 1, -2}, {-1, 3, -2}, {-1, 0, 3}, {3, -1, 2}},
        {-3, -3, 2, -3}},
       true,
       {-2, -3, 0}},
      {{{{1, 0, 0}, {0, 2, 0}, {0, 0, 2}}, // dropped among others, which turn
        {0, 0, 0},
        {{3, -1, 3}, {2, 3, -2}, {-2, -1, 0}, {1, 3, 2}},
        {2, -4, 1, -4}},
       true,
       {0.5, -2, -0.5}},
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
