#include "cable/cable_earth.h"

#include "cable/earth_pairs.h"
#include "cable/numbering.h"
#include "overhead/earth_return.h"
#include "store/rundata.h"
#include "support/bessel_reference.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;

namespace {

double relative(Complex a, Complex b) { return std::abs(a / b - 1.0); }

// Twice the integral of exp(-up u - down s) cos(x u) / (N u + s).
Complex integral(double up, double down, double x, Complex m2, Complex N = 1.0) {
  const Complex m = std::sqrt(m2);
  return std::exp(-down * m) * test::earthIntegral(up, down, x, m, N);
}

Complex K(int n, Complex z) { return std::exp(-z) * test::scaledK(n, z); }

// A buried cable of two conductors, two of one in a pipe or beside it, two aerial ones.
void setSystem(bool inside) {
  RUNDATA.resetInput();
  CableTable& T = RUNDATA.cable;
  T.NCABLE = 5;
  T.NPIPE = 1;
  T.pipe = {1, 2.0, 1.2, 0, 0, 0, 0.1, 0.12};
  for (int c = 1; c <= 5; ++c) {
    Cable& C = T.CB[c];
    C.CBX = 0.5 * c;
    C.CBY = c > 3 ? 10.0 : c > 1 ? 0.8 : 0.9;
    C.CBOVHD = c > 3;
    C.CBNLAY = c == 1 ? 4 : 1;
    C.CBRAD = {0, c < 5 ? 0.02 : 0.03, 0.03, 0.035, 0.04};
    C.CBPIPE = inside && (c == 2 || c == 3) ? 1 : 0;
  }
  RUNDATA.ground.EARTHFU = RUNDATA.ground.EARTHF = EARTHINTEGRAL;
  numberConductors(CABLE.numbering);
}

} // namespace

// The closed forms are for low frequencies and small distances.
TEST(CableEarth, BuriedPairsAgreeWithTheExactIntegral) {
  const Body one{0, 1, 0.04, false}, two{3, 1.5, 0.05, false};
  const double d = std::hypot(3, 0.5), D = std::hypot(3, 2.5);
  LastKexpone last;
  RUNDATA.resetInput();
  RUNDATA.ground.GMUR = 1.5;
  for (const double f : {0.01, 1.0, 50.0, 1e3, 1e5, 1e6}) {
    const Complex m = 1.0 / GRDDEPTH(TWOPI * f), a = 0.04 * m, b = 0.05 * m;
    const Complex self = (K(0, a) - K(0, 2.0 * m) + integral(0, 2, 0, m * m)) / (a * K(1, a));
    const Complex mutual = (K(0, d * m) - K(0, D * m) + integral(0, 2.5, 3, m * m)) / (b * K(1, b));
    const double limits[][3] = {{2, 2e-4, 2e-4}, {0, 5e-3, 0.15}, {3, 9e-3, 0.07}};
    for (const auto& [formula, alone, apart] : limits) {
      const int n = static_cast<int>(formula);
      const double limit = f > 50 ? apart : std::min(apart, 9e-3);
      EXPECT_LT(relative(EBSELF(n, one, m, last), 1.5 * self), alone) << n << " at " << f;
      EXPECT_LT(relative(EBMUT(n, two, one, m, last), 1.5 * mutual), limit) << n << " at " << f;
    }
  }
}

// By integration the end at exp(-7) of the integrand shows. The potential term is too sharp for the
// panels where it is small.
TEST(CableEarth, AerialAndMixedPairsAgreeWithTheirIntegrals) {
  const Body one{0, 10, 0.02, true}, two{4, 12, 0.03, true}, buried{0, 1, 0.04, false};
  RUNDATA.resetInput();
  for (const double eps : {1.0, 10.0}) {
    RUNDATA.ground.GRHO = 500;
    RUNDATA.ground.GEPSR = eps;
    for (const double w : {300.0, 6e3, 8e5, 6e6}) {
      const double k2 = MU0EPS0 * w * w, logarithm = std::log(std::hypot(4, 22) / std::hypot(4, 2));
      const Complex m2(0, w * MU0 / 500), m = std::sqrt(m2), G2 = m2 + k2 * (1 - eps);
      const EarthValue self = EASELF(2, one, m, w), mutual = EAMUT(2, one, two, m, w);
      EXPECT_LT(std::abs(self.Z - std::log(1000) - integral(20, 0, 0.02, G2)), 1.4e-4) << w;
      EXPECT_LT(std::abs(mutual.Z - logarithm - integral(22, 0, 4, G2)), 1.4e-4) << w;
      EXPECT_LT(relative(EASELF(0, one, m, w).Z, self.Z), 0.025) << w;
      EXPECT_LT(relative(EAMUT(0, one, two, m, w).Z, mutual.Z), 0.025) << w;
      const Complex left(13, -4), right(13, 4), L = left + 2.0 / m, R = right + 2.0 / m;
      const Complex images = 0.5 * (std::log(L / left) + std::log(R / right)) -
                             (1.0 / (L * L * L) + 1.0 / (R * R * R)) / (3.0 * m * m * m);
      EXPECT_LT(relative(EMIX(2, buried, two, m), images), 1e-12) << w;
      if (w < 1e4) {
        EXPECT_LT(relative(EMIX(0, two, buried, m), integral(12, 1, 4, m2)), 0.018) << w;
        EXPECT_LT(relative(EMIX(2, buried, two, m), integral(12, 1, 4, m2)), 2e-3) << w;
      } else {
        EXPECT_LT(relative(self.P, integral(20, 0, 0.02, G2, eps - m2 / k2)), 5e-3) << w;
        EXPECT_LT(relative(mutual.P, integral(22, 0, 4, G2, eps - m2 / k2)), 5e-3) << w;
      }
    }
  }
  EXPECT_EQ(EAMUT(2, one, two, 1e-5, 0.0299).P, 0.0);
}

// Every element is the value of the two bodies that its conductors belong to, the later one of the
// walk first.
TEST(CableEarth, BodiesFillTheBlocksOfTheirConductors) {
  const double w = 300.0;
  LastKexpone last;
  for (const bool inside : {true, false}) {
    setSystem(inside);
    const Complex m = 1.0 / GRDDEPTH(w);
    for (Complex& q : CABLE.Q.elements) q = std::nan("");
    CBEARTH(w, CABLE.numbering, CABLE.D, CABLE.Q);
    const int owner[] = {1, 1, 2, 3, 4, 5, inside ? 3 : 6}; // by conductor; 6 a pipe by itself
    for (int k = 0; k < 49; ++k) {
      const int i = std::max(owner[k / 7], owner[k % 7]), j = std::min(owner[k / 7], owner[k % 7]);
      const Body I = i == 6 ? pipeBody() : cableBody(i), J = cableBody(j);
      const bool same = i == j || (inside && i == 3 && j == 2);
      EarthValue value = I.aerial == J.aerial ? EarthValue{} : EarthValue{EMIX(0, I, J, m), 0.0};
      if (I.aerial && J.aerial) value = same ? EASELF(2, I, m, w) : EAMUT(2, I, J, m, w);
      if (!I.aerial && !J.aerial) value.Z = same ? EBSELF(2, I, m, last) : EBMUT(2, I, J, m, last);
      EXPECT_EQ(CABLE.D(k / 7 + 1, k % 7 + 1), value.Z) << inside << k;
      EXPECT_EQ(CABLE.Q(k / 7 + 1, k % 7 + 1), value.P) << inside << k;
    }
  }
}
