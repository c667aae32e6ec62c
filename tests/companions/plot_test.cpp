// What a page of corvo-plot keeps of its curves; the pages themselves are looked at in a browser.
#include "companions/plot/functions.h"
#include "companions/plot/page.h"
#include "companions/plot/plot.h"
#include "companions/plot/survey.h"
#include "companions/shared/captured_run.h"
#include "store/rundata.h"
#include "store/solvedata.h"
#include "support/child.h"
#include "support/description.h"
#include "support/scratch.h"
#include "support/solve.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace lcp::companions;
using namespace lcp::test;

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

TEST(Page, IsNoFileThatItIsMadeFrom) {
  const Scratch scratch;
  const std::string wires = scratch.file("wires", "1 1 0 1 0 0 0.01 0.05 0 1 0 10 0 /\n");
  const std::string body = "Line Summary\n{\nNumber of Conductors: 1\n}\nLine Constants Tower\n{\n"
                           "External file name: " +
                           wires + "\n}\n";
  const std::string line = scratch.file("a.cvi", description(body + bergeronModel()));
  const std::string curve = scratch.file("x_zm.out", "header\n0 1 5\n");
  scratch.file("x_zp.out", "header\n0 1 5\n");
  std::filesystem::create_symlink(line, scratch.file("link"));
  const std::vector<std::string> sources[] = {{line, "/length", "1e3"},
                                              {"--curves", scratch.path().string()}};
  const auto plotted = [](std::vector<std::string> words, const std::string& page) {
    words.insert(words.end(), {"-o", page});
    return runChild([&] {
             std::vector<char*> values;
             for (std::string& w : words) values.push_back(w.data());
             std::atexit([] { std::_Exit(2); }); // nothing of this process is to be destroyed
             std::_Exit(plotLine(values));
           })
        .status;
  };
  for (const std::string& input : {line, scratch.file("link"), wires}) {
    const std::string before = contentOf(input);
    EXPECT_EQ(plotted(sources[0], input), 2) << input;
    EXPECT_EQ(contentOf(input), before);
  }
  EXPECT_EQ(plotted(sources[1], curve), 2);
  for (const auto& source : sources) EXPECT_EQ(plotted(source, scratch.file("page")), 0);
}

// The sheaths of these cables are kept; their sequence values are those with the sheaths grounded.
TEST(Page, SequencesLeaveTheRunAsItWas) {
  lcp::RUNDATA.resetInput();
  readHere(CORVO_TEST_DATA "/../examples/singlecore.cbi", 1e4);
  auto& D = lcp::RUNDATA.display;
  D.VBASEDISP = 220;
  D.MVABASEDISP = 100;
  const LinePoint before = constantsOf(D.DISPFREQ);
  const Json rows = sequencesOf(1e4);
  ASSERT_EQ(rows.size(), 4U); // two of them corrected for the length
  EXPECT_NEAR(rows[0][1].get<double>() / rows[0][5].get<double>(), 10, 1e-12); // ohm and ohm/km
  EXPECT_EQ(D.VBASEDISP, 220);
  EXPECT_EQ(D.MVABASEDISP, 100);
  EXPECT_EQ(lcp::companions::lineOrder(), before.Z.rows);
  EXPECT_EQ(lcp::SOLVEDATA.first.ZMAT(1, 1), before.Z(0, 0));
  EXPECT_EQ(constantsOf(D.DISPFREQ).Z.elements, before.Z.elements);
}

TEST(Page, NamesEndNoBlock) {
  const std::string page = pageOf({{"title", "</script>/*DATA*/<!--\xff"}});
  EXPECT_NE(page.find("{\"title\":\"\\u003c/script>/*DATA*/\\u003c!--\xef\xbf\xbd\"}</script>"),
            std::string::npos);
}
