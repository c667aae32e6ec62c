// Classes of poles where the fits do not tell. The basis is tested by the fits.
#include "fit/partial_fractions.h"

#include "support/console_capture.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

TEST(PoleClasses, ScanFromTheFirstAndWriteNothingBehindTheLast) {
  PoleTable P;
  const Complex poles[] = {{-1, -0.0}, {-1, 1e-300}, {-1, -1e-300}, {-1, 2}};
  std::copy_n(poles, 4, P.data());
  PoleClasses found;
  found.fill(9);
  classifyPoles(P, 4, found);
  EXPECT_EQ(std::vector<int>(found.data(), found.data() + 5), (std::vector<int>{0, 1, 2, 1, 9}));
}

TEST(Basis, UnknownClassIsReported) {
  PoleClasses CINDEX;
  CINDEX.fill(3);
  ComplexCurve phi;
  EXPECT_EQ(consoleOf([&] {
              basisFunction({}, CINDEX, 1, 1.0);
              basisCurve({}, CINDEX, 1, {}, 2, phi);
            }),
            "ERROR 2\nERROR 2\n");
}
