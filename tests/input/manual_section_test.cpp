#include "input/reader_cases.h"
#include "store/rundata.h"
#include "store/yz_table.h"
#include "support/solve.h"

#include <fmt/format.h>

using namespace lcp;
using namespace lcp::test;

namespace {

const std::string PAIR = "Data Entry Format:  Y and Z\n";
const std::string MULTIPLE = "Data Entry Format:  Multiple Y and Z\n";

// The key that names a file of that text; a slash would end an unquoted name.
std::string fileKey(const std::string& text) {
  return fmt::format("Y,Z Input File Name: '{}'\n", scratchFile("yz.txt", text));
}

void read(const std::string& keys, int n = 2) { readHere(description(manualLineOf(n, keys, ""))); }

} // namespace

TEST(ManualSection, RefusesWhatDoesNotFit) {
  const std::string open = summary(2) + "Manual Data Entry\n{\n",
                    mismatch = lines({LONGSTARS, "Line Constants Program: ERROR", "",
                                      "The number of conductors entered in the",
                                      "Manual Entry of Y,Z component does not match",
                                      "the total system conductors:", "", "  2 != 12", LONGSTARS});
  const std::string susceptance = "+ve Sequence Capacitive Susceptance: 1e-20";
  const std::string unknown = "***  corvo.exe ERROR ***\nUnknown Data Entry System of Units: \n";
  const std::string missing = "Y,Z Input File Name: missing.txt\n";
  check({
      {open + "Number of Conductors: 12", mismatch},
      {open + "Data Entry Format: ohms/m", unknown}, // a column too early
      {open + "Data Entry Format:  p.u./m\n" + susceptance},
      {open + "Data Entry Format:  ohms/m\n" + susceptance + "\n}\n"},
      {open + "Data Entry Format:  p.u./m\n" + missing + "}\n"},
      {open + PAIR + missing,
       fileError({"Line Constants Program: ERROR", "Cannot open file: missing.txt",
                  "File does not appear to exist"})},
      {open + MULTIPLE + missing, cannotRead("missing.txt")},
  });
}

TEST(ManualSection, RefusesFilesThatDoNotFit) {
  const std::string name = scratchFile("yz.txt", ""), unreadable = cannotRead(name);
  const std::string table = "head\n2\n1\n1\n2\n3\n4\n5\n"; // and five records for the second row
  const auto tooMany = [&](const char* what) {
    return fileError({"Line Constants Program: ERROR", "Error in Reading Data File: " + name,
                      fmt::format("Too Many {} Allowed!", what)});
  };
  const struct {
    std::string format, file, console;
  } cases[] = {
      {PAIR, "Z:\n1 2\n3 x\n", unreadable},
      {PAIR, "Z:\n1 2\n3 4\n5\n", "*WARNING*: Data File Ends Inside a Matrix: " + name + "\n"},
      {MULTIPLE, table + "6\n7\n8\n9\n10", ""},
      {MULTIPLE, table + "6\n7\n8\n9\n", unreadable},
      {MULTIPLE, table + "6\n7\n8\n9\nNaN\n", unreadable},
      {MULTIPLE, table + "6\n7\n8\n/\n9\n", unreadable},
      {MULTIPLE, "head\n0\n1\n", unreadable},
      {MULTIPLE, "head\n2.0\n1\n", unreadable},
      {MULTIPLE, "head\n1021\n1\n", tooMany("Frequencies (1021), Maximum of 1020")},
      {MULTIPLE, "head\n1\n50\n", tooMany("Conductors (50), Maximum of 49")},
  };
  for (const auto& c : cases) {
    const ChildResult r = readInChild(description(manualLineOf(2, c.format + fileKey(c.file), "")));
    EXPECT_EQ(r.console, c.console) << c.file;
    EXPECT_EQ(r.status, c.console.ends_with("Ending!\n")) << c.file;
  }
  const std::string twoRows = MULTIPLE + fileKey(table + "6\n7\n8\n9\n10");
  const ChildResult r = readInChild(description(manualLineOf(2, twoRows, bergeronModel())));
  EXPECT_EQ(r.console, starred({"Line Name: ", "Manual entry of multiple Y and Z data is",
                                "supported only when using the Frequency-", "Dependent models."}));
  EXPECT_EQ(r.status, 1);
}

TEST(ManualSection, SusceptancesArePerUnit) {
  for (const std::string format : {"p.u./m", "RXB p.u./m", "ohms/metre"}) {
    read("Data Entry Format:  " + format + "\n0 Sequence Capacitive Susceptance: 4\n");
    const ManualSequences& S = RUNDATA.manual.MANSEQ;
    const double reactance = format == "ohms/metre" ? 0 : 0.25;
    EXPECT_EQ(values(S.SEQPU.XC0, S.SEQOHM.XC0, RUNDATA.run.DATAFMT),
              values(reactance, 0, ROUTEMANUAL));
  }
}

TEST(ManualSection, TakesAPairInAnyOrderOfItsBlocks) {
  const std::string Z = " Z:impedance\n1 2 3\n3,\n4 dropped\n\n5 6\n7 8\n",
                    Y = "Y:\n0 1\n0 2\n0 3\n0 4\n";
  // ahead of the first tag Z is selected, and a block that repeats overwrites
  const std::string others = "X\n9 9\n9 9\n9 9\n9 9\n";
  for (const std::string& file : {Z + Y, Y + Z, others + Y + Z, others + Y + Y + "\n\n" + Z}) {
    read(PAIR + fileKey(file));
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
  read(MULTIPLE + fileKey(file), 5);
  EXPECT_EQ(values(RUNDATA.run.DATAFMT, RUNDATA.line.NC, RUNDATA.cond.NCOND),
            values(ROUTEMULTIPLE, 2, 2));
  const FitOptions& F = RUNDATA.fit;
  EXPECT_EQ(values(F.NFINC, F.FSTART, F.FEND, F.CONSTT), values(2, 1, 18, 0));
  for (int k = 1; k <= 2; ++k) {
    for (int e = 0; e < 4; ++e) {
      const double at = 17 * (k - 1) + 2 + 4 * e; // Re Z of the element
      EXPECT_EQ(YZTABLE.ZTABLE(k, 1 + e / 2, 1 + e % 2), Complex(at, at + 1)) << k << e;
      EXPECT_EQ(YZTABLE.YTABLE(k, 1 + e / 2, 1 + e % 2), Complex(at + 2, at + 3)) << k << e;
    }
  }
}
