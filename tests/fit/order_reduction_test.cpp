#include "fit/order_reduction.h"

#include "support/console_capture.h"
#include "support/propagation_case.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

using Reals = std::vector<double>;

const Complex J(0, 1);

Reals realParts(int g) {
  Reals parts;
  for (int m = 1; m <= FITMODEL.NH[g]; ++m) parts.push_back(FITMODEL.HPOLE[g][m].real());
  return parts;
}

} // namespace

TEST(OrderReduction, PrunesTheLastLeaderOfEachGroup) {
  const struct {
    double limit;
    Reals first, second; // residues of poles -1, -2, -4.. in each group
    Reals left1, left2;
    bool done;
  } cases[] = {
      {5, {4, 10}, {3}, {-1, -2}, {-1}, true},  // at the limit
      {4.9, {4, 10}, {3}, {-1}, {-1}, false},   // the second of the first group
      {4.9, {6, 10}, {6.7}, {-2}, {}, false},   // 6.7 leads 6 by more than 10 per cent
      {4.9, {6, 10}, {6.5}, {-2}, {-1}, false}, // 6.5 does not
      {0.1, {1, 4, 16, 8}, {1, 0.5}, {-1, -2, -8}, {-1, -2}, false},
      {100, {99}, {101, 500, 404}, {}, {-1, -4}, false}, // 99 leads at its time, then 250
      {-1, {0}, {0, 0}, {-1}, {-1, -2}, true},           // nothing to take out
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

TEST(OrderReduction, PairsStayAndRowsOfElementsGoFirst) {
  setGroups(2, {{0, {-1.0 + J, -1.0 - J, -1.0, -2.0 + J, -2.0 - J}}});
  const double values[] = {1, 1.05, 1.15, 1.2}; // of the real pole; by columns it would end at 1.2
  for (int i = 0; i < 4; ++i) {
    PoleTable& R = FITMODEL.HRES[1](1 + i / 2, 1 + i % 2);
    for (const int m : {1, 2, 4, 5}) R[m] = 1000;
    R[3] = values[i];
  }
  GroupInts LEADER;
  EXPECT_EQ(POLERATIO(LEADER), 1.15);
  EXPECT_EQ(LEADER[1], 3);
  for (const bool last : {false, true}) {
    bool DONE = !last;
    PRUNEPOLE(1.1, DONE);
    EXPECT_EQ(DONE, last);
    EXPECT_EQ(realParts(1), (Reals{-1, -1, -2, -2}));
  }
}

// Two of the poles nearly cancel: ratios of 150, of which the response shows a ten thousandth.
TEST(OrderReduction, TakesOutWhatCancelsAndKeepsTheResponse) {
  laySampleGrid(120, 1, 1e6);
  setGroups(2, {{3e-4, {-10.0, -1000.0, -1000.1, -1e5}}, {4e-4, {-2e3 + 1e3 * J, -2e3 - 1e3 * J}}});
  LineNumbers numbers(3);
  setRandomResidues(numbers);
  for (const int i : {0, 1, 2, 3}) {
    PoleTable& R = FITMODEL.HRES[1](1 + i / 2, 1 + i % 2);
    R[2] = -(R[3] = -1.5e5);
  }
  sampleModelOfH();
  EXPECT_GT(HPHASEFIT(0, nullptr, false).RATIO, 130);
  PhaseFit fit{};
  consoleOf([&] { fit = REDUCEORDER(100); });
  EXPECT_LT(measureFit().ratio, 100);
  EXPECT_EQ(FITMODEL.NH[1], 3); // one of the two is enough
  EXPECT_EQ(FITMODEL.NH[2], 2);
  EXPECT_NEAR(fit.MAXERR, measureFit().largest, 1e-12);
  EXPECT_LT(fit.MAXERR, 0.01); // the two together were a double pole of 0.015
}
