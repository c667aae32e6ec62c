// Peaks of the violation over the grid, constraint frequencies.
#include "passivity/violation_scan.h"
#include "support/child.h"

#include <gtest/gtest.h>
#include <numeric>

using namespace lcp;
using namespace lcp::test;

namespace {

using Reals = std::vector<double>;

Reals list(const double* x, int n) { return {x, x + n}; }

// Violations at the frequencies 1, 2, 3.. Hz.
void setViolations(const Reals& V) {
  ENFORCE.EGRID.NGRID = static_cast<int>(V.size());
  std::copy(V.begin(), V.end(), ENFORCE.V.data());
  std::iota(ENFORCE.EGRID.f.data(), ENFORCE.EGRID.f.data() + V.size(), 1.0);
  findPeaks();
}

} // namespace

TEST(ViolationScan, PeaksAreInnerMaximaOrTheFirstLargestValue) {
  const double e = 2e-20; // just above what counts as zero
  const struct {
    Reals V, frequencies;
  } cases[] = {
      {{}, {}},
      {{1e-21, 1e-21, 1e-21}, {}},
      {{0, 1, 0, 2, 1, 3}, {2, 4}}, // the rise to the last point is no peak beside others
      {{0, 1, 1, 0}, {2}},          // a plateau is no peak: its first point, as the largest
      {{0, 1, 1, 0, 0.5, 0}, {5}},  // ... and nothing beside one
      {{0, 1, 2, 3}, {4}},
      {{3, 2, 1}, {1}},
      {{4}, {1}},
      {{0, e, 0}, {2}},
      {{0, e / 4, 0, 3 * e, 0}, {4}}, // a bump below zero's size
  };
  for (const auto& c : cases) {
    setViolations(c.V);
    EXPECT_EQ(list(ENFORCE.VPOINT.frequency.data(), ENFORCE.VPOINT.count), c.frequencies)
        << ::testing::PrintToString(c.V);
  }
  Reals comb(500);
  for (std::size_t i = 0; i < comb.size(); i += 2) comb[i] = 1 + static_cast<double>(i);
  setViolations(comb);
  EXPECT_EQ(ENFORCE.VPOINT.count, 100);
  EXPECT_EQ(ENFORCE.VPOINT.frequency[100], 201);
  EXPECT_EQ(ENFORCE.VPOINT.value[100], 201);
}

TEST(ViolationScan, ConstraintFrequenciesKeepTheirDistance) {
  ENFORCE.NCFREQ = 0;
  const auto listed = [](int n, double first, double factor) {
    ENFORCE.VPOINT.count = n;
    for (int i = 1; i <= n; ++i) ENFORCE.VPOINT.frequency[i] = first * std::pow(factor, i - 1);
    PASSLIST();
    return list(ENFORCE.CFREQ.data(), ENFORCE.NCFREQ);
  };
  EXPECT_EQ(listed(0, 0, 0), Reals());
  EXPECT_EQ(listed(3, 100, 1.09), (Reals{100 * std::pow(1.09, 2), 100})); // the higher of two
  EXPECT_EQ(listed(2, 125, 10), (Reals{1250, 125, 100})); // thins out an old one, stays itself
  EXPECT_EQ(listed(100, 1e4, 1.2)[0], 1e4 * std::pow(1.2, 96)); // full after 97 of them
  PASSLIST();
  EXPECT_EQ(ENFORCE.NCFREQ, 100);
  EXPECT_EQ(ENFORCE.VPOINT.count, 100); // violations stay violations
}

TEST(ViolationScan, SingularMatricesEndTheRun) {
  static LineMatrix A;
  const ChildResult r = runChild([] { ZINVERSE(A, A, 2); });
  EXPECT_EQ(r.status, 1);
  EXPECT_NE(r.console.find("\nMatrix is numerically singular!\n"), std::string::npos);
}
