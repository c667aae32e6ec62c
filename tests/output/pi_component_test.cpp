// Component files against texts composed by hand; whole runs cover those of lines.
#include "output/pi_component.h"

#include "base/constants.h"
#include "store/solvedata.h"

#include "store/rundata.h"
#include "support/child.h"
#include "support/scratch.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

LineMatrix Y, Z;

// The component of Y and Z of a line with that name, or the error message.
std::string component(int n, const std::string& name) {
  const Scratch scratch;
  RUNDATA.line.LNAME = name;
  RUNDATA.line.LNAMELEN = static_cast<int>(name.size()) + 1; // a blank ends a name
  RUNDATA.line.NC = n;
  std::filesystem::create_directory(scratch.file("taken.cmp"));
  const ChildResult child = runChild([&] {
    std::filesystem::current_path(scratch.path());
    PISECT(Y, Z, 12345.67);
  });
  std::string file = name;
  std::replace(file.begin(), file.end(), '/', '_'); // it stays in the directory
  return child.status == 0 ? contentOf(scratch.file(file + ".cmp")) : child.console;
}

bool has(const std::string& text, const std::string& line) {
  return text.find("\n" + line + "\n") != std::string::npos;
}

} // namespace

// At 50 Hz; conductances of half the line are 1e-5, the limit, in (2,2), and above it elsewhere.
TEST(PiComponent, ToTheCharacter) {
  const std::filesystem::path data = std::filesystem::path(CORVO_TEST_DATA) / "output";
  const double w = TWOPI * 50;
  RUNDATA.resetInput();
  RUNDATA.line.SSFREQ = 50;
  Y(1, 1) = {6e-5, w * 20e-12};
  Y(1, 2) = Y(2, 1) = {4e-5, -w * 4e-12};
  Y(2, 2) = {-2e-5, w * 24e-12};
  Z(1, 1) = {1e-4, w * 1.5e-6};
  Z(1, 2) = {5e-5, w * 7e-7};
  Z(2, 1) = {-6e-5, w * 8e-7};
  Z(2, 2) = {2e-4, w * 1.6e-6};
  EXPECT_EQ(component(2, "Two"), contentOf(data / "pi_two.cmp"));
  Y(1, 1).real(0);
  // no blank after it: a name only for the file
  EXPECT_EQ(component(1, std::string(30, 'n')), contentOf(data / "pi_one.cmp"));
  EXPECT_TRUE(has(component(1, "../b"), R"(     Def = "../b")"));
  EXPECT_EQ(component(1, "").find(" Component(\"_u\")\n"), 0U);
  EXPECT_TRUE(has(component(2, "taken"), "Error in Writing Output File: taken.cmp"));
}

TEST(PiComponent, CablesThatDoNotCoupleAndManyConductors) {
  RUNDATA.run.ISCABLE = CABLESYSTEM;
  Y = {};
  for (int i = 1; i <= LDMAT; ++i) Y(i, i) = Complex(0, 1e-8);
  const std::string text = component(LDMAT, "c");
  RUNDATA.run.ISCABLE = OVERHEADLINE;
  for (const char* line : {R"(   Electrical("S14",-216,-936))", R"(   Electrical("R15",216,-1008))",
                           "  Rectangle(-160,72,160,-3528)", "  Line(+160,-1008,+216,-1008)",
                           "REAL  C_910  = 0.000000000E+00*len", "$S49  $G     0  0  $C_4949"}) {
    EXPECT_TRUE(has(text, line)) << line;
  }
  EXPECT_FALSE(has(text, "$S1  $S2    0  0  $C_12"));
  EXPECT_TRUE(has(component(2, "c"), "$S1  $S2    0  0  $C_12"));
}
