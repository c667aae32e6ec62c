// Tables, views and curve stores.
#include "base/matrix.h"

#include "support/child.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;

// An element of the curves tells step, row and column; NaN stands where nothing was stored.
TEST(CurveMatrix, LoadAndStoreMoveTheCornerOfOneStep) {
  static CurveMatrix<Complex, 6> store;
  store.map(2);
  store.map(4); // room for more; less stays what it is
  store.map(3);
  for (int e = 0; e < 16; ++e)
    std::ranges::fill(store.curve(1 + e % 4, 1 + e / 4).steps, std::nan(""));
  SquareStore<Complex, 7> wide; // wider than the order
  SquareStore<Complex, 3> back;
  for (int k = 1; k <= 5; ++k) {
    for (int e = 0; e < 9; ++e)
      wide(1 + e / 3, 1 + e % 3) = Complex(100 * k + 1 + e / 3, 1 + e % 3);
    store.store(k, wide, 3);
  }
  store.load(4, back, 3);
  EXPECT_EQ(back.elements[7], Complex(402, 3)); // columns in turn
  for (int j = 1; j <= 3; ++j) {
    for (int i = 1; i <= 3; ++i) {
      EXPECT_EQ(back(i, j), Complex(400 + i, j));
      const auto curve = store.curve(i, j).first(5); // contiguous over the steps
      EXPECT_EQ(curve[4], Complex(500 + i, j));
      EXPECT_EQ(&store(2, i, j), &curve[1]);
      EXPECT_TRUE(std::isnan(store(6, i, j).real())); // no step but those stored
    }
  }
  EXPECT_TRUE(std::isnan(store(1, 4, 1).real()) && std::isnan(store(1, 1, 4).real()));
}

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
