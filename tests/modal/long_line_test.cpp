// The pi file of a line is tested for the exact circuit; here a line of which no wave comes back.
#include "modal/long_line.h"

#include "store/solvedata.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;

TEST(LongLine, AVeryLongLineStaysFinite) {
  static LineMatrix Y, Z, YLC, ZLC;
  Y(1, 1) = {1e-11, 4e-9};
  Z(1, 1) = {1e-3, 5e-4};
  bool shown = false;
  LONGCOR(Y, Z, 1e9, YLC, ZLC, 1, shown);
  EXPECT_TRUE(std::isfinite(std::abs(YLC(1, 1))) && std::isfinite(std::abs(ZLC(1, 1))));
  EXPECT_FALSE(shown && ZLC(1, 1).real() < 1e-20);
  for (const double length : {1.0, 3e5, 1.0}) { // the decomposition serves both lengths ...
    LONGCOR(Y, Z, length, YLC, ZLC, 1, shown);
    EXPECT_EQ(std::abs(ZLC(1, 1) - Z(1, 1)) < 1e-9 * std::abs(Z(1, 1)), length == 1.0);
  }
  Z(1, 1) *= 4.0; // ... and no other line: a change of 1 + g^2 length^2 / 6
  LONGCOR(Y, Z, 1e4, YLC, ZLC, 1, shown);
  EXPECT_LT(std::abs(ZLC(1, 1) / Z(1, 1) - 1.0 - Y(1, 1) * Z(1, 1) * 1e8 / 6.0), 1e-6);
}
