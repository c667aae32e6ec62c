#include "overhead/carson_integral.h"

#include "base/constants.h"
#include "support/child.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <vector>

using namespace lcp;

namespace {

using Wide = std::complex<long double>;

Wide integrand(long double t, Wide z, long double theta) {
  return 2.0L * std::exp(-t * std::cos(theta)) * std::cos(t * std::sin(theta)) /
         (t + std::sqrt(t * t + z * z));
}

// Gauss and Kronrod sums of 7 and 15 points.
Wide kronrod(long double lo, long double hi, Wide z, long double theta, long double& error) {
  constexpr long double nodes[8] = {
      0.991455371120812639206854697526329L, 0.949107912342758524526189684047851L,
      0.864864423359769072789712788640926L, 0.741531185599394439863864773280788L,
      0.586087235467691130294144691693013L, 0.405845151377397166906606412076961L,
      0.207784955007898467600689403773245L, 0.0L};
  constexpr long double weights[8] = {
      0.022935322010529224963732008058970L, 0.063092092629978553290700663189204L,
      0.104790010322250183839876322541518L, 0.140653259715525918745189590510238L,
      0.169004726639267902826583426598550L, 0.190350578064785409913256402421014L,
      0.204432940075298892414161999234649L, 0.209482141084727828012999174891714L};
  constexpr long double gauss[4] = {
      0.129484966168869693270611432679082L, 0.279705391489276667901467771423780L,
      0.381830050505118944950369775488975L, 0.417959183673469387755102040816327L};
  const long double c = (lo + hi) / 2;
  const long double h = (hi - lo) / 2;
  Wide fine = weights[7] * integrand(c, z, theta);
  Wide coarse = gauss[3] * integrand(c, z, theta);
  for (int i = 0; i < 7; ++i) {
    const Wide f = integrand(c - h * nodes[i], z, theta) + integrand(c + h * nodes[i], z, theta);
    fine += weights[i] * f;
    if (i % 2 == 1) coarse += gauss[i / 2] * f;
  }
  error = h * std::abs(fine - coarse);
  return h * fine;
}

Wide adaptive(long double lo, long double hi, Wide z, long double theta, int depth) {
  long double error = 0;
  const Wide whole = kronrod(lo, hi, z, theta, error);
  if (error < 1e-14L || depth == 0) return whole;
  const long double c = (lo + hi) / 2;
  return adaptive(lo, c, z, theta, depth - 1) + adaptive(c, hi, z, theta, depth - 1);
}

// The integral to the end by adaptive quadrature over intervals that double from |z| / 4 on.
Complex quadrature(Complex z, double theta, long double end) {
  long double lo = 0;
  long double hi = std::min<long double>(std::abs(z) / 4, 1.0L);
  Wide sum = 0;
  while (lo < end) {
    sum += adaptive(lo, hi, Wide(z), theta, 20);
    lo = hi;
    hi = std::min(2 * lo, end);
  }
  return {static_cast<double>(sum.real()), static_cast<double>(sum.imag())};
}

double relative(Complex a, Complex b) { return std::abs(a - b) / std::abs(b); }

struct Pair {
  double H; // sum of the heights, m
  double x; // horizontal distance, m
};
constexpr Pair PAIRS[] = {{8, 0}, {24, 0}, {24, 11}, {20, 60}, {90, 25}};

} // namespace

// From 0.01 Hz to 10 MHz, 1 to 10000 ohm m. With panels a tenth as wide what is left of the error
// is the part behind the last panel: the rule that ends the integral can be met early where the
// cosine is 0 in the middle of a panel, as at x = 3 H.
TEST(CarsonIntegral, AgreesWithQuadratureToTheErrorOfItsPanels) {
  double worst = 0;
  double narrow = 0;
  double behind = 0;
  for (const Pair& pair : PAIRS) {
    for (int decade = -2; decade <= 7; ++decade) {
      for (const double rho : {1.0, 100.0, 1e4}) {
        const double k =
            std::sqrt(PI * std::pow(10.0, decade) * MU0 / rho) * std::hypot(pair.H, pair.x);
        const double theta = std::atan2(pair.x, pair.H);
        const Complex J = quadrature({k, k}, theta, 50.0L / std::cos(theta));
        const CarsonSum cut = carsonPanels({k, k}, theta, 10);
        const Complex part = quadrature({k, k}, theta, 0.05L * cut.linear);
        worst = std::max(worst, relative(CARSINT({k, k}, theta), J));
        narrow = std::max(narrow, relative(cut.A, part));
        behind = std::max(behind, relative(part, J));
      }
    }
  }
  RecordProperty("worst", std::to_string(1e6 * worst));
  RecordProperty("narrow", std::to_string(1e9 * narrow));
  RecordProperty("behind", std::to_string(1e6 * behind));
  EXPECT_LT(worst, 1.5e-3);
  EXPECT_LT(narrow, 1e-6);
  EXPECT_LT(behind, 1e-4);
}

TEST(CarsonIntegral, FastSumIsThePlainSum) {
  double worst = 0;
  for (const double theta : {0.0, 0.1, -0.5, 0.9, 1.2, 1.4}) {
    for (const double angle : {PI / 4, 0.9, 1.2, 1.5, 0.1, -0.5}) {
      for (int step = 0; step <= 20; ++step) {
        const Complex z = std::polar(std::pow(10.0, -9.9 + 0.87 * step), angle);
        ASSERT_TRUE(carsonBlocksTake(z, theta));
        const CarsonSum plain = carsonPanels(z, theta);
        const CarsonSum fast = carsonBlocks(z, theta);
        worst = std::max(worst, relative(fast.A, plain.A));
        EXPECT_EQ(fast.geometric, plain.geometric) << z << theta;
        EXPECT_EQ(fast.linear, plain.linear) << z << theta;
        EXPECT_TRUE(fast.linearDone && plain.linearDone) << z << theta;
      }
    }
  }
  RecordProperty("worst", std::to_string(1e15 * worst));
  EXPECT_LT(worst, 1e-14);
}

// Panels that grow by 2 % reach 0.05 after log(1 + 0.02 / |z|) / log 1.02 of them. For large |z| a
// panel is 0.05 exp(-t) / |z| and the sum 2 / |z|, so that the last one lies at t = log(0.025e10).
TEST(CarsonIntegral, StagesByTheSizeOfZ) {
  struct {
    double size;
    int geometric;
    int linear; // 0: not foreseen
  } const cases[] = {{1e-8, 732, 0}, {1e-4, 267, 0}, {0.4, 2, 0},  {0.5, 1, 0},
                     {0.99, 1, 0},   {1.0, 0, 0},    {1e4, 0, 388}};
  for (const auto& c : cases) {
    for (const CarsonSum& sum : {carsonPanels(c.size, 0.0), carsonBlocks(c.size, 0.0)}) {
      EXPECT_EQ(sum.geometric, c.geometric) << c.size;
      EXPECT_TRUE(c.linear == 0 || c.linear == sum.linear) << c.size;
    }
  }
}

TEST(CarsonIntegral, LimitsOfSmallAndLargeArguments) {
  const double EULER = 0.57721566490153286;
  for (const double r : {1e-8, 1e-6, 1e-4}) {
    const Complex z(r, r);
    EXPECT_NEAR(std::abs(CARSINT(z, 0.0) - (std::log(2.0 / z) + 0.5 - EULER)), 0.0, 1.5e-3);
  }
  for (const double theta : {0.0, 0.7, 1.3}) {
    const Complex z(4e4, 4e4);
    EXPECT_LT(relative(CARSINT(z, theta), 2.0 * std::cos(theta) / z), 1e-4);
    EXPECT_EQ(CARSINT(z, theta), CARSINT(z, -theta));
  }
  // Beyond the fast sum: the same limit, and no overflow.
  EXPECT_FALSE(carsonBlocksTake(1e150, 0.0));
  EXPECT_NEAR(CARSINT(1e150, 0.0).real() * 1e150, 2.0, 1e-5);
}

TEST(CarsonIntegral, SaysWhenAStageRunsOut) {
  const std::string hyperbolic = "Failed to converge on hyperbolic step length for R=";
  const std::string linear = "Failed to converge on linear step length for R=";
  const auto inChild = [](Complex z, double theta) {
    return test::runChild([=] { CARSINT(z, theta); }).console;
  };
  EXPECT_EQ(inChild(1e-3, 0.4), "");
  EXPECT_EQ(inChild(1e-100, 0.0), hyperbolic + "   1.000000-100Exec. Continuing\n");
  EXPECT_EQ(inChild(0.0, 0.0), hyperbolic + "   0.000000E+00Exec. Continuing\n" + linear +
                                   "   0.000000E+00Exec. Continuing\n");
  // A conductor below ground by its average height: the integrand grows without limit.
  EXPECT_EQ(inChild({3.0, 4.0}, 2.0), linear + "   5.000000E+00Exec. Continuing\n");
}
