// Partial fractions: the real basis against direct complex sums, and the columns of a problem.
#include "fit/partial_fractions.h"

#include "support/child.h"
#include "support/sampled_functions.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

PoleTable tableOf(const std::vector<Complex>& values) {
  PoleTable P;
  std::copy(values.begin(), values.end(), P.data());
  return P;
}

// Two real poles around a pair and another pair in opposite order, conjugate residues.
const Rational DIRECT{{-3.0, {-2.0, 50.0}, {-2.0, -50.0}, -400.0, {-1e4, -9e4}, {-1e4, 9e4}},
                      {7.0, {1.5, -4.0}, {1.5, 4.0}, -120.0, {3e4, 2e5}, {3e4, -2e5}},
                      2.5,
                      -1e-4};
const PoleTable P = tableOf(DIRECT.poles), R = tableOf(DIRECT.residues);
const int N = DIRECT.N();

PoleClasses classesOf(const PoleTable& poles, int n) {
  PoleClasses CINDEX;
  CINDEX.fill(9); // nothing of an earlier scan counts
  classifyPoles(poles, n, CINDEX);
  return CINDEX;
}

} // namespace

TEST(PoleClasses, ScanFromTheFirst) {
  struct Case {
    std::vector<Complex> poles;
    std::vector<int> classes; // and nothing is written behind the last
  };
  const Complex a(-1, 2), b(-3, -4);
  for (const Case& c :
       {Case{{-1, a, std::conj(a), -2}, {0, 1, 2, 0, 9}},
        Case{{a, std::conj(a), b, std::conj(b)}, {1, 2, 1, 2, 9}},
        Case{{{-1, -0.0}, {-1, 1e-300}, {-1, -1e-300}}, {0, 1, 2, 9}}, Case{{a}, {1, 9}}}) {
    const PoleClasses found = classesOf(tableOf(c.poles), static_cast<int>(c.poles.size()));
    EXPECT_EQ(std::vector<int>(found.data(), found.data() + c.classes.size()), c.classes);
  }
}

TEST(Basis, FactorsOfTheResiduesGiveTheComplexSumAndBack) {
  const PoleClasses CINDEX = classesOf(P, N);
  std::vector<double> store(2 * 9);
  const RView X(store.data(), 9);
  for (int m = 1; m <= N; ++m) X(m, 2) = CINDEX[m] == PAIRSECOND ? R[m - 1].imag() : R[m].real();
  for (const Complex& s : {Complex(0.0), Complex(0, 1), Complex(0, 50), Complex(0, 9e4),
                           Complex(0, 1e7), Complex(-30, 4), Complex(0, -50)}) {
    Complex sum = DIRECT.D + s * DIRECT.E;
    for (int m = 1; m <= N; ++m) sum += X(m, 2) * basisFunction(P, CINDEX, m, s);
    const Complex F = partialFractions(P, R, N, DIRECT.D, DIRECT.E, s);
    EXPECT_LT(std::abs(sum - DIRECT(s)), 1e-14 * std::abs(sum)) << s;
    EXPECT_LT(std::abs(F - DIRECT(s)), 1e-14 * std::abs(F)) << s;
  }
  PoleTable back;
  residuesOf(CINDEX, N, X, 2, back);
  for (int m = 1; m <= N; ++m) {
    EXPECT_EQ(back[m], R[m]) << m;
    EXPECT_EQ(residueOf(CINDEX, m, X, 2), R[m]) << m;
  }
}

TEST(PartialFractions, CurvesAreThePointsOfTheAxis) {
  static const SampleGrid grid(1, 1e7, MAXFREQ);
  const PoleClasses CINDEX = classesOf(P, N);
  const int NS = MAXFREQ;
  static ComplexCurve F, G, u;
  partialFractionCurve(P, R, N, DIRECT.D, DIRECT.E, grid.w, NS, F);
  for (int k = 1; k <= NS; ++k) G[k] = Complex(DIRECT.D, DIRECT.E * grid.w[k]);
  for (int m = 1; m <= N; ++m) {
    poleCurve(P[m], grid.w, NS, u);
    addTimes(R[m], u, NS, G);
    basisCurve(P, CINDEX, m, grid.w, NS, u);
    for (int k = 1; k <= NS; ++k) {
      const Complex at = basisFunction(P, CINDEX, m, Complex(0, grid.w[k]));
      ASSERT_LE(std::abs(u[k] - at), 1e-15 * std::abs(at)) << m << " " << k;
    }
  }
  for (int k = 1; k <= NS; ++k) {
    const Complex direct = DIRECT(Complex(0, grid.w[k]));
    ASSERT_LT(std::abs(F[k] - direct), 1e-13 * std::abs(direct)) << k;
    ASSERT_LT(std::abs(G[k] - direct), 1e-13 * std::abs(direct)) << k;
  }
}

TEST(Basis, UnknownClassIsReported) {
  const ChildResult child = runChild([] {
    PoleClasses CINDEX = classesOf(P, N);
    CINDEX[1] = 3;
    basisFunction(P, CINDEX, 1, 1.0);
    static ComplexCurve phi;
    basisCurve(P, CINDEX, 1, SampleGrid(1, 2, 2).w, 2, phi);
  });
  EXPECT_EQ(child.console, lines({"ERROR 2", "ERROR 2"}));
  EXPECT_EQ(child.status, 0);
}
