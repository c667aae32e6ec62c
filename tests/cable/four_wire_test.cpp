#include "cable/four_wire.h"

#include "base/constants.h"
#include "store/rundata.h"
#include "support/overhead_lines.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;

namespace {

constexpr double RHO = 1.7241e-8, AREA = 95e-6;

void setCable(double rho = RHO) {
  RUNDATA = {};
  RUNDATA.cable.fourWire = {1e6 * AREA, 1.1e-3, 2e-4, 2e-3, rho, 2.4, 3.3, 6.0};
}

const FourWireStore& at(double f) { return test::solveWith(FWZY, f), FOURWIRE; }

} // namespace

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
