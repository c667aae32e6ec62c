// The functions and integrals of the earth return of cables.
#include "cable/earth_functions.h"

#include "base/constants.h"
#include "cable/aerial_integral.h"
#include "cable/complex_root.h"
#include "cable/earth_integrals.h"
#include "store/rundata.h"
#include "support/bessel_reference.h"
#include "support/console_capture.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace lcp::test;
using namespace lcp;

namespace {

double relative(Complex a, Complex b) { return std::abs(a - b) / std::abs(b); }

// The same panels node by node with complex functions. 1000 panels, or ten to a wave.
AerialSums plainSums(double X, double H, double w) {
  const double nodes[][2] = {{0.9061798459, 0.236926885},
                             {0.5384693101, 0.4786286705},
                             {0, 0.5688888889},
                             {-0.5384693101, 0.4786286705},
                             {-0.9061798459, 0.236926885}};
  const Ground& G = RUNDATA.ground;
  const double T = std::log(1000) / H, dt = std::min(T / 1000, 6.28318530718 / (10 * X));
  const double k2 = MU0EPS0 * w * w;
  const Complex G2(k2 - G.GEPSR * k2, MU0 / G.GRHO * w), N2(G.GEPSR, -MU0 / G.GRHO * w / k2);
  AerialSums sum{};
  for (int k = 0; k < std::ceil(T / dt) - 1; ++k) {
    for (const auto& [place, weight] : nodes) {
      const double u = dt * (k + 0.5 + 0.5 * place);
      const Complex s = std::sqrt(u * u + G2), a = weight * dt * std::exp(-H * u) * std::cos(X * u);
      sum.SZ += a / (u + s);
      sum.SQ += a / (s + N2 * u);
    }
  }
  return sum;
}

double distance(const AerialSums& a, const AerialSums& b) {
  return std::max(std::abs(a.SZ - b.SZ) / std::abs(b.SZ), std::abs(a.SQ - b.SQ) / std::abs(b.SQ));
}

} // namespace

// The limits are those of the forms: loss of digits by cancellation up to |z| = 9, the part
// exp(-2 z) dropped above it, the first term of the large argument above 150.
TEST(KZero, IsTheBesselFunction) {
  const double cases[][3] = {
      // angle, size, limit
      {0.0, 1e-9, 1e-15},  {0.0, 9.0, 1e-8},      {0.0, 9.01, 2e-8},   {0.0, 18.1, 2e-12},
      {0.0, 150.0, 1e-14}, {0.0, 151.0, 4e-6},    {PI / 4, 9, 1e-10},  {PI / 4, 9.01, 4e-6},
      {PI / 4, 18, 1e-11}, {PI / 4, 18.1, 2e-12}, {PI / 4, 49, 1e-13}, {PI / 4, 149, 1e-14},
      {PI / 4, 600, 3e-7}, {1.35, 9.0, 2e-12},    {1.35, 9.01, 0.02},  {1.35, 149.0, 1e-14}};
  for (const auto& [angle, size, limit] : cases) {
    const Complex z = std::polar(size, angle);
    EXPECT_LT(relative(KZERO(z) * std::exp(z), scaledK(0, z)), limit) << z;
  }
  EXPECT_EQ(KZERO(0.0), 1e300);
}

TEST(Log1ps, PolynomialUpToATenthAndLogarithmAbove) {
  for (const double angle : {0.0, 0.7, PI / 2, 2.5, PI}) {
    for (const double size : {1e-200, 1e-9, 1e-3, 0.0999, 0.1001, 0.5, 40.0}) {
      const Complex z = std::polar(size, angle);
      const long double x = z.real(), y = z.imag();
      const Complex expected(static_cast<double>(0.5L * std::log1p(x * (2 + x) + y * y)),
                             static_cast<double>(std::atan2(y, 1 + x)));
      const double seventh = size < 0.1 ? std::pow(size, 6) / 7.0 * 1.1 : 0.0;
      EXPECT_LT(relative(LOG1PS(z), expected), seventh + 3e-15) << z;
    }
  }
  // A tenth itself belongs to the polynomial, which is 1.3e-8 off there.
  EXPECT_NEAR(LOG1PS(0.1).real() - std::log1p(0.1), -1.3e-8, 1e-9);
}

// From a cable's radius at 0.001 Hz to a kilometre at 10 MHz. The ray of 45 degrees is that of a
// soil without displacement currents; towards the imaginary axis the bend at |z| gets sharp.
TEST(EarthIntegrals, DecayIsThatOfTheBesselFunctions) {
  const double cases[][3] = {// angle, limit, and this with panels an eighth as wide
                             {0.0, 4e-4, 1e-7},
                             {PI / 4, 4e-4, 1e-7},
                             {1.35, 2e-3, 3e-7}};
  for (const auto& [angle, limit, narrow] : cases) {
    for (int step = 0; step <= 27; ++step) {
      const Complex z = std::polar(std::pow(10.0, -9.0 + 0.5 * step), angle);
      const Complex K0 = scaledK(0, z), K1 = z * scaledK(1, z);
      EXPECT_LT(relative(KEXPINT(z), K0), limit) << z;
      EXPECT_LT(relative(KEXPONE(z), K1), 1e-4) << z;
      EXPECT_LT(relative(kexpintPanels(z, 8).S, K0), narrow) << z;
      EXPECT_LT(relative(kexponePanels(z, 8).S, K1), narrow) << z;
    }
  }
}

// Below |z| = 10 the error is that of the panels. Above it the cosine makes the integral small
// against its integrand, and with it the panels coarse. What narrow panels leave is the part behind
// the last one: the rule that ends the integral can be met early, where the cosine is 0 in a panel.
TEST(EarthIntegrals, MutualIntegralAgreesWithQuadrature) {
  for (const double theta : {0.0, 1e-5, 0.2, 0.9, 1.3, 1.5}) {
    for (const double angle : {0.0, PI / 4, 1.35}) {
      for (int step = 0; step <= 11; ++step) {
        const Complex z = std::polar(std::pow(10.0, -8.0 + step), angle);
        const Complex J = earthIntegral(0, std::cos(theta), std::sin(theta), z);
        const double limit = angle > 1.0 || step > 9 ? HUGE_VAL : theta < 1.4 ? 2e-4 : 3e-4;
        EXPECT_LT(relative(CBMUT(z, theta), J), limit) << z << theta;
        EXPECT_LT(relative(cbmutPanels(z, theta, 8).S, J), 1e-5) << z << theta;
      }
    }
  }
}

TEST(EarthIntegrals, SaysWhatDoesNotConverge) {
  const std::string failed = "Failed to converge", on = "Execution Continuing\n";
  const auto told = [](Complex (*integral)(Complex), Complex z) {
    return consoleOf([&] { integral(z); });
  };
  EXPECT_EQ(told(KEXPINT, {6e-91, 8e-91}),
            failed + " for R=   1.000000E-90in hyper-b region\"// \" Exec. Continuing\n");
  EXPECT_EQ(told(KEXPINT, {3.0, 4e3}),
            failed + " for R=   4.000001E+03in constant region\"//\" Exec. Continuing\n");
  EXPECT_EQ(told(KEXPONE, {3.0, 4e3}),
            failed + ", Carson R Magnitude =    4.000001E+03Execution continuing\n");
  EXPECT_EQ(told(KEXPONE, 0.0), "");
  EXPECT_EQ(consoleOf([] { CBMUT(0.0, 0.5); }),
            failed + " on hyperbolic step loop for R=    0.000000E+00 CBMUT " + on + failed +
                " on exponential step loopfor R=    0.000000E+00 CBMUT " + on);
}

// Pairs are new at the first frequency and summed together at the others, and over the second soil
// at the last one again. The two pairs far apart are too many panels to be kept both; they come
// last, so that a store that turns them out shows.
TEST(AerialIntegral, IsTheSameKeptAndAnew) {
  const double pairs[][2] = {{0.01, 20}, {4, 20}, {4, 22}, {3000, 20}, {20e5, 20}, {21e5, 21}};
  const auto sum = [&](int k, double w) { return AERIALSUM(pairs[k][0], pairs[k][1], w); };
  FORGETAERIAL();
  for (const double eps : {1.0, 30.0}) {
    RUNDATA.ground = {};
    RUNDATA.ground.GRHO = 2e4;
    RUNDATA.ground.GEPSR = eps;
    for (const double w : {1.0, 3e3, 6e6}) {
      AerialSums kept[6];
      for (int k = 0; k < (w == 3e3 && eps == 1.0 ? 6 : 4); ++k) {
        kept[k] = sum(k, w);
        const double limit = 1e-12 + 1e-13 * pairs[k][0] / pairs[k][1]; // digits of the phase X u
        EXPECT_LT(distance(kept[k], plainSums(pairs[k][0], pairs[k][1], w)), limit)
            << k << " " << w;
      }
      for (int k = 3; k >= 0; --k) EXPECT_EQ(distance(sum(k, w), kept[k]), 0) << k << " at " << w;
    }
  }
  const AerialSums kept = sum(1, 6e6), far = sum(5, 6e6);
  FORGETAERIAL();
  EXPECT_TRUE(distance(sum(5, 6e6), far) == 0 && distance(sum(1, 6e6), kept) == 0);
}

// All quadrants, the axes, and parts far apart.
TEST(ComplexRoot, IsThePrincipalRoot) {
  const double parts[] = {0, 1e-300, 3e-131, 1e-20, 0.7, 0.7000000000000001, 5e9, 2e130, 1e300};
  for (const double x : parts) {
    for (const double y : parts) {
      for (const Complex z : {Complex(x, y), Complex(-x, y), Complex(x, -y), Complex(-x, -y)}) {
        const Complex wanted = std::sqrt(z), is = ROOT(z);
        EXPECT_DOUBLE_EQ(is.real(), wanted.real()) << z;
        EXPECT_DOUBLE_EQ(is.imag(), wanted.imag()) << z;
      }
    }
  }
}
