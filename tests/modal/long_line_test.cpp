// The pi file of a line is tested for the exact circuit; here lines of one conductor: long ones,
// and what of them is shown.
#include "modal/long_line.h"

#include "store/solvedata.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;

TEST(LongLine, CorrectsEachLineByItselfAndShowsPositiveParts) {
  static LineMatrix Y, Z, YLC, ZLC;
  const Complex y(1e-11, 4e-9), z(1e-3, 5e-4);
  const struct {
    Complex y, z;
    double length;
    bool shown;
  } cases[] = {{y, z, 1, true},          {y, z, 1e4, true},
               {y, 4.0 * z, 1e4, true}, // another line
               {{0, 4e-9}, z, 1, false}, {{1e-11, 0}, z, 1, false},
               {y, {0, 5e-4}, 1, false}, {y, z, 1e9, false}}; // no wave comes back: Z fades
  for (const auto& c : cases) {
    bool shown = !c.shown;
    Y(1, 1) = c.y;
    Z(1, 1) = c.z;
    LONGCOR(Y, Z, c.length, YLC, ZLC, 1, shown);
    EXPECT_EQ(shown, c.shown) << &c - cases;
    EXPECT_TRUE(std::isfinite(std::abs(YLC(1, 1))) && std::isfinite(std::abs(ZLC(1, 1))));
    const Complex u2 = c.y * c.z * c.length * c.length;
    if (c.length < 1e9) {
      EXPECT_LT(std::abs(ZLC(1, 1) / c.z - 1.0 - u2 / 6.0), 0.01 * std::norm(u2) + 1e-14);
    }
  }
}
