// The look at a model on its way to the file, against a closed form.
#include "passivity/quick_look.h"

#include "base/constants.h"
#include "support/propagation_case.h"
#include "support/scratch.h"
#include "support/whole_run.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

constexpr double YCLOSED = 2e-3; // S

// Conductors apart from each other with a real Yc and H = p / (s + a) e^(-s tau); of the last one p
// is another.
void setClosedForm(int n, double a, double p, double ofLast) {
  laySampleGrid(100, TWOPI * 1, TWOPI * 1e5);
  setGroups(n, {{1e-4, {-a}}});
  FITMODEL.NPY = 0;
  for (int c = 1; c <= n; ++c) {
    for (int r = 1; r <= n; ++r) {
      FITMODEL.HRES[1](r, c)[1] = r != c ? 0 : r == n ? ofLast : p;
      FITMODEL.YD(r, c) = r == c ? YCLOSED : 0;
    }
  }
}

} // namespace

// The halves are Yc (1 +- H) / (1 -+ H): least where |H| = g > 1 is smallest above 1, and at zero
// where the waves have no phase Yc (1 + g) / (1 - g).
TEST(QuickLook, FindsTheWorstOfBothHalves) {
  const double a = TWOPI * 10;
  for (const int n : {1, 3, 30}) {
    for (const double g : {1.02, 1.5}) {
      setClosedForm(n, a, 0.9 * a, g * a);
      const PowerFound found = lookForPower();
      EXPECT_EQ(found.f, 0) << n;
      EXPECT_NEAR(found.value, YCLOSED * (1 + g) / (1 - g), 1e-9 * YCLOSED / (g - 1)) << n;
    }
    setClosedForm(n, a, 0.9 * a, 0.999 * a);
    EXPECT_EQ(lookForPower().value, 0) << n;
  }
}

TEST(QuickLook, PassesOverWhatHasNoInverseOrNoValues) {
  const double a = TWOPI * 10;
  setClosedForm(2, a, a, a); // I - H is 0 at zero frequency
  EXPECT_EQ(lookForPower().value, 0);
  setClosedForm(2, a, 0, 0); // a fit that is void
  FITMODEL.YD(1, 1) = FITMODEL.YD(2, 2) = 0;
  EXPECT_EQ(lookForPower().value, 0);
}

// A coarse fit, looked at as it is, and behind an enforcement at all frequencies.
TEST(QuickLook, SpeaksOnceOnTheErrorStreamAndNotOfAModelThatIsMended) {
  const std::string line = R"(Line Summary
{
Number of Conductors: 1
}
Line Constants Tower
{
Circuit
{
Conductors: 1
Conductor Phase Information: 1
DCResistance: 0.05
Radius: 0.015
P1 : 0 20
}
}
Frequency Dep. (Phase) Model Options
{
Weighting Factor 1: 1
Weighting Factor 2: 1
Weighting Factor 3: 1
Maximum Fitting Error (%) for Surge Admittance: 5
Maximum Fitting Error (%) for Attenuation Constant: 5
)";
  const ProgramRun fitted = runLine(line + "}\n", "10000");
  const ProgramRun mended = runLine(line + "Maximum iterations for passivity: 9\n"
                                           "Maximum relative error for passivity: 50\n}\n"
                                           "Numerical Options\n{\nImproved Passivity : 1\n}\n",
                                    "10000");
  EXPECT_NE(fitted.power.find(" S at "), std::string::npos);
  EXPECT_EQ(fitted.console.find("generates power"), std::string::npos);
  EXPECT_EQ(fitted.status, 0);
  EXPECT_NE(mended.console.find("Error of the written model"), std::string::npos);
  EXPECT_EQ(mended.power, "");
}
