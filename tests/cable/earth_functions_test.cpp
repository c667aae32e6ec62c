// What the integrals of the earth return of cables say and keep; tests/values holds what they are.
#include "cable/aerial_integral.h"
#include "cable/earth_integrals.h"
#include "store/rundata.h"
#include "support/console_capture.h"
#include <gtest/gtest.h>

using namespace lcp;

TEST(EarthIntegrals, SayWhatDoesNotConverge) {
  const std::string failed = "Failed to converge", on = "Execution Continuing\n";
  const auto told = [](Complex (*integral)(Complex), Complex z) {
    return test::consoleOf([&] { integral(z); });
  };
  EXPECT_EQ(told(KEXPINT, {6e-91, 8e-91}),
            failed + " for R=   1.000000E-90in hyper-b region\"// \" Exec. Continuing\n");
  EXPECT_EQ(told(KEXPINT, {3.0, 4e3}),
            failed + " for R=   4.000001E+03in constant region\"//\" Exec. Continuing\n");
  EXPECT_EQ(told(KEXPONE, {3.0, 4e3}),
            failed + ", Carson R Magnitude =    4.000001E+03Execution continuing\n");
  EXPECT_EQ(told(KEXPONE, 0.0), "");
  EXPECT_EQ(test::consoleOf([] { CBMUT(0.0, 0.5); }),
            failed + " on hyperbolic step loop for R=    0.000000E+00 CBMUT " + on + failed +
                " on exponential step loopfor R=    0.000000E+00 CBMUT " + on);
}

// Pairs are new at the first frequency and summed together at the others, and over the second soil
// at the last one again. The two pairs far apart are too many panels to be kept both; they come
// last, so that a store that turns them out shows.
TEST(AerialIntegral, IsTheSameKeptAndAnew) {
  const double pairs[][2] = {{0.01, 20}, {4, 20}, {4, 22}, {3000, 20}, {20e5, 20}, {21e5, 21}};
  const auto same = [&](int k, double w, bool anew) {
    const AerialSums kept = AERIALSUM(pairs[k][0], pairs[k][1], w);
    if (anew) FORGETAERIAL();
    const AerialSums again = AERIALSUM(pairs[k][0], pairs[k][1], w);
    return kept.SZ == again.SZ && kept.SQ == again.SQ;
  };
  FORGETAERIAL();
  for (const double eps : {1.0, 30.0}) {
    RUNDATA.ground = {};
    RUNDATA.ground.GRHO = 2e4;
    RUNDATA.ground.GEPSR = eps;
    for (const double w : {1.0, 3e3, 6e6}) {
      for (int k = 0; k < (w == 3e3 && eps == 1.0 ? 6 : 4); ++k) EXPECT_TRUE(same(k, w, false));
    }
  }
  for (const int k : {1, 2, 5}) EXPECT_TRUE(same(k, 6e6, true)) << k;
}
