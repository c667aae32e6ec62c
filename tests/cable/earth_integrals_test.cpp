#include "cable/earth_integrals.h"

#include "base/constants.h"
#include "support/bessel_reference.h"
#include "support/console_capture.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;

namespace {

using Wide = std::complex<long double>;

double relative(Complex a, Complex b) { return std::abs(a - b) / std::abs(b); }

// The integrand of CBMUT.
Wide integrand(long double t, Wide z, long double theta) {
  const Wide W = std::sqrt(t * t + z * z);
  const Wide fall = -t * t / (z + W); // z - W without cancellation
  return 2.0L * std::exp(std::cos(theta) * fall) / (t + W) * std::cos(t * std::sin(theta));
}

// Gauss-Legendre with seven points.
Wide gauss(long double lo, long double hi, Wide z, long double theta) {
  constexpr long double nodes[] = {0.949107912342758524526L, 0.741531185599394439864L,
                                   0.405845151377397166907L};
  constexpr long double weights[] = {0.129484966168869693271L, 0.279705391489276667901L,
                                     0.381830050505118944950L};
  const long double c = (lo + hi) / 2;
  const long double h = (hi - lo) / 2;
  Wide sum = 0.417959183673469387755L * integrand(c, z, theta);
  for (int i = 0; i < 3; ++i) {
    sum += weights[i] *
           (integrand(c - h * nodes[i], z, theta) + integrand(c + h * nodes[i], z, theta));
  }
  return h * sum;
}

Wide adaptive(long double lo, long double hi, Wide z, long double theta, Wide whole, int depth) {
  const long double c = (lo + hi) / 2;
  const Wide left = gauss(lo, c, z, theta);
  const Wide right = gauss(c, hi, z, theta);
  if (depth == 0 || std::abs(left + right - whole) < 1e-12L / std::abs(z)) return left + right;
  return adaptive(lo, c, z, theta, left, depth - 1) + adaptive(c, hi, z, theta, right, depth - 1);
}

// CBMUT over intervals that double from |z| / 4 on, to where the integrand is below exp(-45).
Complex quadrature(Complex z, double theta) {
  const long double fall = 45.0L / std::cos(theta);
  const long double end = fall + std::sqrt(2.0L * fall * std::abs(z) * std::abs(z) / z.real());
  Wide sum = 0;
  long double lo = 0;
  for (long double hi = std::min(std::abs(z) / 4.0L, 1.0L); lo < end; hi = 2 * lo) {
    sum += adaptive(lo, hi, z, theta, gauss(lo, hi, z, theta), 24);
    lo = hi;
  }
  return Complex(static_cast<double>(sum.real()), static_cast<double>(sum.imag()));
}

} // namespace

// From a cable's radius at 0.001 Hz to a kilometre at 10 MHz. The ray of 45 degrees is that of a
// soil without displacement currents; towards the imaginary axis the bend at |z| gets sharp.
TEST(EarthIntegrals, DecayIsThatOfTheBesselFunctions) {
  struct {
    double angle;
    double limit;
    double narrow; // with panels an eighth as wide
  } const cases[] = {{0.0, 4e-4, 1e-7}, {PI / 4, 4e-4, 1e-7}, {1.35, 2e-3, 3e-7}};
  for (const auto& c : cases) {
    for (int step = 0; step <= 27; ++step) {
      const Complex z = std::polar(std::pow(10.0, -9.0 + 0.5 * step), c.angle);
      const Complex K0 = test::scaledBesselK(0, z);
      const Complex K1 = z * test::scaledBesselK(1, z);
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
  struct {
    double theta;
    double limit;
  } const cases[] = {{0.0, 2e-4}, {1e-5, 2e-4}, {0.2, 2e-4}, {0.9, 2e-4}, {1.3, 2e-4}, {1.5, 3e-4}};
  for (const auto& c : cases) {
    for (const double angle : {0.0, PI / 4, 1.35}) {
      for (int step = 0; step <= 11; ++step) {
        const Complex z = std::polar(std::pow(10.0, -8.0 + step), angle);
        const Complex J = quadrature(z, c.theta);
        if (angle < 1.0 && step <= 9) {
          EXPECT_LT(relative(CBMUT(z, c.theta), J), c.limit) << z << c.theta;
        }
        EXPECT_LT(relative(cbmutPanels(z, c.theta, 8).S, J), 1e-5) << z << c.theta;
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
  // Here they are held to a half-width of 100 / sin theta before they come to X1.
  const double widest = 200.0 / std::sin(1.5);
  const int free = static_cast<int>(std::ceil(std::log(widest / 0.1) / std::log(1.02)));
  const double X1 = std::sqrt((0.000625 / std::cos(1.5) + 5e8) / std::cos(1.5));
  const double held = (X1 - 5.0 * (std::pow(1.02, free) - 1.0)) / widest;
  EXPECT_EQ(cbmutPanels({1e10, 0.0}, 1.5).growing, free + static_cast<int>(held));
  // z = 0: panels 0.025 wide of exp(-t). The first below 1e-10 of the sum lies at
  // t = log(0.025e10), it is the 774th, and it is left out.
  const PanelSum one = kexponePanels(0.0);
  EXPECT_EQ(one.graded, 773);
  const double q = std::exp(-0.0125);
  const double rule = 0.025 / 6.0 * (1.0 + 4.0 * q + q * q) / (1.0 - q * q);
  EXPECT_NEAR(one.S.real(), rule * (1.0 - std::exp(-773 * 0.025)), 1e-13);
}

TEST(EarthIntegrals, SaysWhatDoesNotConverge) {
  struct {
    Complex (*routine)();
    std::string text;
  } const cases[] = {
      {[] {
         return KEXPINT({6e-91, 8e-91});
       },
       "Failed to converge for R=   1.000000E-90in hyper-b region\"// \" Exec. Continuing\n"},
      {[] {
         return KEXPINT({3.0, 4e3});
       },
       "Failed to converge for R=   4.000001E+03in constant region\"//\" Exec. Continuing\n"},
      {[] {
         return KEXPONE({3.0, 4e3});
       },
       "Failed to converge, Carson R Magnitude =    4.000001E+03Execution continuing\n"},
      {[] { return CBMUT(0.0, 0.5); },
       "Failed to converge on hyperbolic step loop for R=    0.000000E+00 CBMUT Execution "
       "Continuing\nFailed to converge on exponential step loopfor R=    0.000000E+00 CBMUT "
       "Execution Continuing\n"},
      {[] {
         return KEXPINT({1.0, 1.0}) + KEXPONE(0.0) + CBMUT({1.0, 1.0}, 0.5);
       },
       ""}};
  for (const auto& c : cases) EXPECT_EQ(test::consoleOf(c.routine), c.text);
}
