#include "cable/four_wire.h"

#include "base/constants.h"
#include "modal/first_loop.h"
#include "modal/frequency_grid.h"
#include "modal/line_constants.h"
#include "modal/report_modes.h"
#include "modal/second_loop.h"
#include "store/rundata.h"
#include "support/child.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

constexpr double RHO = 1.7241e-8, AREA = 95e-6;

void setCable(double rho = RHO) {
  RUNDATA = {};
  RUNDATA.run.ISCABLE = FOURWIRECABLE;
  RUNDATA.cable.fourWire = {1e6 * AREA, 1.1e-3, 2e-4, 2e-3, rho, 2.4, 3.3, 6.0};
}

const FourWireStore& at(double f) { return constantsAt(f), FOURWIRE; }

} // namespace

TEST(FourWire, MatchesAnEvaluationIn30Digits) {
  // formulas typed anew, the internal inductance by quadrature; at 10 kHz, with a thin skin
  const Complex z[] = {{0.0111753231840534, 0.120262004001997},
                       {0.00993956856948796, 0.113766522060673},
                       {0.00953247117603385, 0.111490527022627}};
  const double y[] = {2.45747519884728e-5, -5.80701936053033e-6, -4.41303338324874e-7};
  setCable();
  at(1e4);
  for (int n = 0; n < 16; ++n) { // opposite corners are 2 apart
    const int i = n / 4 + 1, j = n % 4 + 1, m = std::abs(i - j) == 3 ? 1 : std::abs(i - j);
    EXPECT_LT(std::abs(SOLVEDATA.first.ZMAT(i, j) / z[m] - 1.0), 1e-13) << i << j;
    EXPECT_LT(std::abs(SOLVEDATA.first.YMAT(i, j) / Complex(0, y[m]) - 1.0), 1e-13);
  }
}

TEST(FourWire, LimitsAndJoints) {
  const double f = 1e-3, earth = PI * PI * f * 1e-4; // ohm/km of any earth return
  for (const double rho : {0.99e-15, RHO}) {
    setCable(rho);
    const double direct = rho < 1e-15 ? 0.0 : 1000 * rho / (0.88 * AREA);
    EXPECT_NEAR(at(f).FWR(1, 1), direct + earth, 1e-4 * earth);
    EXPECT_NEAR(FOURWIRE.FWR(1, 2), earth, 1e-4 * earth);
  }
  const double D = std::sqrt(4 * AREA / PI);
  const auto frequencyOf = [](double depth) { return RHO / (PI * MU0 * depth * depth); };
  const double begin = 1.28 * RHO / (0.88 * MU0 * AREA); // of the skin effect
  const double open = frequencyOf((std::sqrt(2.0) - 1) * D);
  const FourWireStore within = at(0.5 * (begin + open)), above = at(open * (1 + 1e-6));
  EXPECT_NEAR(within.FWL(1, 1), at(begin * (1 - 1e-6)).FWL(1, 1), 2e-7);
  EXPECT_NEAR(above.FWL(1, 1) - within.FWL(1, 1), -4.5e-7, 1e-7);
  EXPECT_NEAR(above.FWR(1, 1) / within.FWR(1, 1), 1.0, 3e-3);
  const double whole = frequencyOf(std::sqrt(0.22) * D / 2); // current over the whole radius
  EXPECT_NEAR(at(whole * (1 - 1e-9)).FWL(1, 2) / at(whole * (1 + 1e-9)).FWL(1, 2), 1.0, 1e-7);
}

TEST(FourWire, ModesAreThoseOfTheSquare) {
  // ground, two equal ones across, neighbours against each other; at 50 Hz and 1 kHz
  const double Zs[] = {215.999089930, 35.3326786722, 35.3326786722, 26.7089613811};
  const double R[] = {4.30702636e-3, 4.635047166e-4, 4.635047166e-4, 3.005146634e-4};
  const double tau[] = {0.04303837972, 0.01406745466, 0.01406745466, 0.01519576796}; // ms
  setCable();
  RUNDATA.run.LINELEN = 1000.0;
  RUNDATA.line.SSFREQ = 50.0;
  RUNDATA.bergeron.FLOSS = 1000.0;
  RUNDATA.model.MODBERG = true;
  layGrid();
  firstFrequencyLoop();
  alignVectors();
  secondFrequencyLoop();
  for (int i = 1; i <= 4; ++i) {
    EXPECT_NEAR(SOLVEDATA.second.ZSURGER[i], Zs[i - 1], 1e-8);
    EXPECT_NEAR(SOLVEDATA.second.RLOSS1[i], R[i - 1], 1e-11);
    EXPECT_NEAR(SOLVEDATA.second.TAUMS[i], tau[i - 1], 1e-11);
  }
}

TEST(FourWire, RecordsWithoutAFieldEndTheRun) {
  using F = FourWireRecord;
  for (const auto field : {&F::FWAREA, &F::FWTINS, &F::FWEPSI, &F::FWEPST, &F::FWEPSM}) {
    setCable();
    RUNDATA.cable.fourWire.*field = 0.0;
    EXPECT_EQ(runChild([] { at(50.0); }).status, 1);
  }
  setCable(0.0); // lossless: the imaginary part of an eigenvalue is rounding, of either sign
  RUNDATA.run.LINELEN = 1000.0;
  EXPECT_EQ(runChild([] { at(50.0), formReportModes(); }).status, 0);
}
