// Vector fitting: functions that are partial fractions come back exactly; on others only responses
// count, since their poles are not unique.
#include "fit/vector_fit.h"

#include "base/constants.h"
#include "fit/lapack.h"
#include "support/child.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

using namespace lcp;

namespace {

constexpr double TIGHT = 1e-9;

struct Rational {
  std::vector<Complex> p; // conjugates side by side, rising modulus
  std::vector<Complex> r;
  double D = 0;
  double E = 0;

  int N() const { return static_cast<int>(p.size()); }
  Complex operator()(double w) const {
    Complex F(D, w * E);
    for (std::size_t m = 0; m < p.size(); ++m) F += r[m] / (Complex(0, w) - p[m]);
    return F;
  }
};

// Curves and results of one fit; large, so they live in static store.
struct Problem {
  FreqCurve WFREQ;
  FreqCurve WFIT;
  ComplexCurve F[2];
  FunctionFit fits[2];
  FitErrors errors;
  PoleTable P;

  void grid(double low, double high, int NS) {
    for (int k = 1; k <= NS; ++k) {
      WFREQ[k] = LOGPOLE(k, low, high, NS);
      WFIT[k] = 1.0;
    }
  }
  template <class Function> void sample(int i, int NS, const Function& f) {
    for (int k = 1; k <= NS; ++k) F[i - 1][k] = f(WFREQ[k]);
  }
  FitSamples samples(int NS, int ASYMP, int STABLE = FLIPUNSTABLE, int NF = 1) const {
    return {NS, NF, WFREQ, F, WFIT, STABLE, ASYMP};
  }
};

Problem T;

double scaleOf(const ComplexCurve& F, int NS) {
  double most = 0;
  for (int k = 1; k <= NS; ++k) most = std::max(most, std::abs(F[k]));
  return most;
}

void expectModel(const Rational& model, const FunctionFit& fit) {
  const int N = model.N();
  for (int m = 1; m <= N; ++m) {
    const Complex p = model.p[static_cast<std::size_t>(m - 1)];
    const Complex r = model.r[static_cast<std::size_t>(m - 1)];
    // The two of a pair may stand in either order.
    const bool swapped = p.imag() * T.P[m].imag() < 0;
    EXPECT_LT(std::abs(T.P[m] - (swapped ? std::conj(p) : p)), TIGHT * std::abs(p)) << m;
    EXPECT_LT(std::abs(fit.R[m] - (swapped ? std::conj(r) : r)), TIGHT * std::abs(r)) << m;
  }
  EXPECT_NEAR(fit.D, model.D, TIGHT * (1 + std::abs(model.D)));
  EXPECT_NEAR(fit.E, model.E, TIGHT * std::abs(model.E));
}

void expectSortedStablePairs(const PoleTable& P, const FunctionFit& fit, int N) {
  PoleClasses CINDEX;
  classifyPoles(P, N, CINDEX);
  for (int m = 1; m <= N; ++m) {
    EXPECT_LE(P[m].real(), 0.0) << m;
    EXPECT_GE(std::abs(P[m]), m > 1 ? std::abs(P[m - 1]) : 0.0) << m;
    if (CINDEX[m] == REALPOLE) {
      EXPECT_EQ(fit.R[m].imag(), 0.0) << m;
    } else if (CINDEX[m] == PAIRFIRST) {
      EXPECT_EQ(P[m + 1], std::conj(P[m])) << m;
      EXPECT_EQ(fit.R[m + 1], std::conj(fit.R[m])) << m;
    }
  }
  EXPECT_NE(CINDEX[N], PAIRFIRST);
}

Rational withPair() {
  return {{-2, {-30, 400}, {-30, -400}, -5e3}, {4, {20, -90}, {20, 90}, -3e4}, 0.7, 0};
}

// Surge impedance of a lossy line: no partial fractions with few poles.
Complex surgeImpedance(double w) {
  const Complex z(0.05 + 1e-4 * std::sqrt(w), w * 1e-6 + 1e-4 * std::sqrt(w));
  return std::sqrt(z / Complex(3e-10, w * 1e-11));
}

} // namespace

TEST(StartingPoles, EvenInTheLogarithm) {
  EXPECT_EQ(LOGPOLE(1, 3.0, 300.0, 1), 3.0);
  EXPECT_NEAR(LOGPOLE(1, 3.0, 300.0, 2), 3.0, 1e-14);
  EXPECT_NEAR(LOGPOLE(2, 3.0, 300.0, 2), 300.0, 1e-12);
  EXPECT_NEAR(LOGPOLE(2, 3.0, 300.0, 3), 30.0, 1e-13);
  EXPECT_NEAR(LOGPOLE(4, 0.1, 1e6, 8), 100.0, 1e-12);
  PoleTable P;
  startingPoles(P, 3, 3.0, 300.0);
  for (int m = 1; m <= 3; ++m) EXPECT_EQ(P[m], Complex(-LOGPOLE(m, 3.0, 300.0, 3), 0.0));
}

// From whatever poles it starts, one pass is enough: sigma F is linear in the unknowns.
TEST(VectorFit, PartialFractionsComeBackInOnePass) {
  struct Case {
    const char* what;
    Rational model;
    int ASYMP;
  };
  const Rational pair = withPair();
  const Rational twoPairs{{{-1, 20}, {-1, -20}, {-900, 3e3}, {-900, -3e3}},
                          {{3, 1}, {3, -1}, {-50, 700}, {-50, -700}}};
  for (const Case& c :
       {Case{"one real pole", {{-70}, {5}}, NOASYMPTOTE},
        Case{"one real pole, constant", {{-70}, {5}, -0.2}, WITHCONSTANT},
        Case{"one real pole, constant, proportional", {{-70}, {5}, -0.2, 1e-3}, WITHPROPORTION},
        Case{"three real poles", {{-1, -50, -2e4}, {2, -300, 7e4}}, NOASYMPTOTE},
        Case{"a pair", {{{-3, 200}, {-3, -200}}, {{10, 5}, {10, -5}}}, NOASYMPTOTE},
        Case{"two pairs", twoPairs, NOASYMPTOTE},
        Case{"reals and a pair, constant", pair, WITHCONSTANT},
        Case{"reals and a pair, proportional", {pair.p, pair.r, 0.7, 2e-4}, WITHPROPORTION}}) {
    SCOPED_TRACE(c.what);
    const int NS = 61;
    const int N = c.model.N();
    T.grid(0.5, 5e4, NS);
    T.sample(1, NS, c.model);
    startingPoles(T.P, N, T.WFREQ[1], T.WFREQ[NS]);
    VFIT(T.samples(NS, c.ASYMP), N, T.P, T.fits, T.errors);
    expectModel(c.model, T.fits[0]);
    expectSortedStablePairs(T.P, T.fits[0], N);
    EXPECT_LT(T.errors.ERRNORM, TIGHT);
  }
}

TEST(VectorFit, StartsFromComplexPolesAsWell) {
  const int NS = 61;
  T.grid(0.5, 5e4, NS);
  T.sample(1, NS, withPair());
  T.P[1] = {-1, -10};
  T.P[2] = {-1, 10};
  T.P[3] = {-500, 2e4};
  T.P[4] = {-500, -2e4};
  VFIT(T.samples(NS, WITHCONSTANT), 4, T.P, T.fits, T.errors);
  expectModel(withPair(), T.fits[0]);
}

TEST(VectorFit, ElevenDecadesNeedTheColumnScaling) {
  const Rational model{{-1e-2, -1e2, {-2e5, 3e6}, {-2e5, -3e6}, -1e9},
                       {3e-2, 50, {4e5, 1e6}, {4e5, -1e6}, 2e9},
                       40,
                       1e-10};
  const int NS = 140;
  T.grid(1e-3, 1e10, NS);
  T.sample(1, NS, model);
  startingPoles(T.P, 5, T.WFREQ[1], T.WFREQ[NS]);
  VFITPASSES(3, T.samples(NS, WITHPROPORTION), 5, T.P, T.fits, T.errors);
  expectModel(model, T.fits[0]);
}

TEST(VectorFit, UnstablePolesAreMirroredWhenAsked) {
  const Rational model{{-5, {40, 300}, {40, -300}, 2e3}, {1, {20, 3}, {20, -3}, 100}};
  const int NS = 50;
  T.grid(0.5, 5e4, NS);
  T.sample(1, NS, model);
  startingPoles(T.P, 4, T.WFREQ[1], T.WFREQ[NS]);
  VFIT(T.samples(NS, NOASYMPTOTE, KEEPUNSTABLE), 4, T.P, T.fits, T.errors);
  expectModel(model, T.fits[0]);
  EXPECT_LT(T.errors.ERRNORM, TIGHT);

  const PoleTable kept = T.P;
  startingPoles(T.P, 4, T.WFREQ[1], T.WFREQ[NS]);
  VFIT(T.samples(NS, NOASYMPTOTE, FLIPUNSTABLE), 4, T.P, T.fits, T.errors);
  for (int m = 1; m <= 4; ++m) {
    EXPECT_EQ(T.P[m], Complex(-std::abs(kept[m].real()), kept[m].imag())) << m;
  }
  expectSortedStablePairs(T.P, T.fits[0], 4);
}

TEST(VectorFit, FunctionsShareTheirPoles) {
  const Rational first = withPair();
  const Rational second{first.p, {-1, {300, 2}, {300, -2}, 1e3}, -3, 0};
  const int NS = 61;
  for (int ASYMP : {WITHCONSTANT, WITHPROPORTION}) {
    T.grid(0.5, 5e4, NS);
    T.sample(1, NS, first);
    T.sample(2, NS, second);
    startingPoles(T.P, 4, T.WFREQ[1], T.WFREQ[NS]);
    VFIT(T.samples(NS, ASYMP, FLIPUNSTABLE, 2), 4, T.P, T.fits, T.errors);
    for (int i = 0; i < 2; ++i) {
      const Rational& model = i == 0 ? first : second;
      FunctionFit fit = T.fits[i];
      EXPECT_LT(std::abs(fit.E), 1e-12);
      fit.E = 0; // what is left of it is rounding
      expectModel(model, fit);
    }
  }
}

TEST(VectorFit, ResiduesOverGivenPoles) {
  const Rational model = withPair();
  const int NS = 61;
  T.grid(0.5, 5e4, NS);
  T.sample(1, NS, model);
  for (int m = 1; m <= 4; ++m) T.P[m] = model.p[static_cast<std::size_t>(m - 1)];
  const PoleTable given = T.P;
  FITRESIDUES(T.samples(NS, WITHCONSTANT), 4, T.P, T.fits, T.errors);
  for (int m = 1; m <= 4; ++m) EXPECT_EQ(T.P[m], given[m]);
  expectModel(model, T.fits[0]);
}

// No change of a residue or the constant brings the weighted model nearer to the samples: the
// deviation is orthogonal to each basis function.
TEST(VectorFit, ResiduesAreWeightedLeastSquares) {
  const int NS = 90;
  const int N = 4;
  T.grid(3, 6e6, NS);
  for (int k = 1; k <= NS; ++k) T.WFIT[k] = k == 40 ? 1000 : k < 40 ? 100 : 1;
  T.sample(1, NS, surgeImpedance);
  startingPoles(T.P, N, T.WFREQ[1], T.WFREQ[NS]);
  VFITPASSES(3, T.samples(NS, WITHCONSTANT), N, T.P, T.fits, T.errors);
  EXPECT_GT(T.errors.ERRNORM, 1e-4); // a fit with something to deviate
  PoleClasses CINDEX;
  classifyPoles(T.P, N, CINDEX);
  for (int m = 1; m <= N + 1; ++m) {
    double product = 0;
    double lengths[2] = {};
    for (int k = 1; k <= NS; ++k) {
      const Complex s(0, T.WFREQ[k]);
      const Complex phi = T.WFIT[k] * (m > N ? 1.0 : basisFunction(T.P, CINDEX, m, s));
      const Complex e = T.WFIT[k] * (T.fits[0].FIT[k] - T.F[0][k]);
      product += phi.real() * e.real() + phi.imag() * e.imag();
      lengths[0] += std::norm(phi);
      lengths[1] += std::norm(e);
    }
    EXPECT_LT(std::abs(product), 1e-8 * std::sqrt(lengths[0] * lengths[1])) << m;
  }
}

TEST(VectorFit, WeightZeroTakesASampleOut) {
  const Rational model = withPair();
  const int NS = 61;
  T.grid(0.5, 5e4, NS);
  T.sample(1, NS, model);
  T.F[0][20] += 50.0;
  T.WFIT[20] = 0;
  startingPoles(T.P, 4, T.WFREQ[1], T.WFREQ[NS]);
  VFIT(T.samples(NS, WITHCONSTANT), 4, T.P, T.fits, T.errors);
  expectModel(model, T.fits[0]);
  // ... but not out of the deviations.
  EXPECT_NEAR(T.errors.ERRMAX, 50, 1e-6);
  EXPECT_NEAR(T.errors.ERRRMS, 50 / std::sqrt(NS), 1e-6);
  EXPECT_NEAR(T.errors.ERRREL, 50 / std::abs(T.F[0][20]), 1e-6);
  EXPECT_NEAR(T.errors.ERRNORM, 50 / scaleOf(T.F[0], NS), 1e-6);
}

TEST(VectorFit, DeviationsOverTwoFunctions) {
  // Weights of zero leave nothing to fit with, so the deviations are the samples.
  const int NS = 3;
  T.grid(1, 100, NS);
  for (int k = 1; k <= NS; ++k) T.WFIT[k] = 0;
  const Complex first[] = {3, {0, 4}, 0};
  const Complex second[] = {{3, -4}, 1, 0};
  for (int k = 1; k <= NS; ++k) {
    T.F[0][k] = first[k - 1];
    T.F[1][k] = second[k - 1];
  }
  T.P[1] = -1;
  FITRESIDUES(T.samples(NS, WITHCONSTANT, FLIPUNSTABLE, 2), 1, T.P, T.fits, T.errors);
  EXPECT_EQ(T.fits[1].D, 0.0); // all weights zero: the shortest solution
  EXPECT_DOUBLE_EQ(T.errors.ERRMAX, 5);
  EXPECT_DOUBLE_EQ(T.errors.ERRREL, 1);
  EXPECT_DOUBLE_EQ(T.errors.ERRRMS, std::sqrt((9.0 + 16 + 25 + 1) / 6));
  EXPECT_DOUBLE_EQ(T.errors.ERRNORM, 1);
}

TEST(VectorFit, ZeroFunctionKeepsThePoles) {
  const int NS = 30;
  T.grid(1, 1e4, NS);
  T.sample(1, NS, [](double) { return Complex(0); });
  startingPoles(T.P, 3, T.WFREQ[1], T.WFREQ[NS]);
  const PoleTable start = T.P;
  VFIT(T.samples(NS, WITHPROPORTION), 3, T.P, T.fits, T.errors);
  for (int m = 1; m <= 3; ++m) {
    EXPECT_LT(std::abs(T.P[m] - start[m]), 1e-12 * std::abs(start[m]));
    EXPECT_EQ(T.fits[0].R[m], Complex(0));
  }
  for (double e : {T.errors.ERRMAX, T.errors.ERRREL, T.errors.ERRRMS, T.errors.ERRNORM}) {
    EXPECT_EQ(e, 0.0);
  }
}

// More poles than the function has, equal poles, more unknowns than rows: the response is right.
TEST(VectorFit, RankDeficientPassesEndWell) {
  const Rational model = withPair();
  struct Case {
    const char* what;
    int N;
    int NS;
  };
  for (const Case& c : {Case{"twice the poles", 8, 61}, Case{"many poles", 25, 61},
                        Case{"more unknowns than rows", 20, 15}}) {
    SCOPED_TRACE(c.what);
    T.grid(0.5, 5e4, c.NS);
    T.sample(1, c.NS, model);
    startingPoles(T.P, c.N, T.WFREQ[1], T.WFREQ[c.NS]);
    VFITPASSES(3, T.samples(c.NS, WITHCONSTANT), c.N, T.P, T.fits, T.errors);
    EXPECT_LT(T.errors.ERRNORM, TIGHT);
    expectSortedStablePairs(T.P, T.fits[0], c.N);
  }
  SCOPED_TRACE("equal starting poles");
  T.grid(0.5, 5e4, 61);
  T.sample(1, 61, model);
  startingPoles(T.P, 6, T.WFREQ[1], T.WFREQ[61]);
  T.P[4] = T.P[3];
  VFITPASSES(3, T.samples(61, WITHCONSTANT), 6, T.P, T.fits, T.errors);
  EXPECT_LT(T.errors.ERRNORM, TIGHT);
}

TEST(VectorFit, SmoothCurvesFitBetterWithMorePoles) {
  const int NS = 106;
  T.grid(TWOPI * 0.5, TWOPI * 1e6, NS);
  T.sample(1, NS, surgeImpedance);
  double last = 1;
  for (int N : {2, 5, 10, 20}) {
    startingPoles(T.P, N, T.WFREQ[1], T.WFREQ[NS]);
    VFITPASSES(3, T.samples(NS, WITHCONSTANT), N, T.P, T.fits, T.errors);
    EXPECT_LT(T.errors.ERRNORM, last / 2) << N;
    expectSortedStablePairs(T.P, T.fits[0], N);
    last = T.errors.ERRNORM;
  }
  EXPECT_LT(last, 1e-6);
}

TEST(VectorFit, FullCapacities) {
  const int NS = MAXFREQ;
  T.grid(TWOPI * 0.5, TWOPI * 1e6, NS);
  T.sample(1, NS, surgeImpedance);
  startingPoles(T.P, NPMAX, T.WFREQ[1], T.WFREQ[NS]);
  VFIT(T.samples(NS, WITHPROPORTION), NPMAX, T.P, T.fits, T.errors);
  EXPECT_LT(T.errors.ERRNORM, 1e-6);
  expectSortedStablePairs(T.P, T.fits[0], NPMAX);
}

TEST(VectorFit, PassesAreCallsInARowAndKeepNothing) {
  const int NS = 80;
  const int N = 7;
  T.grid(3, 6e6, NS);
  T.sample(1, NS, surgeImpedance);
  const FitSamples Q = T.samples(NS, WITHCONSTANT);
  startingPoles(T.P, N, T.WFREQ[1], T.WFREQ[NS]);
  for (int pass = 1; pass <= 3; ++pass) VFIT(Q, N, T.P, T.fits, T.errors);
  const PoleTable P = T.P;
  const FunctionFit fit = T.fits[0];
  const FitErrors errors = T.errors;

  // Whatever stands in the work store has no say in it.
  std::fill_n(LSQ.A, sizeof LSQ.A / sizeof(double), std::numeric_limits<double>::quiet_NaN());
  std::fill_n(LSQ.B, LSROWS, std::numeric_limits<double>::quiet_NaN());
  startingPoles(T.P, N, T.WFREQ[1], T.WFREQ[NS]);
  VFITPASSES(3, Q, N, T.P, T.fits, T.errors);
  PoleTable relocated;
  startingPoles(relocated, N, T.WFREQ[1], T.WFREQ[NS]);
  RELOCATE(3, Q, N, relocated);
  for (int m = 1; m <= N; ++m) {
    EXPECT_EQ(T.P[m], P[m]);
    EXPECT_EQ(relocated[m], P[m]);
    EXPECT_EQ(T.fits[0].R[m], fit.R[m]);
  }
  EXPECT_EQ(T.fits[0].D, fit.D);
  EXPECT_EQ(T.errors.ERRRMS, errors.ERRRMS);
}

TEST(VectorFit, SampleThatIsNoNumberShowsInTheDeviations) {
  const int NS = 40;
  T.grid(1, 1e5, NS);
  for (double bad :
       {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
    T.sample(1, NS, withPair());
    T.F[0][11] = Complex(bad, 0);
    startingPoles(T.P, 6, T.WFREQ[1], T.WFREQ[NS]);
    VFITPASSES(2, T.samples(NS, WITHCONSTANT), 6, T.P, T.fits, T.errors);
    EXPECT_TRUE(std::isnan(T.errors.ERRMAX));
    EXPECT_FALSE(T.errors.ERRNORM <= 0.02); // no target is met
  }
}

TEST(VectorFit, UnknownAsymptoteIsReported) {
  const test::ChildResult child = test::runChild([] {
    const int NS = 20;
    T.grid(1, 1e4, NS);
    T.sample(1, NS, withPair());
    for (int ASYMP : {NOASYMPTOTE, 0, 4}) {
      startingPoles(T.P, 4, T.WFREQ[1], T.WFREQ[NS]);
      VFIT(T.samples(NS, ASYMP), 4, T.P, T.fits, T.errors);
    }
  });
  EXPECT_EQ(child.console, test::lines({"ERROR 1", "ERROR 1"}));
  EXPECT_EQ(child.status, 0);
}
