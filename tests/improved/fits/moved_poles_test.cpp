// Poles and delays that are moved, added and given up, on functions made of known ones.
#include "improved/fits/moved_poles.h"

#include "base/constants.h"
#include "improved/fits/pole_choice.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;

namespace {

constexpr int SAMPLES = 120;
const PoleFrame DELAYED{false, false, false, true};

// Two groups: real poles, a pair and a pole that both have nearly alike.
const PoleSet& knownSet() {
  static PoleSet S{};
  S.groups = 2;
  S.NH[1] = 4;
  S.NH[2] = 2;
  S.TAU[1] = 1e-5;
  S.TAU[2] = 4e-5;
  const Complex first[] = {-20.0, -3e3, {-4e4, 3e4}, {-4e4, -3e4}}, second[] = {-30.0, -9e4};
  std::copy_n(first, 4, S.HPOLE[1].data());
  std::copy_n(second, 2, S.HPOLE[2].data());
  return S;
}

// Elements of the model of the set, with residues that differ from one to the other.
PoleTargets& targetsOf(const PoleSet& S) {
  static PoleTargets T;
  static FreqCurve W, weight;
  static ComplexCurve F;
  for (int k = 1; k <= SAMPLES; ++k) {
    W[k] = std::pow(10.0, 6.0 * (k - 1) / (SAMPLES - 1));
    weight[k] = 1;
  }
  beginTargets(T, SAMPLES, W, weight, 3);
  for (int e = 1; e <= 3; ++e) {
    for (int k = 1; k <= SAMPLES; ++k) {
      const Complex s(0, W[k]);
      F[k] = 0;
      for (int g = 1; g <= S.groups; ++g) {
        Complex sum = 0;
        for (int m = 1; m <= S.NH[g]; ++m) {
          const int which = S.HPOLE[g][m].imag() < 0 ? m - 1 : m; // both of a pair alike
          const double part = 0.2 + 0.5 * std::abs(std::sin(3.0 * e + g + 1.7 * which));
          sum -= part * S.HPOLE[g][m].real() / (s - S.HPOLE[g][m]);
        }
        F[k] += sum * std::exp(-s * S.TAU[g]);
      }
    }
    addTarget(T, e, F.steps);
  }
  return T;
}

TEST(MovedPoles, ComeBackToWhereTheyWere) {
  const PoleTargets& T = targetsOf(knownSet());
  PoleSet S = knownSet();
  for (int g = 1; g <= 2; ++g) {
    for (int m = 1; m <= S.NH[g]; ++m) S.HPOLE[g][m] *= m % 2 == 1 ? 1.3 : 0.8;
    S.TAU[g] *= 1.02;
  }
  S.HPOLE[1][4] = std::conj(S.HPOLE[1][3]);
  EXPECT_GT(MOVEPOLES(T, DELAYED, 0, S), 1e-3);
  EXPECT_LT(MOVEPOLES(T, DELAYED, 40, S), 1e-8);
  for (int g = 1; g <= 2; ++g) {
    EXPECT_NEAR(S.TAU[g] / knownSet().TAU[g], 1, 1e-6) << g;
    for (int m = 1; m <= S.NH[g]; ++m)
      EXPECT_LT(std::abs(S.HPOLE[g][m] / knownSet().HPOLE[g][m] - 1.0), 1e-4) << g << ' ' << m;
  }
}

// A pole that is missing is added to the group that misses it, and one too many has least loss.
TEST(MovedPoles, AreAddedAndGivenUpWhereTheyShould) {
  static PoleLosses losses;
  const PoleTargets& T = targetsOf(knownSet());
  PoleSet S = knownSet();
  TAKEPOLEOUT(S, 2, 2);
  ASSERT_TRUE(ADDPOLE(T, DELAYED, 10, S));
  EXPECT_GT(S.NH[2], 1);
  EXPECT_EQ(S.NH[1], 4);
  PoleSet full = knownSet();
  EXPECT_FALSE(ADDPOLE(T, DELAYED, 2, full));
  full.HPOLE[2][++full.NH[2]] = -700.0;
  const int count = RANKPOLES(T, DELAYED, full, losses);
  ASSERT_EQ(count, 6); // a pair counts once
  EXPECT_EQ(losses[1].g, 2);
  EXPECT_EQ(losses[1].m, 3);
  EXPECT_LT(losses[1].loss, 1e-12 * losses[2].loss);
  // the loss of a real pole is what the fit without it has left
  PoleSet less = knownSet();
  RANKPOLES(T, DELAYED, less, losses);
  int i = 1;
  while (less.HPOLE[losses[i].g][losses[i].m].imag() != 0) ++i;
  TAKEPOLEOUT(less, losses[i].g, losses[i].m);
  const double left = MOVEPOLES(T, DELAYED, 0, less);
  EXPECT_NEAR(left * left * 3 * SAMPLES / losses[i].loss, 1, 1e-6);
}

TEST(MovedPoles, RealOnesThatLieCloseBecomeAPair) {
  PoleSet S = knownSet();
  EXPECT_FALSE(PAIRUP(S, 1.6));
  S.HPOLE[1][2] = -25.0;
  ASSERT_TRUE(PAIRUP(S, 1.6));
  EXPECT_EQ(S.NH[1], 4);
  EXPECT_EQ(S.HPOLE[1][1], Complex(-4e4, 3e4));
  EXPECT_EQ(S.HPOLE[1][3], std::conj(S.HPOLE[1][4]));
  EXPECT_NEAR(S.HPOLE[1][3].real(), -std::sqrt(500.0), 1e-9);
}

// More elements than columns: the squares that are left stay about the same.
TEST(MovedPoles, ElementsShareColumnsWithTheirSquares) {
  static PoleTargets T;
  static FreqCurve W, weight;
  static ComplexCurve F;
  const int elements = 4 * MOSTTARGETS;
  for (int k = 1; k <= SAMPLES; ++k) {
    W[k] = k;
    weight[k] = 1;
  }
  beginTargets(T, SAMPLES, W, weight, elements);
  EXPECT_EQ(T.count, MOSTTARGETS);
  double squares = 0;
  for (int e = 1; e <= elements; ++e) {
    for (int k = 1; k <= SAMPLES; ++k) {
      F[k] = Complex(std::sin(0.1 * k * e), std::cos(1.7 * e + 0.3 * k));
      squares += std::norm(F[k]);
    }
    addTarget(T, e, F.steps);
  }
  PoleSet none{};
  const double rms = MOVEPOLES(T, {}, 0, none);
  EXPECT_NEAR(rms * rms * SAMPLES * MOSTTARGETS / squares, 1, 0.3);
}

} // namespace
