// Bounds of tables, views and curve stores, in builds that check them.
#include "base/matrix.h"

#include "support/child.h"

#include <gtest/gtest.h>

using namespace lcp;

#ifdef LCP_BOUNDS
TEST(Bounds, AreCheckedInThisBuild) {
  const auto ends = [](const std::function<void()>& code) { return test::runChild(code).status; };
  static Table<int, 3> t;
  static SquareStore<double, 3> m;
  static CurveMatrix<double, 4> c;
  c.map(2);
  EXPECT_EQ(ends([] { t[3] = m(3, 3) > 0 || c(4, 2, 2) > 0; }), 0);
  for (const int i : {0, 4}) {
    const std::function<void()> outside[] = {[i] { t[i] = 1; },
                                             [i] { m(i, 1) = 1; },
                                             [i] { m(1, i) = 1; },
                                             [i] { m.view()(i, 1) = 1; },
                                             [i] { c(i * 5 / 4, 1, 1) = 1; },
                                             [i] { c.curve(1, i)[1] = 1; }};
    for (const auto& code : outside) EXPECT_EQ(ends(code), -1) << i;
  }
}
#endif
