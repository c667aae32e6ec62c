// Vector fitting: functions that are partial fractions come back exactly; on others only responses
// count, since their poles are not unique.
#include "fit/vector_fit.h"

#include "base/constants.h"
#include "fit/lapack.h"
#include "support/child.h"
#include "support/sampled_functions.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>

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
  EXPECT_NEAR(LOGPOLE(2, 3.0, 300.0, 2), 300.0, 1e-12);
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
    const char* what;
    Rational model;
    int ASYMP;
  } cases[] = {
      {"one real pole", {{-70}, {5}}, NOASYMPTOTE},
      {"one real pole, proportional", {{-70}, {5}, -0.2, 1e-3}, WITHPROPORTION},
      {"three real poles", {{-1, -50, -2e4}, {2, -300, 7e4}}, NOASYMPTOTE},
      {"two pairs",
       {{{-1, 20}, {-1, -20}, {-900, 3e3}, {-900, -3e3}},
        {{3, 1}, {3, -1}, {-50, 700}, {-50, -700}}},
       NOASYMPTOTE},
      {"reals and a pair, constant", PAIR, WITHCONSTANT},
      {"reals and a pair, proportional", {PAIR.poles, PAIR.residues, 0.7, 2e-4}, WITHPROPORTION}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
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
  VFIT(T.samples(WITHCONSTANT), 4, T.P, T.fits, T.errors);
  expectModel(PAIR, T.fits[0]);
  SCOPED_TRACE("over the poles given");
  const PoleTable given = T.P;
  FITRESIDUES(T.samples(WITHCONSTANT), 4, T.P, T.fits, T.errors);
  for (int m = 1; m <= 4; ++m) EXPECT_EQ(T.P[m], given[m]);
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
  for (int m = 1; m <= 4; ++m) {
    EXPECT_EQ(T.P[m], Complex(-std::abs(kept[m].real()), kept[m].imag())) << m;
  }
  expectSortedStablePairs(4);
}

TEST(VectorFit, FunctionsShareTheirPoles) {
  const Rational second{PAIR.poles, {-1, {300, 2}, {300, -2}, 1e3}, -3};
  for (int ASYMP : {WITHCONSTANT, WITHPROPORTION}) {
    T.sample(PAIR);
    T.F[1] = sampled(T.G, second);
    T.start(4);
    VFIT(T.samples(ASYMP, FLIPUNSTABLE, 2), 4, T.P, T.fits, T.errors);
    expectModel(PAIR, T.fits[0]);
    expectModel(second, T.fits[1]);
  }
}

// No change of a residue or the constant brings the weighted model nearer to the samples: the
// deviation is orthogonal to each basis function.
TEST(VectorFit, ResiduesAreWeightedLeastSquares) {
  const int N = 4;
  T.sample(surgeImpedance, 90, 3, 6e6);
  for (int k = 1; k <= T.G.NS; ++k) T.G.weight[k] = k == 40 ? 1000 : k < 40 ? 100 : 1;
  T.fit(N, WITHCONSTANT, 3);
  EXPECT_GT(T.errors.ERRNORM, 1e-4); // a fit with something to deviate
  PoleClasses CINDEX;
  classifyPoles(T.P, N, CINDEX);
  for (int m = 1; m <= N + 1; ++m) {
    double product = 0;
    double lengths[2] = {};
    for (int k = 1; k <= T.G.NS; ++k) {
      const Complex s(0, T.G.w[k]);
      const Complex phi = T.G.weight[k] * (m > N ? 1.0 : basisFunction(T.P, CINDEX, m, s));
      const Complex e = T.G.weight[k] * (T.fits[0].FIT[k] - T.F[0][k]);
      product += phi.real() * e.real() + phi.imag() * e.imag();
      lengths[0] += std::norm(phi);
      lengths[1] += std::norm(e);
    }
    EXPECT_LT(std::abs(product), 1e-8 * std::sqrt(lengths[0] * lengths[1])) << m;
  }
}

TEST(VectorFit, WeightZeroTakesASampleOutButNotOutOfTheDeviations) {
  T.sample(PAIR);
  T.F[1] = sampled(T.G, [](Complex) { return Complex(0); });
  T.F[0][20] += 50.0;
  T.G.weight[20] = 0;
  T.start(4);
  VFIT(T.samples(WITHCONSTANT, FLIPUNSTABLE, 2), 4, T.P, T.fits, T.errors);
  expectModel(PAIR, T.fits[0]);
  for (int m = 1; m <= 4; ++m) EXPECT_LT(std::abs(T.fits[1].R[m]), 1e-12);
  double most = 0;
  for (int k = 1; k <= T.G.NS; ++k) most = std::max(most, std::abs(T.F[0][k]));
  EXPECT_NEAR(T.errors.ERRMAX, 50, 1e-6);
  EXPECT_NEAR(T.errors.ERRRMS, 50 / std::sqrt(2.0 * T.G.NS), 1e-6);
  EXPECT_NEAR(T.errors.ERRREL, 50 / std::abs(T.F[0][20]), 1e-6);
  EXPECT_NEAR(T.errors.ERRNORM, 50 / most, 1e-6);
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
  for (const auto& [N, NS] : {std::pair(8, 61), {25, 61}, {20, 15}}) {
    T.sample(PAIR, NS);
    T.fit(N, WITHCONSTANT, 3);
    EXPECT_LT(T.errors.ERRNORM, TIGHT) << N;
    expectSortedStablePairs(N);
  }
  T.sample(PAIR);
  T.start(6);
  T.P[4] = T.P[3];
  VFITPASSES(3, T.samples(WITHCONSTANT), 6, T.P, T.fits, T.errors);
  EXPECT_LT(T.errors.ERRNORM, TIGHT);
}

TEST(VectorFit, SmoothCurvesFitBetterWithMorePoles) {
  T.sample(surgeImpedance, MAXFREQ, 3, 6e6);
  double last = 1;
  for (int N : {2, 5, 10, 20, NPMAX}) { // up to full capacities
    T.fit(N, WITHPROPORTION, N == NPMAX ? 1 : 3);
    if (N < NPMAX) {
      EXPECT_LT(T.errors.ERRNORM, last / 2) << N;
    }
    expectSortedStablePairs(N);
    last = T.errors.ERRNORM;
  }
  EXPECT_LT(last, 1e-6);
}

TEST(VectorFit, PassesAreCallsInARowAndKeepNothing) {
  const int N = 7;
  T.sample(surgeImpedance, 80, 3, 6e6);
  T.start(N);
  for (int pass = 1; pass <= 3; ++pass) {
    VFIT(T.samples(WITHCONSTANT), N, T.P, T.fits, T.errors);
  }
  const PoleTable P = T.P;
  const FunctionFit fit = T.fits[0];
  // Whatever stands in the work store has no say in it.
  std::fill_n(LSQ.A, sizeof LSQ.A / sizeof(double), std::numeric_limits<double>::quiet_NaN());
  std::fill_n(LSQ.B, LSROWS, std::numeric_limits<double>::quiet_NaN());
  T.fit(N, WITHCONSTANT, 3);
  PoleTable relocated;
  startingPoles(relocated, N, T.G.w[1], T.G.w[T.G.NS]);
  RELOCATE(3, T.samples(WITHCONSTANT), N, relocated);
  for (int m = 1; m <= N; ++m) {
    EXPECT_EQ(T.P[m], P[m]);
    EXPECT_EQ(relocated[m], P[m]);
    EXPECT_EQ(T.fits[0].R[m], fit.R[m]);
  }
  EXPECT_EQ(T.fits[0].D, fit.D);
}

TEST(VectorFit, SampleThatIsNoNumberShowsInTheDeviations) {
  for (double bad :
       {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
    T.sample(PAIR);
    T.F[0][11] = Complex(bad, 0);
    T.fit(6, WITHCONSTANT, 2);
    EXPECT_TRUE(std::isnan(T.errors.ERRMAX));
    EXPECT_FALSE(T.errors.ERRNORM <= 0.02); // no target is met
  }
}

TEST(VectorFit, UnknownAsymptoteIsReported) {
  const ChildResult child = runChild([] {
    T.sample(PAIR);
    for (int ASYMP : {NOASYMPTOTE, 0, 4}) T.fit(4, ASYMP);
  });
  EXPECT_EQ(child.console, lines({"ERROR 1", "ERROR 1"}));
  EXPECT_EQ(child.status, 0);
}
