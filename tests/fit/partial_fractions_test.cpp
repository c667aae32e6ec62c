// Partial fractions: the real basis against direct complex sums, and the columns of a problem.
#include "fit/partial_fractions.h"

#include "support/child.h"

#include <cmath>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace lcp;

namespace {

constexpr double EPS = 2.3e-16;

PoleTable poles(std::initializer_list<Complex> values) {
  PoleTable P;
  int m = 0;
  for (const Complex& p : values) P[++m] = p;
  return P;
}

// Two real poles around a pair and another pair in opposite order, conjugate residues.
struct Model {
  static constexpr int N = 6;
  PoleTable P = poles({-3.0, {-2.0, 50.0}, {-2.0, -50.0}, -400.0, {-1e4, -9e4}, {-1e4, 9e4}});
  PoleTable R = poles({7.0, {1.5, -4.0}, {1.5, 4.0}, -120.0, {3e4, 2e5}, {3e4, -2e5}});
  double D = 2.5;
  double E = -1e-4;
  PoleClasses CINDEX;

  Model() { classifyPoles(P, N, CINDEX); }

  Complex direct(Complex s) const {
    Complex F = D + s * E;
    for (int m = 1; m <= N; ++m) F += R[m] / (s - P[m]);
    return F;
  }
};

const std::vector<Complex> POINTS = {0.0, {0, 1}, {0, 50}, {0, 9e4}, {0, 1e7}, {-30, 4}, {0, -50}};

FreqCurve axis(int NS) {
  FreqCurve w{};
  for (int k = 1; k <= NS; ++k) w[k] = std::pow(10.0, -1.0 + 8.0 * k / NS);
  return w;
}

} // namespace

TEST(PoleClasses, ScanFromTheFirst) {
  struct Case {
    PoleTable P;
    std::vector<int> classes;
  };
  const Complex a(-1, 2);
  const Complex b(-3, -4);
  for (const Case& c :
       {Case{poles({-1, -2}), {0, 0}}, Case{poles({a, std::conj(a)}), {1, 2}},
        Case{poles({-1, a, std::conj(a), -2}), {0, 1, 2, 0}},
        Case{poles({a, std::conj(a), b, std::conj(b)}), {1, 2, 1, 2}},
        Case{poles({{-1, -0.0}, {-1, 1e-300}, {-1, -1e-300}}), {0, 1, 2}}, Case{poles({a}), {1}}}) {
    PoleClasses CINDEX;
    CINDEX.fill(9); // nothing of an earlier scan counts
    const int N = static_cast<int>(c.classes.size());
    classifyPoles(c.P, N, CINDEX);
    for (int m = 1; m <= N; ++m) EXPECT_EQ(CINDEX[m], c.classes[static_cast<std::size_t>(m - 1)]);
    EXPECT_EQ(CINDEX[N + 1], 9); // nor is anything written behind the last
  }
}

TEST(Basis, FactorsOfTheResiduesGiveTheComplexSum) {
  const Model model;
  for (const Complex& s : POINTS) {
    Complex sum = model.D + s * model.E;
    for (int m = 1; m <= Model::N; ++m) {
      sum += basisFactor(model.CINDEX, m, model.R) * basisFunction(model.P, model.CINDEX, m, s);
    }
    EXPECT_LT(std::abs(sum - model.direct(s)), 1e-14 * std::abs(sum)) << s;
  }
}

TEST(Basis, CurveIsThePointsOfTheAxis) {
  const Model model;
  const int NS = 37;
  const FreqCurve w = axis(NS);
  ComplexCurve phi;
  phi[NS + 1] = 77.0;
  for (int m = 1; m <= Model::N; ++m) {
    basisCurve(model.P, model.CINDEX, m, w, NS, phi);
    for (int k = 1; k <= NS; ++k) {
      const Complex s(0, w[k]);
      const Complex at = basisFunction(model.P, model.CINDEX, m, s);
      EXPECT_LE(std::abs(phi[k] - at), 4 * EPS * std::abs(at)) << m << " " << k;
    }
  }
  EXPECT_EQ(phi[NS + 1], 77.0);
}

TEST(Basis, UnknownClassIsReported) {
  const test::ChildResult child = test::runChild([] {
    const Model model;
    PoleClasses CINDEX = model.CINDEX;
    basisFunction(model.P, CINDEX, 1, 1.0);
    CINDEX[1] = 3;
    basisFunction(model.P, CINDEX, 1, 1.0);
    ComplexCurve phi;
    basisCurve(model.P, CINDEX, 1, axis(2), 2, phi);
  });
  EXPECT_EQ(child.console, test::lines({"ERROR 2", "ERROR 2"}));
  EXPECT_EQ(child.status, 0);
}

TEST(Residues, ThereAndBack) {
  const Model model;
  std::vector<double> store(2 * 9);
  const RView X(store.data(), 9);
  for (int m = 1; m <= Model::N; ++m) X(m, 2) = basisFactor(model.CINDEX, m, model.R);
  PoleTable R;
  residuesOf(model.CINDEX, Model::N, X, 2, R);
  for (int m = 1; m <= Model::N; ++m) {
    EXPECT_EQ(R[m], model.R[m]) << m;
    EXPECT_EQ(residueOf(model.CINDEX, m, X, 2), model.R[m]) << m;
  }
}

TEST(PartialFractions, PointCurveAndStepsAgreeWithTheDirectSum) {
  const Model model;
  for (const Complex& s : POINTS) {
    const Complex direct = model.direct(s);
    const Complex F = partialFractions(model.P, model.R, Model::N, model.D, model.E, s);
    EXPECT_LT(std::abs(F - direct), 1e-14 * std::abs(direct)) << s;
  }
  const int NS = MAXFREQ;
  const FreqCurve w = axis(NS);
  ComplexCurve F;
  ComplexCurve G;
  ComplexCurve u;
  partialFractionCurve(model.P, model.R, Model::N, model.D, model.E, w, NS, F);
  for (int k = 1; k <= NS; ++k) G[k] = Complex(model.D, model.E * w[k]);
  for (int m = 1; m <= Model::N; ++m) {
    poleCurve(model.P[m], w, NS, u);
    addTimes(model.R[m], u, NS, G);
  }
  for (int k = 1; k <= NS; ++k) {
    const Complex direct = model.direct(Complex(0, w[k]));
    EXPECT_LT(std::abs(F[k] - direct), 1e-13 * std::abs(direct)) << k;
    EXPECT_LT(std::abs(G[k] - direct), 1e-13 * std::abs(direct)) << k;
  }
}

TEST(ProblemColumns, WeightedPartsInTheirRows) {
  const int NS = 3;
  const FreqCurve w = axis(NS);
  FreqCurve W{};
  ComplexCurve F;
  for (int k = 1; k <= NS; ++k) {
    W[k] = k - 1.0; // a weight of 0 takes its rows out
    F[k] = Complex(10.0 * k, -k);
  }
  std::vector<double> store(3 * 8, -7.0);
  const RView A(store.data(), 8);
  curveColumn(F, W, NS, columnRows(A, 1, NS));
  constantColumn(W, NS, columnRows(A, 2, NS));
  proportionalColumn(w, W, NS, columnRows(A, 3, NS));
  for (int k = 1; k <= NS; ++k) {
    EXPECT_EQ(A(k, 1), W[k] * 10.0 * k);
    EXPECT_EQ(A(NS + k, 1), -W[k] * k);
    EXPECT_EQ(A(k, 2), W[k]);
    EXPECT_EQ(A(NS + k, 2), 0.0);
    EXPECT_EQ(A(k, 3), 0.0);
    EXPECT_EQ(A(NS + k, 3), W[k] * w[k]);
  }
  for (int c = 1; c <= 3; ++c) EXPECT_EQ(A(2 * NS + 1, c), -7.0);
}
