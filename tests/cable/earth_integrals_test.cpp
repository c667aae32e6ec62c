#include "cable/earth_integrals.h"

#include "base/constants.h"
#include "cable/earth_reference.h"
#include "support/bessel_reference.h"
#include "support/console_capture.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

double relative(Complex a, Complex b) { return std::abs(a - b) / std::abs(b); }

} // namespace

// From a cable's radius at 0.001 Hz to a kilometre at 10 MHz. The ray of 45 degrees is that of a
// soil without displacement currents; towards the imaginary axis the bend at |z| gets sharp.
TEST(EarthIntegrals, DecayIsThatOfTheBesselFunctions) {
  struct {
    double angle, limit, narrow; // this with panels an eighth as wide
  } const cases[] = {{0.0, 4e-4, 1e-7}, {PI / 4, 4e-4, 1e-7}, {1.35, 2e-3, 3e-7}};
  for (const auto& c : cases) {
    for (int step = 0; step <= 27; ++step) {
      const Complex z = std::polar(std::pow(10.0, -9.0 + 0.5 * step), c.angle);
      const Complex K0 = scaledBesselK(0, z), K1 = z * scaledBesselK(1, z);
      EXPECT_LT(relative(KEXPINT(z), K0), c.limit) << z;
      EXPECT_LT(relative(KEXPONE(z), K1), 1e-4) << z;
      EXPECT_LT(relative(kexpintPanels(z, 8).S, K0), c.narrow) << z;
      EXPECT_LT(relative(kexponePanels(z, 8).S, K1), c.narrow) << z;
    }
  }
}

// Below |z| = 10 the error is that of the panels. Above it the cosine makes the integral small
// against its integrand, and with it the panels coarse. What narrow panels leave is the part behind
// the last one: the rule that ends the integral can be met early, where the cosine is 0 in a panel.
TEST(EarthIntegrals, MutualIntegralAgreesWithQuadrature) {
  for (const double theta : {0.0, 1e-5, 0.2, 0.9, 1.3, 1.5}) {
    const double limit = theta < 1.4 ? 2e-4 : 3e-4;
    for (const double angle : {0.0, PI / 4, 1.35}) {
      for (int step = 0; step <= 11; ++step) {
        const Complex z = std::polar(std::pow(10.0, -8.0 + step), angle);
        const Complex J = earthIntegral(0, std::cos(theta), std::sin(theta), z);
        const bool fine = angle < 1.0 && step <= 9;
        EXPECT_TRUE(!fine || relative(CBMUT(z, theta), J) < limit) << z << theta;
        EXPECT_LT(relative(cbmutPanels(z, theta, 8).S, J), 1e-5) << z << theta;
      }
    }
  }
}

TEST(EarthIntegrals, PanelsOfTheStages) {
  // Panels that end below X1 at A (1.02^n - 1) / 0.02, A = 0.05 |z| or at most 0.1. The stage is
  // empty from A = X1 on, that is |z| = 20.0125.
  EXPECT_EQ(kexpintPanels({1e-4, 0.0}).growing, 233);
  EXPECT_EQ(kexpintPanels({20.01, 0.0}).growing, 1);
  EXPECT_EQ(kexpintPanels({20.02, 0.0}).growing, 0);
  EXPECT_EQ(cbmutPanels({10.0, 0.0}, 0.0).growing, 6);
  // z = 0: panels 0.025 wide of exp(-t). The first below 1e-10 of the sum lies at
  // t = log(0.025e10), it is the 774th, and it is left out.
  const PanelSum one = kexponePanels(0.0);
  EXPECT_EQ(one.graded, 773);
  const double q = std::exp(-0.0125);
  const double rule = 0.025 / 6.0 * (1.0 + 4.0 * q + q * q) / (1.0 - q * q);
  EXPECT_NEAR(one.S.real(), rule * (1.0 - std::exp(-773 * 0.025)), 1e-13);
}

TEST(EarthIntegrals, SaysWhatDoesNotConverge) {
  const std::string failed = "Failed to converge", on = "Execution Continuing\n";
  EXPECT_EQ(consoleOf([] {
              KEXPINT({6e-91, 8e-91});
            }),
            failed + " for R=   1.000000E-90in hyper-b region\"// \" Exec. Continuing\n");
  EXPECT_EQ(consoleOf([] {
              KEXPINT({3.0, 4e3});
            }),
            failed + " for R=   4.000001E+03in constant region\"//\" Exec. Continuing\n");
  EXPECT_EQ(consoleOf([] {
              KEXPONE({3.0, 4e3});
            }),
            failed + ", Carson R Magnitude =    4.000001E+03Execution continuing\n");
  EXPECT_EQ(consoleOf([] { CBMUT(0.0, 0.5); }),
            failed + " on hyperbolic step loop for R=    0.000000E+00 CBMUT " + on + failed +
                " on exponential step loopfor R=    0.000000E+00 CBMUT " + on);
  EXPECT_EQ(consoleOf([] { KEXPINT({1.0, 1.0}) + KEXPONE(0.0) + CBMUT({1.0, 1.0}, 0.5); }), "");
}
