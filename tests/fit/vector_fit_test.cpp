// Vector fitting: functions that are partial fractions come back exactly; on others only responses
// count, since their poles are not unique.
#include "fit/vector_fit.h"

#include "fit/scaled_columns.h"
#include "support/console_capture.h"
#include "support/sampled_functions.h"

#include <algorithm>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

constexpr double TIGHT = 1e-9;

// Curves and results of one fit; large, so they live in static store.
struct Problem {
  SampleGrid G{1, 10, 2};
  ComplexCurve F[2];
  FunctionFit fits[2];
  FitErrors errors;
  PoleTable P;

  template <class Function>
  void sample(const Function& f, int NS = 61, double low = 0.5, double high = 5e4) {
    G = SampleGrid(low, high, NS);
    F[0] = sampled(G, f);
  }
  FitSamples samples(int ASYMP, int STABLE = FLIPUNSTABLE, int NF = 1) const {
    return {G.NS, NF, G.w, F, G.weight, STABLE, ASYMP};
  }
  void start(int N) { startingPoles(P, N, G.w[1], G.w[G.NS]); }
  // From starting poles, so many passes.
  void fit(int N, int ASYMP, int passes = 1, int STABLE = FLIPUNSTABLE) {
    start(N);
    VFITPASSES(passes, samples(ASYMP, STABLE), N, P, fits, errors);
  }
};

Problem T;

void expectModel(const Rational& model, const FunctionFit& fit) {
  for (int m = 1; m <= model.N(); ++m) {
    const Complex p = model.poles[static_cast<std::size_t>(m - 1)];
    const Complex r = model.residues[static_cast<std::size_t>(m - 1)];
    // The two of a pair may stand in either order.
    const bool swapped = p.imag() * T.P[m].imag() < 0;
    EXPECT_LT(std::abs(T.P[m] - (swapped ? std::conj(p) : p)), TIGHT * std::abs(p)) << m;
    EXPECT_LT(std::abs(fit.R[m] - (swapped ? std::conj(r) : r)), TIGHT * std::abs(r)) << m;
  }
  EXPECT_NEAR(fit.D, model.D, TIGHT * (1 + std::abs(model.D)));
  EXPECT_NEAR(fit.E, model.E, std::max(1e-12, TIGHT * std::abs(model.E)));
}

void expectSortedStablePairs(int N) {
  PoleClasses CINDEX;
  classifyPoles(T.P, N, CINDEX);
  for (int m = 1; m <= N; ++m) {
    EXPECT_LE(T.P[m].real(), 0.0) << m;
    EXPECT_GE(std::abs(T.P[m]), m > 1 ? std::abs(T.P[m - 1]) : 0.0) << m;
    if (CINDEX[m] == REALPOLE) {
      EXPECT_EQ(T.fits[0].R[m].imag(), 0.0) << m;
    } else if (CINDEX[m] == PAIRFIRST) {
      EXPECT_EQ(T.P[m + 1], std::conj(T.P[m])) << m;
      EXPECT_EQ(T.fits[0].R[m + 1], std::conj(T.fits[0].R[m])) << m;
    }
  }
  EXPECT_NE(CINDEX[N], PAIRFIRST);
}

const Rational PAIR{{-2, {-30, 400}, {-30, -400}, -5e3}, {4, {20, -90}, {20, 90}, -3e4}, 0.7};

// Surge impedance of a lossy line: no partial fractions with few poles.
Complex surgeImpedance(Complex s) {
  const double w = s.imag();
  const Complex z(0.05 + 1e-4 * std::sqrt(w), w * 1e-6 + 1e-4 * std::sqrt(w));
  return std::sqrt(z / Complex(3e-10, w * 1e-11));
}

} // namespace

TEST(StartingPoles, EvenInTheLogarithm) {
  EXPECT_EQ(LOGPOLE(1, 3.0, 300.0, 1), 3.0);
  PoleTable P;
  startingPoles(P, 8, 0.1, 1e6);
  for (int m = 1; m <= 8; ++m) {
    EXPECT_NEAR(P[m].real() / std::pow(10, m - 2), -1.0, 1e-14);
    EXPECT_EQ(P[m].imag(), 0.0);
  }
}

// From whatever poles it starts, one pass is enough: sigma F is linear in the unknowns.
TEST(VectorFit, PartialFractionsComeBackInOnePass) {
  const struct {
    Rational model;
    int ASYMP;
  } cases[] = {{{{-70}, {5}, -0.2, 1e-3}, WITHPROPORTION},
               {{{{-1, 20}, {-1, -20}, {-900, 3e3}, {-900, -3e3}},
                 {{3, 1}, {3, -1}, {-50, 700}, {-50, -700}}},
                NOASYMPTOTE},
               {PAIR, WITHCONSTANT},
               {{PAIR.poles, PAIR.residues, 0.7, 2e-4}, WITHPROPORTION}};
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    T.sample(c.model);
    T.fit(c.model.N(), c.ASYMP);
    expectModel(c.model, T.fits[0]);
    expectSortedStablePairs(c.model.N());
    EXPECT_LT(T.errors.ERRNORM, TIGHT);
  }
  SCOPED_TRACE("from complex poles");
  T.sample(PAIR);
  const Complex first(-1, 10), second(-500, 2e4);
  T.P[1] = first;
  T.P[2] = std::conj(first);
  T.P[3] = second;
  T.P[4] = std::conj(second);
  VFITPASSES(1, T.samples(WITHCONSTANT), 4, T.P, T.fits, T.errors);
  expectModel(PAIR, T.fits[0]);
  SCOPED_TRACE("over the poles given");
  const PoleTable given = T.P;
  VFITPASSES(0, T.samples(WITHCONSTANT), 4, T.P, T.fits, T.errors);
  EXPECT_EQ(T.P.entries, given.entries);
  expectModel(PAIR, T.fits[0]);
}

TEST(VectorFit, ElevenDecadesNeedTheColumnScaling) {
  const Rational model{{-1e-2, -1e2, {-2e5, 3e6}, {-2e5, -3e6}, -1e9},
                       {3e-2, 50, {4e5, 1e6}, {4e5, -1e6}, 2e9},
                       40,
                       1e-10};
  T.sample(model, 140, 1e-3, 1e10);
  T.fit(5, WITHPROPORTION, 3);
  expectModel(model, T.fits[0]);
  EXPECT_NEAR(T.fits[0].E, model.E, TIGHT * model.E);
}

TEST(VectorFit, UnstablePolesAreMirroredWhenAsked) {
  const Rational model{{-5, {40, 300}, {40, -300}, 2e3}, {1, {20, 3}, {20, -3}, 100}};
  T.sample(model, 50);
  T.fit(4, NOASYMPTOTE, 1, KEEPUNSTABLE);
  expectModel(model, T.fits[0]);
  const PoleTable kept = T.P;
  T.fit(4, NOASYMPTOTE);
  for (int m = 1; m <= 4; ++m)
    EXPECT_EQ(T.P[m], Complex(-std::abs(kept[m].real()), kept[m].imag())) << m;
}

// Least squares: a sample of weight 3 is one that stands nine times.
TEST(VectorFit, SamplesCountBySquaresOfTheirWeights) {
  T.sample(surgeImpedance, 90, 3, 6e6);
  T.G.weight[90] = 3;
  T.fit(4, WITHCONSTANT, 3);
  EXPECT_GT(T.errors.ERRNORM, 1e-4); // a fit with something to deviate
  const PoleTable P = T.P, R = T.fits[0].R;
  T.G.weight[90] = 1;
  T.G.NS = 98;
  for (int k = 91; k <= 98; ++k) {
    T.G.w[k] = T.G.w[90];
    T.G.weight[k] = 1;
    T.F[0][k] = T.F[0][90];
  }
  T.fit(4, WITHCONSTANT, 3);
  for (int m = 1; m <= 4; ++m) {
    EXPECT_LT(std::abs(T.P[m] - P[m]), TIGHT * std::abs(P[m]));
    EXPECT_LT(std::abs(T.fits[0].R[m] - R[m]), TIGHT * std::abs(R[m]));
  }
}

TEST(VectorFit, FunctionsShareTheirPolesAndDeviationsKnowNoWeights) {
  const Rational second{PAIR.poles, {-1, {300, 2}, {300, -2}, 1e3}, -3};
  for (int ASYMP : {WITHCONSTANT, WITHPROPORTION}) {
    T.sample(PAIR);
    T.F[1] = sampled(T.G, second);
    T.F[0][20] += 50.0;
    T.G.weight[20] = 0;
    T.start(4);
    VFITPASSES(1, T.samples(ASYMP, FLIPUNSTABLE, 2), 4, T.P, T.fits, T.errors);
    expectModel(PAIR, T.fits[0]);
    expectModel(second, T.fits[1]);
    double most = 0;
    for (int k = 1; k <= T.G.NS; ++k)
      most = std::max({most, std::abs(T.F[0][k]), std::abs(T.F[1][k])});
    EXPECT_NEAR(T.errors.ERRMAX, 50, 1e-6);
    EXPECT_NEAR(T.errors.ERRRMS, 50 / std::sqrt(2.0 * T.G.NS), 1e-6);
    EXPECT_NEAR(T.errors.ERRREL, 50 / std::max(std::abs(T.F[0][20]), std::abs(T.F[1][20])), 1e-6);
    EXPECT_NEAR(T.errors.ERRNORM, 50 / most, 1e-6);
  }
}

TEST(VectorFit, ZeroFunctionKeepsThePoles) {
  T.sample([](Complex) { return Complex(0); });
  T.fit(3, WITHPROPORTION);
  for (int m = 1; m <= 3; ++m) {
    EXPECT_LT(std::abs(T.P[m] + LOGPOLE(m, 0.5, 5e4, 3)), 1e-7);
    EXPECT_EQ(T.fits[0].R[m], Complex(0));
  }
  EXPECT_EQ(T.errors.ERRMAX + T.errors.ERRREL + T.errors.ERRRMS + T.errors.ERRNORM, 0.0);
}

// More poles than the function has, more unknowns than rows, equal poles: the response is right.
TEST(VectorFit, RankDeficientPassesEndWell) {
  for (const auto& [N, NS] : {std::pair(6, 61), {25, 61}, {20, 15}}) {
    T.sample(PAIR, NS);
    T.start(N);
    T.P[4] = T.P[3];
    VFITPASSES(3, T.samples(WITHCONSTANT), N, T.P, T.fits, T.errors);
    EXPECT_LT(T.errors.ERRNORM, TIGHT) << N;
    expectSortedStablePairs(N);
  }
}

TEST(VectorFit, PassesAreCallsInARowAndKeepNothing) {
  T.sample(surgeImpedance, 80, 3, 6e6);
  T.start(7);
  for (int pass = 1; pass <= 3; ++pass)
    VFITPASSES(1, T.samples(WITHCONSTANT), 7, T.P, T.fits, T.errors);
  const PoleTable P = T.P, R = T.fits[0].R;
  // Whatever stands in the work store has no say in it.
  std::fill_n(LSQ.A, sizeof LSQ.A / sizeof(double), std::nan(""));
  std::fill_n(LSQ.B, LSROWS, std::nan(""));
  T.start(7);
  RELOCATE(2, T.samples(WITHCONSTANT), 7, T.P);
  VFITPASSES(1, T.samples(WITHCONSTANT), 7, T.P, T.fits, T.errors);
  EXPECT_EQ(T.P.entries, P.entries);
  EXPECT_EQ(T.fits[0].R.entries, R.entries);
}

TEST(VectorFit, SampleThatIsNoNumberShowsInTheDeviations) {
  for (double bad : {std::nan(""), HUGE_VAL}) {
    T.sample(PAIR);
    T.F[0][11] = Complex(bad, 0);
    T.fit(6, WITHCONSTANT, 2);
    EXPECT_TRUE(std::isnan(T.errors.ERRMAX));
    EXPECT_FALSE(T.errors.ERRNORM <= 0.02); // no target is met
  }
}

TEST(VectorFit, UnknownAsymptoteIsReported) {
  T.sample(PAIR);
  const auto told = [](int ASYMP) { return consoleOf([&] { T.fit(4, ASYMP); }); };
  EXPECT_EQ(told(NOASYMPTOTE) + told(0) + told(4), "ERROR 1\nERROR 1\n");
}
