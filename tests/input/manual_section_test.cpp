#include "store/rundata.h"
#include "store/yz_table.h"
#include "support/description.h"
#include "support/solve.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

const std::string STARS(43, '*');
const std::string PAIR = "Data Entry Format:  Y and Z\n";
const std::string MULTIPLE = "Data Entry Format:  Multiple Y and Z\n";

std::string entered(const std::string& keys, int n = 2) {
  return description(manualLineOf(n, keys, ""));
}

// The key that names a file of that text; a slash would end an unquoted name.
std::string fileKey(const std::string& text) {
  return fmt::format("Y,Z Input File Name: '{}'\n", scratchFile("yz.txt", text));
}

std::string block(std::initializer_list<std::string> words) {
  return lines({"", STARS, "Line Constants Program: ERROR"}) + lines(words) +
         lines({STARS, "READTLDATA Ending!"});
}

std::string cannotRead(const std::string& name) {
  return block({"Error in Reading Data File: " + name, "File does not appear to conform to correct",
                "format."});
}

std::string tooMany(const std::string& name, const std::string& what) {
  return block({"Error in Reading Data File: " + name, what});
}

} // namespace

TEST(ManualSection, RefusesWhatDoesNotFit) {
  const std::string stars(45, '*'), name = scratchFile("yz.txt", "");
  const std::string susceptance = "+ve Sequence Capacitive Susceptance: 1e-20";
  const std::string unknown =
      lines({"***  corvo.exe ERROR ***", "Unknown Data Entry System of Units: "});
  const std::string table = "head\n2\n1\n1\n2\n3\n4\n5\n"; // and five records for the second row
  struct Case {
    std::string keys, file, console;
    int status = 1;
  };
  const Case cases[] = {
      {"Number of Conductors: 12\n", "",
       lines({stars, "Line Constants Program: ERROR", "", "The number of conductors entered in the",
              "Manual Entry of Y,Z component does not match", "the total system conductors:", "",
              "  2 != 12", stars}) +
           errorExit("Number of Conductors: 12")},
      {"Data Entry Format: ohms/m\n", "", unknown + errorExit("Data Entry Format: ohms/m")},
      {"Data Entry Format:  p.u./m\n" + susceptance + "\n", "", errorExit(susceptance)},
      {"Data Entry Format:  ohms/m\n" + susceptance + "\nrubbish\n", "",
       "Unknown Data Line Ignored: rubbish\n", 0},
      {"Data Entry Format:  p.u./m\nY,Z Input File Name: missing.txt\n", "", "", 0},
      {PAIR + "Y,Z Input File Name: missing.txt\n", "",
       block({"Cannot open file: missing.txt", "File does not appear to exist"})},
      {MULTIPLE + "Y,Z Input File Name: missing.txt\n", "", cannotRead("missing.txt")},
      {PAIR, "Z:\n1 2\n3 x\n", cannotRead(name)},
      {PAIR, "Z:\n1 2\n3 4\n5\n", "*WARNING*: Data File Ends Inside a Matrix: " + name + "\n", 0},
      {MULTIPLE, table + "6\n7\n8\n9\n10", "", 0},
      {MULTIPLE, table + "6\n7\n8\n9\n", cannotRead(name)},
      {MULTIPLE, table + "6\n7\n8\n9\nNaN\n", cannotRead(name)},
      {MULTIPLE, table + "6\n7\n8\n/\n9\n", cannotRead(name)},
      {MULTIPLE, "head\n0\n1\n", cannotRead(name)},
      {MULTIPLE, "head\n2.0\n1\n", cannotRead(name)},
      {MULTIPLE, "head\n1021\n1\n",
       tooMany(name, "Too Many Frequencies (1021), Maximum of 1020 Allowed!")},
      {MULTIPLE, "head\n1\n50\n",
       tooMany(name, "Too Many Conductors (50), Maximum of 49 Allowed!")},
  };
  for (const Case& c : cases) {
    const ChildResult r = readInChild(entered(c.file.empty() ? c.keys : c.keys + fileKey(c.file)));
    EXPECT_EQ(r.console, c.console) << c.keys << c.file;
    EXPECT_EQ(r.status, c.status) << c.keys << c.file;
  }
}

TEST(ManualSection, KeysGoToTheGroupOfTheFormat) {
  const std::string keys = "0 Sequence Mutual Resistance: 2\n0 Sequence Inductive Reactance: 3\n"
                           "+ve Sequence Capacitive Reactance: 5\n"
                           "0 Sequence Capacitive Susceptance: 4\n"
                           "0 Sequence Mutual Travel Time: 6\n+ve Sequence Surge Impedance: 7\n";
  const std::pair<const char*, int> formats[] = {
      {"p.u./m", 0}, {"RXB p.u./m", 0}, {"ohms/metre", 1}, {"Surge Impedance and Travel Time!", 2}};
  for (const auto& [format, MANFMT] : formats) {
    readHere(entered(fmt::format("Data Entry Format:  {}\n{}", format, keys)));
    EXPECT_EQ(RUNDATA.manual.MANFMT, MANFMT);
    EXPECT_EQ(RUNDATA.run.DATAFMT, ROUTEMANUAL);
    const ManualSequences& S = RUNDATA.manual.MANSEQ;
    for (const auto& [group, chosen] : {std::pair{&S.SEQPU, 0}, {&S.SEQOHM, 1}}) {
      const bool in = chosen == MANFMT;
      EXPECT_EQ(group->R0M, in ? 2 : 0);
      EXPECT_EQ(group->X0, in ? 3 : 0);
      EXPECT_EQ(group->XC1, in ? 5 : 0);
      EXPECT_EQ(group->XC0, in && MANFMT == 0 ? 0.25 : 0); // a susceptance in per unit only
    }
    EXPECT_EQ(S.SEQSURGE.R0M, MANFMT == 2 ? 2 : 0);
    EXPECT_EQ(S.SEQSURGE.T0M + S.SEQSURGE.ZC1, 6 + 7); // whatever the format
  }
}

TEST(ManualSection, TakesAPairInAnyOrderOfItsBlocks) {
  const std::string Z = " Z:impedance\n1 2 3\n3,\n4 dropped\n\n5 6\n7 8\n",
                    Y = "Y:\n0 1\n0 2\n0 3\n"
                        "0 4\n";
  // ahead of the first tag Z is selected, and a block that repeats overwrites
  const std::string others = "X\n9 9\n9 9\n9 9\n9 9\n";
  for (const std::string& file : {Z + Y, Y + Z, others + Y + Z, others + Y + Y + "\n\n" + Z}) {
    readHere(entered(PAIR + fileKey(file)));
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
    const bool frequency = value % 17 == 1;
    const std::string form = frequency || value > 9 ? "{}" : forms[value - 2];
    file += fmt::format(fmt::runtime(form), value) + "\n";
  }
  readHere(entered(MULTIPLE + fileKey(file), 5));
  EXPECT_EQ(RUNDATA.run.DATAFMT, ROUTEMULTIPLE);
  EXPECT_EQ(RUNDATA.line.NC, 2);
  EXPECT_EQ(RUNDATA.cond.NCOND, 2);
  EXPECT_EQ(RUNDATA.fit.NFINC, 2);
  EXPECT_EQ(RUNDATA.fit.FSTART, 1);
  EXPECT_EQ(RUNDATA.fit.FEND, 18);
  EXPECT_FALSE(RUNDATA.fit.CONSTT);
  for (int k = 1; k <= 2; ++k) {
    for (int e = 0; e < 4; ++e) {
      const double at = 17 * (k - 1) + 2 + 4 * e; // Re Z of the element
      EXPECT_EQ(YZTABLE.ZTABLE(k, 1 + e / 2, 1 + e % 2), Complex(at, at + 1)) << k << e;
      EXPECT_EQ(YZTABLE.YTABLE(k, 1 + e / 2, 1 + e % 2), Complex(at + 2, at + 3)) << k << e;
    }
  }
}
