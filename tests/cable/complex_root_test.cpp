#include "cable/complex_root.h"

#include <gtest/gtest.h>

using namespace lcp;

// All quadrants, the axes, and parts far apart.
TEST(ComplexRoot, IsThePrincipalRoot) {
  const double parts[] = {0,   1e-300, 3e-131, 1e-20, 0.7, 0.7000000000000001,
                          1.4, 5e9,    2e130,  1e300};
  for (const double x : parts) {
    for (const double y : parts) {
      for (const Complex z : {Complex(x, y), Complex(-x, y), Complex(x, -y), Complex(-x, -y)}) {
        const Complex wanted = std::sqrt(z), is = ROOT(z);
        EXPECT_DOUBLE_EQ(is.real(), wanted.real()) << z;
        EXPECT_DOUBLE_EQ(is.imag(), wanted.imag()) << z;
      }
    }
  }
}
