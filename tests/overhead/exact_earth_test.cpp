// The exact integrals of the earth return in the air and in the ground; tests/values holds what
// they are.
#include "cable/exact_earth.h"

#include "base/constants.h"
#include "overhead/earth_quadrature.h"
#include "overhead/struve_form.h"
#include "store/rundata.h"
#include "support/overhead_lines.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;

namespace {

using Value = Complex (*)(Complex p);
struct Named {
  const char* name;
  Value value;
};
const Named VALUES[] = {
    {"line", [](Complex p) { return EXACTCARSON(p, 24, 10).value; }},
    {"far line", [](Complex p) { return EXACTCARSON(p, 24, 1e4).value; }},
    {"buried",
     [](Complex p) {
       return EXACTBURIED(p, {10, 10, 2, .05, false}).value;
     }},
    {"self",
     [](Complex p) {
       return EXACTBURIED(p, {.05, .05, 2, .05, true}).value;
     }},
    {"mixed", [](Complex p) { return EXACTMIXED(p, 8, 1, 5).value; }},
    {"aerial",
     [](Complex p) {
       return EXACTAERIAL(p, {5, 5, 16, .05, false}).Z.value;
     }},
    {"potential",
     [](Complex p) {
       return EXACTAERIAL(p, {5, 5, 16, .05, false}).P.value;
     }},
    {"far potential",
     [](Complex p) {
       return EXACTAERIAL(p, {500, 500, 16, .05, false}).P.value;
     }},
};

constexpr int SOILS = 4;
void setSoil(int k) {
  RUNDATA.ground = {};
  Ground& G = RUNDATA.ground;
  G.GEPSR = 10;
  G.GRHO = k == 1 ? 1e4 : 100;
  G.GRTYPE = k == 2;
  G.GMUR = k == 3 ? 4 : 1;
}

} // namespace

// Both forms meet where one gives way to the other, all around the plane.
TEST(ExactEarth, ClosedFormIsTheIntegral) {
  int taken = 0;
  for (const double r : {1e-9, 1e-3, 1.0, 4.9, 38.5, 60.0, 1e4}) {
    for (int step = -31; step < 62; ++step) {
      const Complex w = std::polar(r, 0.05 * step);
      const StruveForm closed = STRUVE(w);
      if (!closed.taken) continue;
      ++taken;
      const PathIntegral I = PATHINTEGRAL(0.5 * w, -0.5 * w, weightOfRatio(1.0));
      EXPECT_LT(std::abs(I.value - closed.value), 2e-13 * std::abs(I.value)) << w;
      EXPECT_LT(std::abs(I.value - closed.value), I.error + 1e-13 * std::abs(I.value)) << w;
    }
  }
  EXPECT_GT(taken, 550);
  EXPECT_FALSE(STRUVE({-60.0, 20.0}).taken); // its exponential counts
}

// Carson's first terms, and the image at the complex depth.
TEST(ExactEarth, HasTheLimitsOfLowAndHighFrequency) {
  constexpr double EULER = 0.5772156649015329;
  for (const double x : {0.0, 7.0, 400.0}) {
    setSoil(0);
    const double H = 20, D = std::hypot(x, H);
    const Complex low(0, 1e-9), high(0, 1e13);
    const Complex mD = exactReciprocalDepth(low) * D, m = exactReciprocalDepth(high);
    EXPECT_LT(std::abs(EXACTCARSON(low, H, x).value - (0.5 - EULER - std::log(0.5 * mD))), 1e-6);
    const Complex image = 2 * H / (m * D * D);
    EXPECT_LT(std::abs(EXACTCARSON(high, H, x).value - image), 1e-3 * std::abs(image));
  }
}

// Below ground a body at the surface sees what one in the air at the surface does.
TEST(ExactEarth, JoinsAtTheSurface) {
  for (int soil = 0; soil < SOILS; ++soil) {
    setSoil(soil);
    for (const double w : {1e-3, 3e2, 5e5, 2e8}) {
      const Complex p(0, w), air = EXACTCARSON(p, 9, 30).value;
      EXPECT_LT(std::abs(EXACTMIXED(p, 9, 0, 30).value - air), 1e-12 * std::abs(air)) << w;
    }
  }
}

// Fourth differences of neighbours leave nothing of a smooth curve but what its values are off.
TEST(ExactEarth, IsSmoothOverFrequency) {
  for (int soil = 0; soil < SOILS; ++soil) {
    setSoil(soil);
    for (const Named& n : VALUES) {
      for (int step = -16; step < 22; ++step) {
        const double start = 0.37 * step;
        Complex z[40];
        for (int k = 0; k < 40; ++k)
          z[k] = n.value({0, TWOPI * std::pow(10, start) * std::pow(1.0001, k)});
        for (int k = 2; k < 38; ++k) {
          const Complex noise = z[k - 2] - 4.0 * z[k - 1] + 6.0 * z[k] - 4.0 * z[k + 1] + z[k + 2];
          ASSERT_LT(std::abs(noise), 5e-11 * std::abs(z[k])) << n.name << soil << " " << start;
        }
      }
    }
  }
}

// The mean over a circle of frequencies is the value at its centre, real at a real one, and that of
// the mirrored frequency is the mirrored value.
TEST(ExactEarth, IsAnalyticInTheRightHalfPlane) {
  constexpr int POINTS = 32;
  for (int soil = 0; soil < SOILS; ++soil) {
    setSoil(soil);
    for (const Named& n : VALUES) {
      for (const double size : {1e-3, 1e2, 1e5, 1e7}) {
        for (const double angle : {0.0, 0.7, 1.2}) {
          const Complex p = std::polar(size, angle), z = n.value(p);
          Complex mean = 0;
          for (int k = 0; k < POINTS; ++k)
            mean += n.value(p * (1.0 + std::polar(0.2, TWOPI * k / POINTS))) / double(POINTS);
          EXPECT_LT(std::abs(mean - z), 1e-11 * std::abs(z)) << n.name << soil << p;
          EXPECT_LT(std::abs(n.value(std::conj(p)) - std::conj(z)), 1e-12 * std::abs(z)) << p;
        }
      }
    }
  }
}

// Every element of a line is that of its pair, whatever else shares its geometry.
TEST(ExactEarth, PairsOfALineHaveTheirOwnIntegral) {
  for (int seed = 1; seed < 6; ++seed) {
    test::makeLine(static_cast<std::uint64_t>(seed));
    RUNDATA.ground.GMUR = seed % 2 == 0 ? 1 : 2;
    const ConductorTable& C = RUNDATA.cond;
    PREPAREEXACT(C.NCOND);
    SOLVEEXACT(1e4);
    for (int i = 1; i <= C.NCOND; ++i) {
      for (int j = 1; j <= C.NCOND; ++j) {
        const double x = std::fabs(C.CX[i] - C.CX[j]);
        const Complex E = EXACTCARSON({0, 1e4}, C.CYAVG[i] + C.CYAVG[j], x).value;
        ASSERT_LT(std::abs(EXACTTERM(i, j) - E), 1e-11 * std::abs(E)) << seed << i << " " << j;
      }
    }
  }
}

// Formula 2 is the same integral, to the width of its panels; Z holds the permeability once.
TEST(ExactEarth, TakesThePlaceOfTheFormulas) {
  for (int seed = 1; seed < 4; ++seed) {
    test::makeLine(static_cast<std::uint64_t>(seed), {6, 2, 1});
    RUNDATA.ground.GMUR = 1;
    RUNDATA.ground.EARTHF = EARTHINTEGRAL;
    const test::LineResult panels = test::solveLine(3e4);
    RUNDATA.ground.EARTHF = 7; // no formula: of no account
    RUNDATA.numerics.IMPROVEDEARTH = true;
    const test::LineResult exact = test::solveLine(3e4);
    RUNDATA.numerics.IMPROVEDEARTH = false;
    for (std::size_t i = 0; i < panels.Z.size(); ++i) {
      for (std::size_t j = 0; j < panels.Z.size(); ++j) {
        const double off = double(std::abs(exact.Z[i][j] - panels.Z[i][j]));
        EXPECT_LT(off, 1e-4 * double(std::abs(panels.Z[i][j]))) << seed;
      }
    }
  }
}
