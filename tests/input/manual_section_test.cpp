#include "store/rundata.h"
#include "store/yz_table.h"
#include "support/description.h"
#include "support/solve.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

// Reads a line of n conductors, with the key that names a file of that text; a slash would end an
// unquoted name.
void read(const std::string& format, const std::string& file, int n = 2) {
  const std::string name = scratchFile("yz.txt", file);
  const std::string keys =
      fmt::format("Data Entry Format:  {}\nY,Z Input File Name: '{}'\n", format, name);
  readHere(description(manualLineOf(n, keys, "")));
}

} // namespace

TEST(ManualSection, SusceptancesArePerUnit) {
  for (const std::string format : {"p.u./m", "RXB p.u./m", "ohms/metre"}) {
    read(format + "\n0 Sequence Capacitive Susceptance: 4", "");
    const ManualSequences& S = RUNDATA.manual.MANSEQ;
    EXPECT_EQ(values(S.SEQPU.XC0, S.SEQOHM.XC0, RUNDATA.run.DATAFMT),
              values(format == "ohms/metre" ? 0 : 0.25, 0, ROUTEMANUAL));
  }
}

TEST(ManualSection, TakesAPairInAnyOrderOfItsBlocks) {
  const std::string Z = " Z:impedance\n1 2 3\n3,\n4 dropped\n\n5 6\n7 8\n",
                    Y = "Y:\n0 1\n0 2\n0 3\n0 4\n";
  // ahead of the first tag Z is selected, and a block that repeats overwrites
  const std::string others = "X\n9 9\n9 9\n9 9\n9 9\n";
  for (const std::string& file : {Z + Y, Y + Z, others + Y + Z, others + Y + Y + "\n\n" + Z}) {
    read("Y and Z", file);
    for (int k = 0; k < 4; ++k) {
      EXPECT_EQ(RUNDATA.manual.ZENT(1 + k / 2, 1 + k % 2), Complex(2 * k + 1, 2 * k + 2));
      EXPECT_EQ(RUNDATA.manual.YENT(1 + k / 2, 1 + k % 2), Complex(0, k + 1));
    }
  }
}

TEST(ManualSection, TakesATableAndItsNumbersInEveryForm) {
  const char* const forms[] = {"{}",   "{} ohm",   "  {},1",   "+{}/",
                               "'{}'", "\n\t\n{}", "{}.0D+00", "0.{}E1\r"};
  std::string file = "1\n2\n2\n"; // the first record is not looked at
  for (int value = 1; value <= 34; ++value) {
    const bool plain = value % 17 == 1 || value > 9;
    file += fmt::format(fmt::runtime(plain ? "{}" : forms[value - 2]), value) + "\n";
  }
  read("Multiple Y and Z", file, 5);
  const FitOptions& F = RUNDATA.fit;
  EXPECT_EQ(values(RUNDATA.run.DATAFMT, RUNDATA.line.NC, RUNDATA.cond.NCOND, F.NFINC, F.FSTART,
                   F.FEND, F.CONSTT),
            values(ROUTEMULTIPLE, 2, 2, 2, 1, 18, 0));
  for (int e = 0; e < 8; ++e) {
    const int k = 1 + e / 4, i = 1 + e % 4 / 2, j = 1 + e % 2;
    const double at = 17 * (k - 1) + 2 + 4 * (e % 4); // Re Z of the element
    EXPECT_EQ(YZTABLE.ZTABLE(k, i, j), Complex(at, at + 1)) << e;
    EXPECT_EQ(YZTABLE.YTABLE(k, i, j), Complex(at + 2, at + 3)) << e;
  }
}
