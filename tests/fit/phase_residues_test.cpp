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

// The derivative of an element's weighted squares along a change of residue m of group g and of its
// conjugate, where a real closing pole of group 1 keeps the value at s = 0; against the sizes of
// what is multiplied.
double slope(int r, int c, int g, int m, Complex by, int closing) {
  const Wide p = FITMODEL.HPOLE[g][m], step = p.imag() == 0 ? Wide(by.real()) : Wide(by);
  const Wide q = closing == 0 ? 1.0 : FITMODEL.HPOLE[1][closing];
  const long double pair = p.imag() == 0 ? 1 : 2, kept = closing == 0 ? 0 : 1;
  long double product = 0, lengths[2] = {};
  for (int k = 1; k <= SOLVEDATA.grid.NFUSE; ++k) {
    const Wide s(0, SOLVEDATA.grid.WFREQ[k]);
    const long double w = SOLVEDATA.grid.WFIT[k];
    Wide phi = step / (s - p);
    if (pair == 2) phi += std::conj(step) / (s - std::conj(p));
    phi *= w * std::exp(-s * Wide(FITMODEL.TAU[g]));
    const Wide back = kept * q * pair * (step / p).real() / (s - q);
    phi -= w * std::exp(-s * Wide(FITMODEL.TAU[1])) * back;
    const Wide e = w * (modelOfH(r, c, s) - Wide(SOLVEDATA.second.HST(k, r, c)));
    product += (std::conj(phi) * e).real();
    lengths[0] += std::norm(phi);
    lengths[1] += std::norm(e);
  }
  return static_cast<double>(std::abs(product) / std::sqrt(lengths[0] * lengths[1]));
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
    for (int g = 1; g <= 2; ++g) {
      for (int m = 1; m <= FITMODEL.NH[g]; ++m) {
        if (g == 1 && m == DCTYPE) continue;
        for (const Complex by : {Complex(1.0), J}) {
          if (by == J && FITMODEL.HPOLE[g][m].imag() == 0) continue;
          EXPECT_LT(slope(1, 2, g, m, by, DCTYPE), 1e-8) << DCTYPE << " " << g << " " << m;
        }
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
  const struct {
    int DCTYPE;
    std::vector<Complex> first;
    int poles; // of group 1 with the correction
  } cases[] = {{1, real, 3}, {1, pair, 4}, {1, {}, 1}, {2, real, 4}, {2, pair, 4}, {2, {}, 1}};
  for (const auto& C : cases) {
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
