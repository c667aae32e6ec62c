#include "fit/phase_residues.h"

#include "base/constants.h"
#include "support/propagation_case.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

const Complex J(0, 1);

std::vector<GroupPoles> twoGroups() {
  return {{3e-4, {-5.0, -800.0 + 600.0 * J, -800.0 - 600.0 * J, -2e4, -3e5}},
          {5e-4, {-40.0, -6e3, -1e5 + 8e4 * J, -1e5 - 8e4 * J}}};
}

// Functions that no such model meets: magnitudes and delays of their own for each element.
Complex strange(int r, int c, Complex s) {
  const double tau = 3e-4 + 4e-5 * r + 3e-5 * c;
  return std::exp(-s * tau - std::sqrt(s * (1e-4 * r))) / (1.0 + s / (3e4 * c));
}

RealMatrix someDcValues() {
  RealMatrix H{};
  for (int r = 1; r <= 3; ++r) {
    for (int c = 1; c <= 3; ++c) H(r, c) = r == c ? 0.97 : -0.013 * r + 0.004 * c;
  }
  return H;
}

// Moves residue m of group g of an element, keeping conjugates conjugate; with a closing pole of
// group 1 the value at s = 0 is kept.
void move(int r, int c, int g, int m, Complex by, int closing) {
  const PoleTable& P = FITMODEL.HPOLE[g];
  PoleTable& R = FITMODEL.HRES[g](r, c);
  const bool second = m > 1 && P[m].imag() != 0 && P[m] == std::conj(P[m - 1]);
  const int partner = P[m].imag() == 0 ? 0 : (second ? m - 1 : m + 1);
  if (partner == 0) by = by.real();
  R[m] += by;
  if (partner != 0) R[partner] += std::conj(by);
  if (closing == 0) return;
  const double part = (by / P[m]).real() * (partner == 0 ? 1 : 2);
  FITMODEL.HRES[1](r, c)[closing] -= FITMODEL.HPOLE[1][closing].real() * part;
}

// Tries steps in all residues of an element: how many lower its weighted error.
int stepsThatImprove(int r, int c, int closing, LineNumbers& numbers) {
  int better = 0;
  const long double least = weightedSquares(r, c);
  for (int g = 1; g <= FITMODEL.NGROUP; ++g) {
    for (int m = 1; m <= FITMODEL.NH[g]; ++m) {
      if (g == 1 && m == closing) continue;
      const double size = 1e-3 * std::abs(FITMODEL.HPOLE[g][m]);
      const Complex by(numbers.between(-size, size), numbers.between(-size, size));
      for (const double sign : {1.0, -1.0}) {
        move(r, c, g, m, sign * by, closing);
        better += weightedSquares(r, c) < least ? 1 : 0;
        move(r, c, g, m, -sign * by, closing);
      }
    }
  }
  return better;
}

} // namespace

TEST(PhaseResidues, RecoverAModelWithTwoDelays) {
  for (const int NC : {1, 3, 7}) {
    LineNumbers numbers(11);
    static std::vector<ResidueMatrix> known;
    laySampleGrid(150, 1, 1e6);
    setGroups(NC, twoGroups());
    setRandomResidues(numbers);
    sampleModelOfH();
    known.assign(FITMODEL.HRES.data(), FITMODEL.HRES.data() + 2);
    const PhaseFit fit = HPHASEFIT(0, nullptr, false);
    EXPECT_LT(fit.MAXERR, 1e-8 * measureFit().norm);
    EXPECT_LE(fit.RMSERR, fit.MAXERR);
    for (int g = 1; g <= 2; ++g) {
      for (int m = 1; m <= FITMODEL.NH[g]; ++m) {
        const Complex R = known[static_cast<std::size_t>(g - 1)](NC, 1)[m];
        const double size = std::abs(FITMODEL.HPOLE[g][m]);
        EXPECT_LT(std::abs(FITMODEL.HRES[g](NC, 1)[m] - R), 1e-9 * size) << g << " " << m;
      }
    }
  }
}

TEST(PhaseResidues, AreTheBestOnesUnderTheWeights) {
  LineNumbers numbers(5);
  const RealMatrix HDC = someDcValues();
  for (const int DCTYPE : {0, 1}) {
    laySampleGrid(90, 1, 1e6);
    for (int k = 1; k <= 90; ++k) SOLVEDATA.grid.WFIT[k] = k % 7 == 0 ? 0 : numbers.between(0.2, 5);
    setGroups(2, twoGroups());
    sampleH(strange);
    HPHASEFIT(DCTYPE, &HDC, false);
    for (int r = 1; r <= 2; ++r) {
      for (int c = 1; c <= 2; ++c) {
        EXPECT_EQ(stepsThatImprove(r, c, DCTYPE, numbers), 0) << DCTYPE << " " << r << c;
      }
    }
  }
}

TEST(PhaseResidues, ReportTheErrorsOfTheModel) {
  const RealMatrix HDC = someDcValues();
  for (const int DCTYPE : {0, 1, 2}) {
    for (const int NC : {1, 3}) {
      laySampleGrid(80, 1, 1e6);
      SOLVEDATA.grid.WFIT[40] = 100; // errors know no weights
      setGroups(NC, twoGroups());
      sampleH(strange);
      const PhaseFit fit = HPHASEFIT(DCTYPE, &HDC, false);
      const MeasuredFit measured = measureFit();
      EXPECT_GT(fit.MAXERR, 1e-4);
      EXPECT_NEAR(fit.MAXERR, measured.largest, 1e-11 * measured.largest);
      EXPECT_NEAR(fit.RMSERR, measured.rms, 1e-11 * measured.rms);
      EXPECT_LE(fit.RATIO, measured.ratio);
      EXPECT_GE(fit.RATIO * 1.1, measured.ratio);
    }
  }
}

TEST(PhaseResidues, MeetTheDcValues) {
  const RealMatrix HDC = someDcValues();
  const std::vector<Complex> real = {-30.0, -900.0, -7e4};
  const std::vector<Complex> pair = {-30.0 + 20.0 * J, -30.0 - 20.0 * J, -7e4};
  struct Case {
    std::vector<Complex> first; // poles of group 1
    int DCTYPE;
    int poles; // of group 1 with the correction
  };
  const Case cases[] = {{real, 1, 3}, {pair, 1, 4}, {{}, 1, 1},
                        {real, 2, 4}, {pair, 2, 4}, {{}, 2, 1}};
  for (const Case& C : cases) {
    laySampleGrid(100, 1, 1e6);
    setGroups(3, {{3e-4, C.first}, {4e-4, pair}});
    sampleH(strange);
    HPHASEFIT(C.DCTYPE, &HDC, false);
    EXPECT_EQ(FITMODEL.NH[1], C.poles);
    EXPECT_EQ(FITMODEL.NH[2], 3);
    EXPECT_LT(dcDeviation(HDC), 1e-9) << C.DCTYPE << " " << C.poles;
    if (C.poles == 3) continue;
    EXPECT_EQ(FITMODEL.HPOLE[1][C.poles], Complex(-PI));
  }
}

TEST(PhaseResidues, TheExtraPoleLeavesTheOthersAlone) {
  const RealMatrix HDC = someDcValues();
  laySampleGrid(100, 1, 1e6);
  setGroups(2, twoGroups());
  sampleH(strange);
  HPHASEFIT(0, nullptr, false);
  const PoleTable plain = FITMODEL.HRES[1](2, 1);
  const PoleTable second = FITMODEL.HRES[2](2, 1);
  HPHASEFIT(2, &HDC, false);
  for (int m = 1; m <= 5; ++m) EXPECT_EQ(FITMODEL.HRES[1](2, 1)[m], plain[m]);
  for (int m = 1; m <= 4; ++m) EXPECT_EQ(FITMODEL.HRES[2](2, 1)[m], second[m]);
  EXPECT_EQ(FITMODEL.HRES[1](2, 1)[6].imag(), 0.0);
}

// A full group has room for the pole of a correction.
TEST(PhaseResidues, AFullGroupTakesTheExtraPole) {
  const RealMatrix HDC = someDcValues();
  std::vector<Complex> full = {-2.0 + J, -2.0 - J};
  for (int m = 3; m <= NPMAX; ++m) full.emplace_back(-std::pow(10.0, 0.06 * m));
  for (const int DCTYPE : {1, 2}) {
    laySampleGrid(150, 1, 1e6);
    setGroups(1, {{3e-4, full}});
    sampleH(strange);
    HPHASEFIT(DCTYPE, &HDC, false);
    EXPECT_EQ(FITMODEL.NH[1], MAXPOLES);
    double terms = 0; // large ones, which cancel
    for (int m = 1; m <= MAXPOLES; ++m) {
      terms += std::abs(FITMODEL.HRES[1](1, 1)[m] / FITMODEL.HPOLE[1][m]);
    }
    EXPECT_LT(dcDeviation(HDC), 1e-15 * terms);
  }
}

// More unknowns than rows, and more columns than the usual work numbers allow.
TEST(PhaseResidues, FitMoreColumnsThanRows) {
  struct Case {
    int groups, poles;
  };
  for (const Case C : {Case{6, 8}, {49, 45}}) {
    std::vector<GroupPoles> groups;
    for (int g = 1; g <= C.groups; ++g) {
      groups.push_back({1e-4 * g, {}});
      for (int m = 1; m <= C.poles; ++m)
        groups.back().poles.emplace_back(-std::pow(10, 3 + 3.0 * m / C.poles));
    }
    laySampleGrid(10, 1e3, 1e6);
    setGroups(2, groups);
    sampleH(strange);
    const PhaseFit fit = HPHASEFIT(0, nullptr, false);
    EXPECT_LT(fit.MAXERR, 1e-7) << C.groups;
  }
}

TEST(PhaseResidues, AModelWithoutPolesIsZero) {
  laySampleGrid(20, 1, 1e6);
  setGroups(2, {{3e-4, {}}, {4e-4, {}}});
  sampleH(strange);
  const PhaseFit fit = HPHASEFIT(0, nullptr, false);
  EXPECT_NEAR(fit.MAXERR, measureFit().norm, 1e-15);
  EXPECT_EQ(fit.RATIO, 0.0);
}

TEST(PhaseResidues, SingularValuesSeparateEqualPoles) {
  laySampleGrid(60, 1, 1e6);
  std::vector<GroupPoles> groups = twoGroups();
  groups.push_back(groups.front()); // columns that stand twice
  setGroups(2, groups);
  sampleH(strange);
  const PhaseFit plain = HPHASEFIT(0, nullptr, false);
  const PhaseFit truncated = HPHASEFIT(0, nullptr, true);
  EXPECT_NEAR(truncated.MAXERR, plain.MAXERR, 1e-9);
  EXPECT_NEAR(truncated.MAXERR, measureFit().largest, 1e-9);
  EXPECT_EQ(FITMODEL.NH[3], 5); // the smallest solution shares, it leaves no residue at zero
  for (int m = 1; m <= 5; ++m) {
    const Complex R = FITMODEL.HRES[1](1, 2)[m];
    EXPECT_LT(std::abs(FITMODEL.HRES[3](1, 2)[m] - R), 1e-6 * std::abs(R));
  }
}

TEST(PhaseResidues, PolesWithoutAResidueAreDropped) {
  laySampleGrid(60, 0.01, 100);
  setGroups(2, {{0.1, {-0.5, -2.0, -9.0}}, {0.3, {-1.0 + J, -1.0 - J, -4.0}}});
  sampleH([](int r, int c, Complex s) {
    const double size = r == 1 && c == 1 ? 1e-12 : 1; // element (1, 1) is the one that tells
    return size * (std::exp(-0.1 * s) * (1.0 / (s + 0.5) + 3.0 / (s + 9.0)) +
                   std::exp(-0.3 * s) / (s + 4.0));
  });
  const PhaseFit fit = HPHASEFIT(0, nullptr, true);
  EXPECT_LT(fit.MAXERR, 1e-12);
  ASSERT_EQ(FITMODEL.NH[1], 2);
  EXPECT_EQ(FITMODEL.HPOLE[1][1], Complex(-0.5));
  EXPECT_EQ(FITMODEL.HPOLE[1][2], Complex(-9.0));
  ASSERT_EQ(FITMODEL.NH[2], 1);
  EXPECT_EQ(FITMODEL.HPOLE[2][1], Complex(-4.0));
}

// Ratios in the order in which they are looked at: a later one must lead by more than 10 per cent.
TEST(PhaseResidues, TheRatioGrowsByStepsOfTenPerCent) {
  struct Case {
    std::vector<double> first, second; // residues of the poles -8 in groups 1 and 2
    double ratio;
    int leader1, leader2;
  };
  const Case cases[] = {
      {{8, 8.4}, {8.7}, 1, 1, 0},       // none leads by more than 10 per cent
      {{8, 8.9}, {9.7}, 8.9 / 8, 2, 0}, // the second does
      {{8, 9.6}, {10.5}, 1.2, 2, 0},    // 10.5 / 9.6 is less
      {{8, 4}, {0, 16}, 2, 1, 2},       // each group has a leader
      {{16, 8}, {8, 4}, 2, 1, 0},       // a group behind a larger one has none
      {{-40, 0}, {0, -50}, 6.25, 1, 2}, // magnitudes count
      {{}, {4, 5, 6}, 0.75, 0, 3},      {{}, {}, 0, 0, 0},
  };
  for (const Case& C : cases) {
    GroupInts LEADER;
    const std::vector<Complex> poles1(C.first.size(), -8.0), poles2(C.second.size(), -8.0);
    setGroups(1, {{0, poles1}, {0, poles2}});
    std::copy(C.first.begin(), C.first.end(), FITMODEL.HRES[1](1, 1).data());
    std::copy(C.second.begin(), C.second.end(), FITMODEL.HRES[2](1, 1).data());
    EXPECT_DOUBLE_EQ(POLERATIO(LEADER), C.ratio);
    EXPECT_EQ(LEADER[1], C.leader1);
    EXPECT_EQ(LEADER[2], C.leader2);
  }
}

TEST(PhaseResidues, TheRatioGoesThroughRowsOfElementsAndSkipsPairs) {
  GroupInts LEADER;
  setGroups(2, {{0, {-1.0 + J, -1.0 - J, -1.0}}});
  const double values[2][2] = {{1, 1.05}, {1.15, 1.2}}; // by columns it would end at 1.2
  for (int r = 1; r <= 2; ++r) {
    for (int c = 1; c <= 2; ++c) {
      FITMODEL.HRES[1](r, c)[1] = FITMODEL.HRES[1](r, c)[2] = 100;
      FITMODEL.HRES[1](r, c)[3] = values[r - 1][c - 1];
    }
  }
  EXPECT_EQ(POLERATIO(LEADER), 1.15);
  EXPECT_EQ(LEADER[1], 3);
  FITMODEL.NH[1] = 2;
  EXPECT_EQ(POLERATIO(LEADER), 0.0);
}
