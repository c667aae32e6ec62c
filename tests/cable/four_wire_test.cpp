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

// Formulas typed anew, the internal inductance by quadrature: between the two joints below, where
// the current has left the middle and still fills the outer half, and with a thin skin.
TEST(FourWire, MatchesAnEvaluationIn30Digits) {
  const double frequencies[] = {400, 1e4}; // Hz; then by the distance on the square
  const Complex z[2][3] = {{{0.000652643731840751, 0.00570427163509326},
                            {0.000400178454261335, 0.00525242060826203},
                            {0.000370285447947368, 0.0051039737766268}},
                           {{0.0111753231840534, 0.120262004001997},
                            {0.00993956856948796, 0.113766522060673},
                            {0.00953247117603385, 0.111490527022627}}};
  const double y[] = {2.45747519884728e-5, -5.80701936053033e-6, -4.41303338324874e-7}; // at 10 kHz
  setCable();
  for (std::size_t n = 0; n < 32; ++n) {
    const test::LineResult r = test::solveWith(FWZY, frequencies[n / 16]);
    const std::size_t i = n / 4 % 4, j = n % 4, far = (i - j) % 4, m = std::min(far, 4 - far);
    const double share = frequencies[n / 16] / 1e4;
    EXPECT_LT(std::abs(Complex(r.Z[i][j]) / z[n / 16][m] - 1.0), 1e-13) << n;
    EXPECT_LT(std::abs(Complex(r.Y[i][j]) / Complex(0, share * y[m]) - 1.0), 1e-13) << n;
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
