// Vector fitting: partial fractions are recovered exactly; for other functions only the response is
// tested.
#include "fit/vector_fit.h"

#include "fit/delay_search.h"
#include "fit/scaled_columns.h"
#include "fit/series_fit.h"
#include "support/console_capture.h"
#include "support/description.h"
#include "support/sampled_functions.h"

#include <algorithm>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

constexpr double TIGHT = 1e-9;

// Curves and results of one fit; large, hence static.
struct Problem {
  SampleGrid G{1, 10, 2};
  ComplexCurve F;
  FunctionFit fit;
  FitErrors errors;
  PoleTable P;

  template <class Function>
  void sample(const Function& f, int NS = 61, double low = 0.5, double high = 5e4) {
    G = SampleGrid(low, high, NS);
    F = sampled(G, f);
  }
  FitSamples samples(int ASYMP, int STABLE = FLIPUNSTABLE) const {
    return {G.NS, 1, G.w, &F, G.weight, STABLE, ASYMP};
  }
  void start(int N) { startingPoles(P, N, G.w[1], G.w[G.NS]); }
  // Runs a number of passes from the starting poles.
  void run(int N, int ASYMP, int passes = 1, int STABLE = FLIPUNSTABLE) {
    start(N);
    VFITPASSES(passes, samples(ASYMP, STABLE), N, P, &fit, errors);
  }
};

Problem T;

void expectModel(const Rational& model, const FunctionFit& fit) {
  for (int m = 1; m <= model.N(); ++m) {
    const Complex p = model.poles[static_cast<std::size_t>(m - 1)];
    const Complex r = model.residues[static_cast<std::size_t>(m - 1)];
    // The poles of a pair may be in either order.
    const bool swapped = p.imag() * T.P[m].imag() < 0;
    EXPECT_LT(std::abs(T.P[m] - (swapped ? std::conj(p) : p)), TIGHT * std::abs(p)) << m;
    EXPECT_LT(std::abs(fit.R[m] - (swapped ? std::conj(r) : r)), TIGHT * std::abs(r)) << m;
  }
  EXPECT_NEAR(fit.D, model.D, TIGHT * std::abs(model.D) + 1e-9);
  EXPECT_NEAR(fit.E, model.E, TIGHT * std::abs(model.E) + (model.E == 0 ? 1e-12 : 0));
}

// Stable poles by magnitude, conjugates side by side with conjugate residues.
void expectSortedStablePairs(int N) {
  const PoleTable& R = T.fit.R;
  for (int m = 1; m <= N; ++m) {
    EXPECT_LE(T.P[m].real(), 0.0) << m;
    EXPECT_GE(std::abs(T.P[m]), m > 1 ? std::abs(T.P[m - 1]) : 0.0) << m;
    const bool pair = T.P[m].imag() != 0;
    EXPECT_TRUE(pair || R[m].imag() == 0) << m;
    if (!pair) continue;
    ++m;
    EXPECT_TRUE(m <= N && T.P[m] == std::conj(T.P[m - 1]) && R[m] == std::conj(R[m - 1])) << m;
  }
}

const Rational PAIR{{-2, {-30, 400}, {-30, -400}, -5e3}, {4, {20, -90}, {20, 90}, -3e4}, 0.7};

} // namespace

// One pass is enough from any starting poles, since sigma F is linear in the unknowns. Eleven
// decades need scaled columns, and three passes.
TEST(VectorFit, PartialFractionsComeBackInOnePass) {
  const Rational wide{{-1e-2, -1e2, {-2e5, 3e6}, {-2e5, -3e6}, -1e9},
                      {3e-2, 50, {4e5, 1e6}, {4e5, -1e6}, 2e9},
                      40,
                      1e-10};
  const struct {
    Rational model;
    int ASYMP;
  } cases[] = {{{{-70}, {5}, -0.2, 1e-3}, WITHPROPORTION},
               {{{{-1, 20}, {-1, -20}, {-900, 3e3}, {-900, -3e3}},
                 {{3, 1}, {3, -1}, {-50, 700}, {-50, -700}}},
                NOASYMPTOTE},
               {PAIR, WITHCONSTANT},
               {{PAIR.poles, PAIR.residues, 0.7, 2e-4}, WITHPROPORTION},
               {wide, WITHPROPORTION}};
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    const bool eleven = c.model.N() == 5;
    T.sample(c.model, eleven ? 140 : 61, eleven ? 1e-3 : 0.5, eleven ? 1e10 : 5e4);
    T.run(c.model.N(), c.ASYMP, eleven ? 3 : 1);
    expectModel(c.model, T.fit);
    expectSortedStablePairs(c.model.N());
    EXPECT_LT(T.errors.ERRNORM, TIGHT);
  }
  SCOPED_TRACE("from complex poles, and over the poles given");
  T.sample(PAIR);
  for (const int m : {1, 3})
    T.P[m + 1] = std::conj(T.P[m] = Complex(-1, 10) * std::pow(500, m / 2));
  VFIT(T.samples(WITHCONSTANT), 4, T.P, &T.fit, T.errors);
  expectModel(PAIR, T.fit);
  const PoleTable given = T.P;
  VFITPASSES(0, T.samples(WITHCONSTANT), 4, T.P, &T.fit, T.errors);
  EXPECT_EQ(T.P.entries, given.entries);
  expectModel(PAIR, T.fit);
}

TEST(VectorFit, UnstablePolesAreMirroredWhenAsked) {
  const Rational model{{-5, {40, 300}, {40, -300}, 2e3}, {1, {20, 3}, {20, -3}, 100}};
  T.sample(model, 50);
  T.run(4, NOASYMPTOTE, 1, KEEPUNSTABLE);
  expectModel(model, T.fit);
  const PoleTable kept = T.P;
  T.run(4, NOASYMPTOTE);
  for (int m = 1; m <= 4; ++m)
    EXPECT_EQ(T.P[m], Complex(-std::abs(kept[m].real()), kept[m].imag())) << m;
}

// More poles than the function has, more unknowns than rows, equal poles: the response is still
// right.
TEST(VectorFit, RankDeficientPassesEndWell) {
  for (const auto& [N, NS] : {std::pair(6, 61), {25, 61}, {20, 15}}) {
    T.sample(PAIR, NS);
    T.start(N);
    T.P[4] = T.P[3];
    VFITPASSES(3, T.samples(WITHCONSTANT), N, T.P, &T.fit, T.errors);
    EXPECT_LT(T.errors.ERRNORM, TIGHT) << N;
    expectSortedStablePairs(N);
  }
}

// The weight of a row applies to both of its sides.
TEST(VectorFit, WeightsCountByTheirMagnitude) {
  T.sample([](Complex s) { return std::exp(-1e-2 * std::sqrt(s)); });
  for (int k = 1; k <= T.G.NS; ++k) T.G.weight[k] = 1.0 + k % 3;
  T.run(4, WITHCONSTANT, 3);
  const PoleTable positive = T.P;
  const double D = T.fit.D;
  for (int k = 1; k <= T.G.NS; k += 2) T.G.weight[k] *= -1;
  T.run(4, WITHCONSTANT, 3);
  for (int m = 1; m <= 4; ++m) EXPECT_LT(std::abs(T.P[m] - positive[m]), 1e-6 * std::abs(T.P[m]));
  EXPECT_NEAR(T.fit.D, D, 1e-6);
}

// The delay of the function lies between the bounds, below both or above both.
TEST(DelaySearch, StaysBetweenItsBounds) {
  constexpr double TAU = 1e-3;
  T.sample([](Complex s) { return std::exp(-TAU * s) / (1.0 + s / 300.0); }, 101, 1, 1e4);
  const struct {
    double low, up, found;
  } cases[] = {{0.8, 1.2, 1}, {1.1, 1.4, 1.1}, {0.6, 0.9, 0.9}};
  for (const auto& c : cases) {
    DelayTable tried{};
    DelaySearch search{TAU * (c.low + c.up) / 2, 0.2 * TAU, 1e9, c.up * TAU, c.low * TAU};
    T.start(1);
    SEARCHDELAY(search, tried, T.samples(NOASYMPTOTE), 1, T.P, T.fit, T.errors);
    EXPECT_NEAR(search.tau / TAU, c.found, 1e-2);
    for (int i = 1; i <= DELAYITERATIONS; ++i) {
      EXPECT_GE(tried.tau[i], c.low * TAU) << i;
      EXPECT_LE(tried.tau[i], c.up * TAU) << i;
    }
  }
}

TEST(ScaledColumns, SquaresBeyondTheLargestNumber) {
  double a[] = {3e200, 4e200, 0, 0};
  ColumnReals lengths;
  scaleColumns({a, 2}, 2, 2, lengths);
  EXPECT_NEAR(lengths[1], 5e200, 1e185);
  EXPECT_NEAR(a[1], 0.8, 1e-15);
  EXPECT_EQ(lengths[2], 1); // a column of zeros
}

TEST(SeriesFit, ColumnsOfItsTableStandBelowEachOther) {
  for (const double err : {4.9e-6, 1e-5, 1e-3, 0.1}) { // the first with an exponent
    const auto rows = splitLines(consoleOf([&] { reportSeries(20, 0.01, err, 5); }));
    EXPECT_EQ(rows.at(3).rfind("Actual"), rows.at(2).rfind("Maximum") + 1) << rows.at(3);
  }
}
