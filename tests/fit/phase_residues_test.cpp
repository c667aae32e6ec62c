// Residues over given poles and delays, and removal of poles with large residues.
#include "fit/phase_residues.h"

#include "base/constants.h"
#include "fit/order_reduction.h"
#include "support/console_capture.h"
#include "support/propagation_case.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

const Complex J(0, 1);

// Functions that no such model can represent: each element has its own magnitude and delay.
Complex strange(int r, int c, Complex s) {
  const double tau = 3e-4 + 4e-5 * r + 3e-5 * c;
  return std::exp(-s * tau - std::sqrt(s * (1e-4 * r))) / (1.0 + s / (3e4 * c));
}

// Fits such functions and compares the reported errors with those of the model.
void fitStrange(int DCTYPE, int NC, const std::vector<GroupPoles>& groups) {
  RealMatrix HDC{};
  for (int r = 1; r <= 3; ++r) {
    for (int c = 1; c <= 3; ++c) HDC(r, c) = r == c ? 0.97 : -0.013 * r + 0.004 * c;
  }
  setGroups(NC, groups);
  sampleH(strange);
  const PhaseFit fit = HPHASEFIT(DCTYPE, &HDC, false);
  const MeasuredFit measured = measureFit();
  EXPECT_GT(fit.MAXERR, 1e-4);
  double terms = 0; // large ones of a full group, which cancel
  for (int m = 1; m <= FITMODEL.NH[1]; ++m)
    terms += std::abs(FITMODEL.HRES[1](1, 1)[m] / FITMODEL.HPOLE[1][m]);
  EXPECT_NEAR(fit.MAXERR, measured.largest, 1e-11 * measured.largest + 1e-15 * terms);
  EXPECT_NEAR(fit.RMSERR, measured.rms, 1e-11 * measured.rms + 1e-15 * terms);
  EXPECT_LE(fit.RATIO, measured.ratio);
  EXPECT_GE(fit.RATIO * 1.1, measured.ratio);
  EXPECT_LT(dcDeviation(HDC), 1e-15 * terms + 1e-12) << DCTYPE << " " << NC;
}

using Reals = std::vector<double>;

Reals realParts(int g) {
  Reals parts;
  for (int m = 1; m <= FITMODEL.NH[g]; ++m) parts.push_back(FITMODEL.HPOLE[g][m].real());
  return parts;
}

} // namespace

TEST(PhaseResidues, RecoverAModelWithTwoDelays) {
  for (const auto& [NC, DCTYPE] : {std::pair{1, 0}, {7, 0}, {3, 1}}) {
    LineNumbers numbers(11);
    laySampleGrid(150, 1, 1e6);
    setGroups(NC, {{3e-4, {-5.0, -800.0 + 600.0 * J, -800.0 - 600.0 * J, -2e4, -3e5}},
                   {5e-4, {-40.0, -6e3, -1e5 + 8e4 * J, -1e5 - 8e4 * J}}});
    setRandomResidues(numbers);
    sampleModelOfH();
    RealMatrix HDC{};
    for (int i = 0; i < NC * NC; ++i)
      HDC(1 + i % NC, 1 + i / NC) = double(modelOfH(1 + i % NC, 1 + i / NC, 0).real());
    const PoleTable known[] = {FITMODEL.HRES[1](NC, 1), FITMODEL.HRES[2](NC, 1)};
    HPHASEFIT(DCTYPE, &HDC, false);
    for (int g = 1; g <= 2; ++g) {
      for (int m = 1; m <= FITMODEL.NH[g]; ++m) {
        const double size = std::abs(FITMODEL.HPOLE[g][m]);
        EXPECT_LT(std::abs(FITMODEL.HRES[g](NC, 1)[m] - known[g - 1][m]), 1e-9 * size) << g << m;
      }
    }
  }
}

// The first pole closes if it is real; otherwise one is added, for which a full group has room.
TEST(PhaseResidues, MeetTheDcValues) {
  const std::vector<Complex> real = {-30.0, -900.0, -7e4};
  const std::vector<Complex> pair = {-30.0 + 20.0 * J, -30.0 - 20.0 * J, -7e4};
  std::vector<Complex> full = {-2.0 + J, -2.0 - J};
  for (int m = 3; m <= NPMAX; ++m) full.emplace_back(-std::pow(10.0, 0.06 * m));
  laySampleGrid(150, 1, 1e6);
  for (const int DCTYPE : {1, 2}) {
    for (const auto& first : {real, pair, {}, full}) {
      const int poles = static_cast<int>(first.size());
      const int more = DCTYPE == 2 || first != real ? 1 : 0;
      fitStrange(DCTYPE, poles == NPMAX ? 1 : 3, {{3e-4, first}, {4e-4, pair}});
      EXPECT_EQ(FITMODEL.NH[1], poles + more);
      EXPECT_EQ(FITMODEL.NH[2], 3);
      EXPECT_TRUE(more == 0 || FITMODEL.HPOLE[1][poles + 1] == Complex(-PI));
    }
  }
}

TEST(PhaseResidues, PolesWithoutAResidueAreDropped) {
  laySampleGrid(60, 0.01, 100);
  setGroups(2, {{0.1, {-0.5, -2.0, -9.0}}, {0.3, {-1.0 + J, -1.0 - J, -4.0}}});
  sampleH([](int r, int c, Complex s) {
    const double size = r == 1 && c == 1 ? 1e-12 : 1; // element (1, 1) decides
    return size * (std::exp(-0.1 * s) * (1.0 / (s + 0.5) + 3.0 / (s + 9.0)) +
                   std::exp(-0.3 * s) / (s + 4.0));
  });
  EXPECT_LT(HPHASEFIT(0, nullptr, true).MAXERR, 1e-12);
  EXPECT_EQ(FITMODEL.NH[1] + FITMODEL.NH[2], 3);
  EXPECT_EQ(FITMODEL.HPOLE[1][1], Complex(-0.5));
  EXPECT_EQ(FITMODEL.HPOLE[1][2], Complex(-9.0));
  EXPECT_EQ(FITMODEL.HPOLE[2][1], Complex(-4.0));
}

TEST(OrderReduction, PrunesTheLastLeaderOfEachGroup) {
  const struct {
    double limit;
    Reals first, second; // residues of poles -1, -2, -4.. in each group
    Reals left1, left2;
    bool done;
  } cases[] = {
      {5, {4, 10}, {3}, {-1, -2}, {-1}, true},  // at the limit
      {4.9, {4, 10}, {3}, {-1}, {-1}, false},   // the second of the first group
      {4.9, {6, 10}, {6.7}, {-2}, {}, false},   // 6.7 exceeds 6 by more than 10 percent
      {4.9, {6, 10}, {6.5}, {-2}, {-1}, false}, // 6.5 does not
      {0.1, {1, 4, 16, 8}, {1, 0.5}, {-1, -2, -8}, {-1, -2}, false},
      {100, {99}, {101, 500, 404}, {}, {-1, -4}, false}, // 99 leads at its time, then 250
      {-1, {0}, {0, 0}, {-1}, {-1, -2}, true},           // nothing to remove
  };
  for (const auto& C : cases) {
    const std::vector<Complex> poles = {-1.0, -2.0, -4.0, -8.0};
    setGroups(1, {{0, {poles.begin(), poles.begin() + std::ssize(C.first)}},
                  {0, {poles.begin(), poles.begin() + std::ssize(C.second)}}});
    std::copy(C.first.begin(), C.first.end(), FITMODEL.HRES[1](1, 1).data());
    std::copy(C.second.begin(), C.second.end(), FITMODEL.HRES[2](1, 1).data());
    bool DONE = !C.done;
    PRUNEPOLE(C.limit, DONE);
    EXPECT_EQ(DONE, C.done) << C.limit;
    EXPECT_EQ(realParts(1), C.left1) << C.limit;
    EXPECT_EQ(realParts(2), C.left2) << C.limit;
  }
}
