#include "overhead/internal_impedance.h"

#include "store/rundata.h"
#include "support/bessel_reference.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;

namespace {

void setShape(bool tube, bool strands, double mur = 1.0) {
  ConductorTable& C = RUNDATA.cond;
  RUNDATA = {};
  C.CRAD[1] = 0.0152;
  C.CRDC[1] = 6e-5;
  C.CMUR[1] = mur;
  C.CTUBE[1] = tube;
  C.CSTRND[1] = strands;
  C.CTHICK[1] = 0.006;
  C.CSTRAD[1] = 0.0017;
  C.CNOUT[1] = 24;
  C.CNTOT[1] = 54;
}

} // namespace

TEST(InternalImpedance, TendsToTheDirectCurrentResistance) {
  for (const int kind : {0, 1, 2, 3}) { // a tube, strands, both
    setShape(kind % 2 == 1, kind > 1);
    const Complex Z = ZINT(TWOPI * 1e-6, 1) / 6e-5;
    EXPECT_NEAR(Z.real(), kind > 0 ? 1.0 : 0.3179 + 0.5 / 0.733, 1e-12);
    EXPECT_NEAR(Z.imag(), 5e-7, 5e-7);
  }
}

TEST(InternalImpedance, SkinTermOfStrandsAtHighFrequencyIsOneOfAPlaneSurface) {
  const double w = TWOPI * 1e8;
  ConductorTable& C = RUNDATA.cond;
  setShape(false, true);
  const Complex strands = ZINT(w, 1);
  const double metal = PI * C.CSTRAD[1] * C.CSTRAD[1] * 54 * 6e-5;
  const double term = 2.25 * metal / (26 * PI * C.CSTRAD[1]);
  EXPECT_NEAR(strands.imag() / (term * std::sqrt(w * MU0 / metal / 2)), 1.0, 1e-12);
  EXPECT_NEAR((strands.real() - 6e-5 + term / (0.777 * 0.0152)) / strands.imag(), 1.0, 1e-12);
}

// The error of the closed form, largest where the skin depth is about the wall or the radius. A
// tube is taken for a plane sheet, which costs more the thicker its wall.
TEST(InternalImpedance, FollowsTheBesselFunctions) {
  // wall over the radius, 1 for a solid conductor, and error
  const double cases[][2] = {{1.0, 0.03}, {0.05, 2e-4}, {0.1, 8e-4}, {0.2, 0.005}, {0.5, 0.025}};
  for (const auto& [wall, error] : cases) {
    double worst = 0;
    for (const double mur : {1.0, 60.0}) {
      for (int half = 0; half <= 14; ++half) {
        const double w = TWOPI * std::pow(10.0, 0.5 * half), r = 0.0152, q = (1.0 - wall) * r;
        setShape(wall < 1.0, wall < 1.0, mur); // tube goes before strands
        RUNDATA.cond.CTHICK[1] = wall * r;
        const double rho = 6e-5 * PI * (r * r - q * q);
        const Complex Z = test::tubeSurfaces(w, q, r, rho, mur).out;
        worst = std::max(worst, std::abs(ZINT(w, 1) - Z) / std::abs(Z));
      }
    }
    EXPECT_LT(worst, error) << wall;
    EXPECT_GT(worst, 0.1 * error) << wall;
  }
}
