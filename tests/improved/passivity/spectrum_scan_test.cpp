// The scan of the whole spectrum against closed forms.
#include "base/constants.h"
#include "improved/passivity/spectrum_scan.h"
#include "store/rundata.h"
#include "support/propagation_case.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

constexpr double YCLOSED = 2e-3; // S

// One conductor with a real Yc and H = p / (s + a) e^(-s tau).
void setClosedForm(double a, double p, double tau) {
  setGroups(1, {{tau, {-a}}});
  FITMODEL.HRES[1](1, 1)[1] = p;
  FITMODEL.NPY = 0;
  FITMODEL.YD(1, 1) = YCLOSED;
  PASSSETY();
  PASSSETH();
}

} // namespace

TEST(SpectrumScan, FindsTheBandsOfAClosedForm) {
  // The halves are Yc (1 +- H) / (1 -+ H), negative where |H| > 1: below sqrt(p^2 - a^2). A gain of
  // 1e-6 is negative in a narrow band of a long line, far between the points of any fixed grid.
  const double a = TWOPI * 10;
  for (const double gain : {1e-6, 1e-2, 0.5}) {
    for (const double tau : {0.0, 1e-3}) {
      setClosedForm(a, a * (1 + gain), tau);
      const Spectrum scan = scanSpectrum({0.01, 1e6}, Scan::Full);
      EXPECT_TRUE(scan.resolved);
      const auto bands = negativeBands(scan);
      ASSERT_EQ(bands.size(), 1) << gain;
      const double end = 10 * std::sqrt((1 + gain) * (1 + gain) - 1);
      EXPECT_EQ(bands[0].from, 0);
      EXPECT_NEAR(bands[0].to, end, 0.3 * end) << gain;
      const double least = std::min((2 + gain) / -gain, -gain / (2 + gain)) * YCLOSED; // at 0 Hz
      EXPECT_NEAR(bands[0].worst, least, 1e-6 * -least);
    }
  }
  setClosedForm(a, a * (1 - 1e-6), 1e-3);
  const Spectrum scan = scanSpectrum({0.01, 1e6}, Scan::Full);
  EXPECT_TRUE(scan.resolved && scan.negative.empty());
}

TEST(SpectrumScan, CoversTheBandTwoDecadesAroundItAndThePassivityCheck) {
  FitOptions& F = RUNDATA.fit;
  PassivityOptions& P = RUNDATA.passivity;
  F.FSTART = 10;
  F.FEND = 1e5;
  const struct {
    double PFLO, PFHI, low, high;
  } cases[] = {{0, 0, 0.1, 1e7}, {1, 1e6, 0.1, 1e7}, {1e-3, 1e6, 1e-3, 1e7}, {1, 1e9, 0.1, 1e9}};
  for (const auto& c : cases) {
    P.PFLO = c.PFLO;
    P.PFHI = c.PFHI;
    EXPECT_DOUBLE_EQ(spectrumRange().low, c.low);
    EXPECT_DOUBLE_EQ(spectrumRange().high, c.high);
  }
}
