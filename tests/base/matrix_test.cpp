#include "base/matrix.h"

#include "base/big_store.h"
#include "support/child.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

using namespace lcp;

namespace {

// An element that tells where it stands.
Complex tag(int k, int i, int j) { return {100.0 * k + i, static_cast<double>(j)}; }

constexpr double OUTSIDE = std::numeric_limits<double>::quiet_NaN();

} // namespace

TEST(View, ColumnOrderFromOne) {
  std::vector<double> elements(12);
  for (std::size_t p = 0; p < elements.size(); ++p) elements[p] = static_cast<double>(p);
  const RView m(elements.data(), 4); // 4 by 3
  EXPECT_EQ(m(1, 1), 0.0);
  EXPECT_EQ(m(4, 1), 3.0);
  EXPECT_EQ(m(1, 2), 4.0);
  EXPECT_EQ(m(2, 3), 9.0);
  EXPECT_EQ(m.column(3), elements.data() + 8);
  const RConstView read = m; // what may write may read
  m(2, 3) = -1.0;
  EXPECT_EQ(read(2, 3), -1.0);
}

TEST(SquareStore, IsItsView) {
  SquareStore<double, 5> store{};
  store(2, 3) = 7.0;
  EXPECT_EQ(store.view()(2, 3), 7.0);
  EXPECT_EQ(store.elements[11], 7.0);
  EXPECT_EQ(store.view().ld, 5);
  const auto& fixed = store;
  const RConstView read = fixed;
  EXPECT_EQ(&read(5, 5), &store(5, 5));
}

TEST(CurveMatrix, LoadAndStoreMoveTheCornerOfOneStep) {
  auto store = std::make_unique<CurveMatrix<Complex, 4, 6>>();
  for (auto& c : store->curves) {
    for (Complex& z : c.steps) z = OUTSIDE;
  }
  std::vector<Complex> wide(7 * 7, Complex(OUTSIDE, OUTSIDE));
  const CView m(wide.data(), 7); // wider than the order, NaN outside the corner
  for (int k = 1; k <= 5; ++k) {
    for (int j = 1; j <= 3; ++j) {
      for (int i = 1; i <= 3; ++i) m(i, j) = tag(k, i, j);
    }
    store->store(k, m, 3);
  }
  std::vector<Complex> small(3 * 3);
  const CView back(small.data(), 3);
  store->load(4, back, 3);
  for (int j = 1; j <= 3; ++j) {
    for (int i = 1; i <= 3; ++i) {
      EXPECT_EQ(back(i, j), tag(4, i, j));
      // The curve of an element is contiguous over the steps.
      const auto curve = store->curve(i, j).first(5);
      ASSERT_EQ(curve.size(), 5U);
      for (int k = 1; k <= 5; ++k) EXPECT_EQ(curve[static_cast<std::size_t>(k - 1)], tag(k, i, j));
      EXPECT_EQ(&(*store)(2, i, j), &curve[1]);
      EXPECT_TRUE(std::isnan((*store)(6, i, j).real())); // no step but those stored
    }
  }
  EXPECT_TRUE(std::isnan((*store)(1, 4, 1).real()));
  EXPECT_TRUE(std::isnan((*store)(1, 1, 4).real()));
}

TEST(CurveVector, OneCurveAMode) {
  CurveVector<double, 3, 4> store{};
  for (int i = 1; i <= 3; ++i) {
    for (int k = 1; k <= 4; ++k) store(k, i) = 10.0 * i + k;
  }
  EXPECT_EQ(store.curve(2)[3], 23.0);
  EXPECT_EQ(store.curve(3).first(2)[1], 32.0);
}

TEST(BigStore, IsZeroAndCostsNothingUntouched) {
  struct Store {
    double numbers[1 << 27]; // 1 GB of addresses
    bool flag;
  };
  Store& store = bigStore<Store>();
  EXPECT_EQ(store.numbers[0], 0.0);
  EXPECT_EQ(store.numbers[(1 << 27) - 1], 0.0);
  EXPECT_FALSE(store.flag);
  EXPECT_NE(&bigStore<int>(), &bigStore<int>());
}

#ifdef LCP_BOUNDS
TEST(Bounds, AreCheckedInThisBuild) {
  const auto ends = [](const std::function<void()>& code) { return test::runChild(code).status; };
  static Table<int, 3> t;
  static SquareStore<double, 3> m;
  static CurveMatrix<double, 2, 4> c;
  EXPECT_EQ(ends([] { t[3] = m(3, 3) > 0 || c(4, 2, 2) > 0; }), 0);
  for (const int i : {0, 4}) {
    EXPECT_EQ(ends([i] { t[i] = 1; }), -1);
    EXPECT_EQ(ends([i] { m(i, 1) = 1; }), -1);
    EXPECT_EQ(ends([i] { m(1, i) = 1; }), -1);
    EXPECT_EQ(ends([i] { m.view()(i, 1) = 1; }), -1);
    EXPECT_EQ(ends([i] { c(i == 0 ? 0 : 5, 1, 1) = 1; }), -1);
    EXPECT_EQ(ends([i] { c.curve(1, i)[1] = 1; }), -1);
  }
}
#endif
