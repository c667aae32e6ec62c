// Items of a line, any bytes, options, entered data.
#include "input/free_form.h"
#include "input/key_rows.h"
#include "input/reader.h"
#include "input/trace_store.h"
#include "store/rundata.h"
#include "store/yz_table.h"
#include "support/description.h"
#include "support/scratch.h"
#include "support/solve.h"

#include <array>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <vector>

using namespace lcp;
using namespace lcp::test;

namespace {

template <class T> using Fields = std::vector<std::pair<const char*, T>>;
template <class T> using Read = Got (*)(std::string_view, T&);

// Reads each field into a target that held `old`.
template <class T>
void check(T old, Read<T> read, const Fields<T>& good, const std::vector<const char*>& none,
           const std::vector<const char*>& malformed) {
  const auto expect = [&](const char* text, Got got, const T& wanted) {
    T value = old;
    EXPECT_EQ(read(text, value), got) << text;
    EXPECT_EQ(value, wanted) << text;
  };
  for (const auto& [text, value] : good) expect(text, Got::Value, value);
  for (const char* text : none) expect(text, Got::None, old);
  for (const char* text : malformed) expect(text, Got::Malformed, old);
}

// Reads a line of n conductors with the key that names a file of this text; a slash would end an
// unquoted name.
void read(const std::string& format, const std::string& file, int n = 2) {
  const std::string name = scratchFile("yz.txt", file);
  const std::string keys =
      fmt::format("Data Entry Format:  {}\nY,Z Input File Name: '{}'\n", format, name);
  readHere(description(manualLineOf(n, keys, "")));
}

// Openings of the states in which lines are looked up.
const std::string TOWER = "Line Constants Tower\n{\n", CIRCUIT = TOWER + "Circuit\n{\n",
                  PIPE = "Pipe-Type Cable\n{\n";
const std::string OPENINGS[] = {"",
                                TOWER,
                                CIRCUIT,
                                CIRCUIT + "Conductors: 1\nSub-ConductorsPerBundle: 2\n{\n",
                                TOWER + "GroundWires: 1\n{\n",
                                "Line Constants Ground Data\n{\n",
                                "Line Summary\n{\n",
                                "Bergeron Line Model Options\n{\n",
                                "MFDTD Model Options\n{\n",
                                "Manual Data Entry\n{\n",
                                "PI Model Options\n{\n",
                                "Coax Cable\n{\n",
                                PIPE,
                                PIPE + "Coax Cable\n{\n",
                                "Four-Wire Cable\n{\n",
                                "Output File Display Options\n{\n",
                                "HALO Options\n{\n",
                                "Numerical Options\n{\n"};

std::string consoleOf(const std::string& body) {
  return readInChild("CORVO-INPUT-DATA\n" + body, CABLESYSTEM).console;
}

} // namespace

TEST(FreeForm, ReadsTheFirstItemOfAField) {
  const Fields<double> reals = {
      {"  12.5 m", 12.5}, {"1,2", 1}, {"1D3", 1000}, {"1.5d+2", 150}, {"1+3", 1000},
      {"-.5E-1", -0.05},  {"5.", 5},  {"3/4", 3},    {"2*9", 9},      {"\t7", 7}};
  check(-7.0, readReal, reals, {"", "   ", "/ 5", ", 5", "1*", "3* 4"},
        {"abc", "1.2.3", "nan", "inf", "1e400", "1e", ".", "-", "0x10", "12m", "'4", "'4'", "\"4\"",
         "0*5", "99999999999*5"});
  check(-7, readInteger, {{"42 rest", 42}, {"+3", 3}, {"-2147483648", -2147483647 - 1}}, {"", "1*"},
        {"2147483648", "1.0", "1e3", "+-3", "'4'"});
  const Fields<std::string> words = {{"My Line", "My"},
                                     {"'My Line' x", "My Line"},
                                     {"\"a,b/c\"", "a,b/c"},
                                     {"'it''s'", "it's"},
                                     {"a/b", "a"}};
  check<std::string>("old", readWord, words, {"/a", ""}, {"'open"});
}

TEST(FreeForm, ListsLeaveWhatIsMissingUnchanged) {
  using Four = std::array<double, 4>;
  const std::pair<const char*, Four> cases[] = {
      {"1 2", {1, 2, -3, -4}}, {"1,,3", {1, -2, 3, -4}},   {"1 , 2 / 3 4", {1, 2, -3, -4}},
      {",2", {-1, 2, -3, -4}}, {"2*5 2*", {5, 5, -3, -4}}, {"1 2 3 4 words", {1, 2, 3, 4}},
      {"9*8", {8, 8, 8, 8}}};
  for (const auto& [field, expected] : cases) {
    Four t = {-1, -2, -3, -4};
    EXPECT_TRUE(readReals(field, t)) << field;
    EXPECT_EQ(t, expected) << field;
  }
  Four t{};
  for (const char* malformed : {"1 2 words", "1 '2'"}) EXPECT_FALSE(readReals(malformed, t));
}

// The last line holds, for one method or for all.
TEST(NumericalOptions, ImprovedStandsForAllFour) {
  const auto chosen = [](const std::string& keys) {
    readHere(description("PI Model Options\n{\n}\nNumerical Options\n{\n" + keys + "}\n"));
    const NumericalOptions& N = RUNDATA.numerics;
    return values(N.IMPROVEDMODES, N.IMPROVEDFITS, N.IMPROVEDPASSIVITY, N.IMPROVEDEARTH);
  };
  EXPECT_EQ(chosen("\n"), values(0, 0, 0, 0));
  EXPECT_EQ(chosen("Improved Earth : 1\n"), values(0, 0, 0, 1));
  EXPECT_EQ(chosen("Improved : 1\nImproved Fits : 0\n"), values(1, 0, 1, 1));
  EXPECT_EQ(chosen("Improved Fits : 1\nImproved : 0\n"), values(0, 0, 0, 0));
}

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
  readHere(description("Frequency Dep. (Phase) Model Options\n{\nDC Correction Type: 1\n"
                       "Lower frequency for passivity check: 5\n}\nHALO Options\n{\n}\n"));
  EXPECT_EQ(values(RUNDATA.model.fitsPhases(), RUNDATA.model.MODHALO, RUNDATA.fit.DCCORRF,
                   RUNDATA.passivity.PFLOSET),
            values(1, 1, 1, 1));
  EXPECT_EQ(values(D.GPARLIM, F.INTTT), values(1.0e-5, 1)); // nothing is left of the previous file
  readHere(description("Line Summary\n{\nLine Name: My Line\nSteady State Frequency: 0\n}\n"
                       "Line Constants Ground Data\n{\nGround Resistivity Type: 1\n"
                       "Ground Resistivity Type: 0\nGroundResistivity: 50,ohm\n}\n"));
  EXPECT_EQ(RUNDATA.line.LNAME.text(), "My");
  EXPECT_EQ(values(RUNDATA.line.LNAMELEN, RUNDATA.line.SSFREQ, D.DISPFREQ, G.GRTYPE, G.GRHO),
            values(3, 0.001, 0.001, 1, 50));
  readHere(description("Line Summary\n{\nLine Name: ''\n}\n"));
  EXPECT_EQ(RUNDATA.line.LNAMELEN, 1); // the first blank is the first character
}

TEST(Reader, EndsAtAMarkInEveryState) {
  for (const char* mark : {"END-OF-CORVO-INPUT-DATA", "  DATADSO1"}) {
    for (const std::string& opening : OPENINGS)
      EXPECT_EQ(consoleOf(opening + mark + "\nrubbish\n"), consoleOf(opening)) << opening;
    // not where every line is accepted
    const std::string line = std::string(mark) + "\n";
    EXPECT_NE(consoleOf("PI Model Options\n" + line).find(": " + line), std::string::npos);
    EXPECT_NE(consoleOf(CIRCUIT + "Conductors: 2\nP1 : 0 9\n" + line).find(": " + line),
              std::string::npos);
    EXPECT_EQ(readInChild(line + "CORVO-INPUT-DATA\nrubbish\n").console,
              "Unknown Data Line Ignored: rubbish\n");
  }
}

// Every key of every section without a value: nothing is printed, and only keys that act without a
// value change anything.
TEST(Reader, KeysWithoutAValueDoNothing) {
  for (const std::string& opening : OPENINGS) {
    ASSERT_TRUE(startTrace());
    const std::string alone = consoleOf(opening + "?\n");
    std::string lines = opening;
    const TracedLine& last = TRACE->lines().back();
    for (const KeyRow& row : std::span(last.rows, static_cast<std::size_t>(last.rowCount))) {
      const bool opens = row.text == "GroundWires" || row.text.starts_with("Sub-Cond");
      if (row.kind != KeyKind::Mark && row.kind != KeyKind::Text)
        lines += fmt::format("{}: /\n{}", row.text, opens ? "{\n}\n" : "");
    }
    EXPECT_EQ(consoleOf(lines + "?\n"), alone) << lines;
    TRACE->on = false;
  }
  const std::string bundle = "Sub-ConductorsPerBundle: 2\n{\nP1 : 1 1\n}\n",
                    counts = "Conductors:\nSub-ConductorsPerBundle: 1*\n{\n}\n";
  readHere(description(summary(3) + threePhaseTower(bundle + counts)));
  const ConductorTable& C = RUNDATA.cond;
  EXPECT_EQ(values(C.NCOND, C.ALL3PH, C.CX[1], C.CX[4]), values(6, 1, -9, -10));
  readHere(description("MFDTD Model Options\n{\nWeighting Factor 1:\n"
                       "Lower frequency for passivity check:\n}\n"
                       "Line Summary\n{\nLine Name:\nSteady State Frequency: ,\n}\n"));
  EXPECT_EQ(values(RUNDATA.passivity.PFLOSET, RUNDATA.fit.WF1SET, RUNDATA.line.LNAMELEN,
                   RUNDATA.display.DISPFREQ),
            values(1, 0, 10, 60));
  const std::string name = scratchFile("yz.txt", "1\n1\n1\n50\n1\n1\n1\n1\n");
  readHere(description("Manual Data Entry\n{\nData Entry Format : Multiple Y and Z\n"
                       "Y,Z Input File Name: '" +
                       name +
                       "'\n}\nMFDTD Model Options\n{\n"
                       "Total Number of Frequency Increments:\n}\n"));
  EXPECT_EQ(RUNDATA.fit.NFINC, 1); // of the table, below what the key takes
}

TEST(ManualSection, SusceptancesArePerUnit) {
  for (const std::string format : {"p.u./m", "RXB p.u./m", "ohms/metre"}) {
    read(format + "\n0 Sequence Capacitive Susceptance: 4", "");
    const ManualSequences& S = RUNDATA.manual.MANSEQ;
    EXPECT_EQ(values(S.SEQPU.XC0, S.SEQOHM.XC0, RUNDATA.run.DATAFMT),
              values(format == "ohms/metre" ? 0 : 0.25, 0, ROUTEMANUAL));
  }
}

TEST(ManualSection, TakesAPairInAnyOrderOfItsBlocks) {
  const std::string Z = " Z:impedance\n1 2 3\n3,\n4" + std::string(20000, ' ') +
                        "dropped\n\n5 6\n7 8\n",
                    Y = "Y:\n0 1\n0 2\n0 3\n0 4\n";
  // before the first tag Z is selected, and a repeated block overwrites
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
  std::string file = "1\n2\n2\n"; // the first record is ignored
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
