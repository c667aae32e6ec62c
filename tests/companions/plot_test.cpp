// What a page of corvo-plot keeps of its curves; the pages themselves are looked at in a browser.
#include "companions/plot/functions.h"
#include "companions/plot/page.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace lcp::companions;

// Three bytes are four letters: 1, -2 and 0.15625 in single precision, the last for one that is
// too small, the largest for one that is too large.
TEST(Page, NumbersArePackedInSinglePrecision) {
  const double some[] = {1, -2, 0.15625};
  EXPECT_EQ(packedNumbers(some), "AACAPwAAAMAAACA+");
  const double odd[] = {1e-300, 1e300, std::nan("")};
  EXPECT_EQ(packedNumbers(odd), "AAAAAP//f38AAMB/");
}

// A spike of one point, a point of the fit and a deviation of one point outlast the thinning.
TEST(Page, ThinningKeepsWhatStandsOut) {
  Frequencies at;
  Functions F{"F", "", "fit", "", 1};
  F.elements.resize(1);
  for (std::size_t k = 0; k < 1000; ++k) {
    at.f.push_back(static_cast<double>(k + 1));
    at.ofTheFit.push_back(k == 333);
    F.elements[0].line.emplace_back(k == 501 ? 9 : 1);
    F.elements[0].model.emplace_back(k == 707 ? Complex(0.8, 0.6) : F.elements[0].line[k]);
  }
  const Json set = packed(at, {F}, {1000, 50});
  std::vector<double> f; // as the page will have it
  for (std::size_t k = 0; k < 1000; ++k) {
    if (k % 20 == 0 || k == 333 || k == 501 || k == 707 || k == 999) f.push_back(at.f[k]);
  }
  EXPECT_EQ(set["f"], packedNumbers(f));
  EXPECT_EQ(set["fit"], Json::array({17}));
}

TEST(Page, NamesEndNoBlock) {
  const std::string page = pageOf({{"title", "</script>/*DATA*/<!--\xff"}});
  EXPECT_NE(page.find("{\"title\":\"\\u003c/script>/*DATA*/\\u003c!--\xef\xbf\xbd\"}</script>"),
            std::string::npos);
}
