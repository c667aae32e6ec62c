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
}
