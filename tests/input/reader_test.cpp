#include "input/reader.h"

#include "store/rundata.h"
#include "support/description.h"
#include "support/scratch.h"

#include <fmt/format.h>

using namespace lcp;
using namespace lcp::test;

TEST(Reader, SurvivesAnyBytes) {
  std::string binary;
  unsigned state = 1;
  for (int i = 0; i < 20000; ++i) {
    state = state * 1664525u + 1013904223u;
    binary += static_cast<char>(state >> 24);
  }
  EXPECT_EQ(readInChild(binary).status, 0);
  EXPECT_EQ(readInChild("CORVO-INPUT-DATA\n" + std::string(1 << 20, 'x')).status, 0);
  const std::string whole = description(summary(3) + threePhaseTower());
  std::vector<std::string> texts{"CORVO-INPUT-DATA\n" + binary};
  for (std::size_t n = 0; n < whole.size(); ++n) texts.push_back(whole.substr(0, n)); // cut
  for (const char* kept : {"/fuzz/seeds", "/fuzz/finds"}) {
    for (const auto& file :
         std::filesystem::directory_iterator(CORVO_TEST_DATA + std::string(kept)))
      texts.push_back(contentOf(file.path()));
  }
  for (const std::string& text : texts) {
    for (const int iscable : {0, 1}) EXPECT_NE(readInChild(text, iscable).status, -1) << text;
  }
}

TEST(Reader, SetsOptionsAndTheirDefaults) {
  const auto& [D, F, G] = std::tie(RUNDATA.display, RUNDATA.flags, RUNDATA.ground);
  readHere(description("Output File Display Options\n{\nParallel R Limit: 1000\n"
                       "Manual Output File : 2\nMan. Output File Name : 'my file.cvo' x\n}\n"
                       "Bergeron Line Model Options\n{\nInterpolate Travel Times: 0\n"
                       "Frequency for Loss Approximation: 50\nHigh Frequency Approximation: 0\n"
                       "Infinite Line Length: 1\n}\n"));
  EXPECT_EQ(values(D.GPARLIM, D.MANOUT, F.INTTT, F.INFLEN), values(0.001, 0, 0, 1));
  EXPECT_EQ(D.MANOUTF.text(), "my file.cvo");
  EXPECT_EQ(RUNDATA.bergeron.FLOSS, 60.0); // the steady-state frequency
  EXPECT_EQ(RUNDATA.run.DATAFMT, ROUTENONE);
  readHere(description("Frequency Dep. (Phase) Model Options\n{\nDC Correction Type: 2\n"
                       "Lower frequency for passivity check: 5\n}\nHALO Options\n{\n}\n"));
  EXPECT_EQ(values(RUNDATA.model.MODFDP(), RUNDATA.model.MODHALO, RUNDATA.fit.DCCORRF,
                   RUNDATA.passivity.PFLOSET),
            values(1, 1, 1, 1));
  EXPECT_EQ(values(D.GPARLIM, F.INTTT), values(1.0e-5, 1)); // nothing is left of the file before
  readHere(description("Line Summary\n{\nLine Name: My Line\nSteady State Frequency: 0\n}\n"
                       "Line Constants Ground Data\n{\nGround Resistivity Type: 1\n"
                       "Ground Resistivity Type: 0\nGroundResistivity: 50,ohm\n}\n"));
  EXPECT_EQ(RUNDATA.line.LNAME.text(), "My");
  EXPECT_EQ(values(RUNDATA.line.LNAMELEN, RUNDATA.line.SSFREQ, D.DISPFREQ, G.GRTYPE, G.GRHO),
            values(3, 0.001, 0.001, 1, 50));
  for (const char* empty : {"", "''"}) { // the first blank is the first character
    readHere(description(fmt::format("Line Summary\n{{\nLine Name: {}\n}}\n", empty)));
    EXPECT_EQ(RUNDATA.line.LNAMELEN, 1) << empty;
  }
}
