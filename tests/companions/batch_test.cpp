// What corvo-batch takes from consoles, lists and descriptions, without running anything: the
// consoles are those of the whole runs, the lists are written here.
#include "companions/batch/case_list.h"
#include "companions/batch/case_status.h"
#include "companions/batch/console_facts.h"
#include "companions/batch/parts.h"
#include "companions/batch/variation.h"
#include "companions/shared/console_text.h"
#include "companions/shared/whole_files.h"
#include "store/rundata.h"
#include "support/description.h"
#include "support/scratch.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <numeric>

using namespace lcp::companions;
using namespace lcp::test;

namespace fs = std::filesystem;

namespace {

std::string consoleOfCase(const std::string& name) {
  std::string text;
  EXPECT_TRUE(readWhole(fs::path(CORVO_TEST_DATA) / "cases" / name / "console", text));
  return text;
}

// "column=value" for what is told, without the message.
std::string told(Facts facts) {
  facts.erase("message");
  std::string words;
  for (const auto& [column, value] : facts)
    words += fmt::format("{}{}={}", words.empty() ? "" : " ", column, value);
  return words;
}

struct Folder {
  fs::path path = fs::path(scratchFile("batch", "")).parent_path() / "lists";

  Folder() { fs::create_directories(path); }
  ~Folder() { fs::remove_all(path); }
  fs::path write(const std::string& name, const std::string& text) const {
    EXPECT_TRUE(writeWhole(path / name, text));
    return path / name;
  }
};

std::string listed(const CaseList& list) {
  std::string words = list.trouble;
  for (const BatchCase& c : list.cases) {
    words += fmt::format("{} {} {} [{}];", c.source.filename().string(), c.length,
                         c.folder.filename().string(), c.arguments);
  }
  return words;
}

} // namespace

TEST(Batch, FactsAreThoseOfTheConsole) {
  const struct {
    const char *name, *facts, *message;
  } consoles[] = {
      {"console_phase",
       "B=0.316975907355E-03 H=87.86 R=0.520596084200E+01 X=0.525769378259E+02 Yc=10.31 "
       "passivity=told: violated warnings=1",
       "WARNING*: The relative fitting error exc"},
      {"console_modes",
       "A=1.298 B=0.316975907355E-03 R=0.520596084200E+01 X=0.525769378259E+02 Zc=8.259 warnings=0",
       ""},
      {"console_series",
       "B=0.792439768388E-04 R=0.130149021050E+01 X=0.131442344565E+02 Z=0.1246 warnings=1",
       "WARNING*: The relative fitting error exc"},
      {"console_enforced_slowly",
       "B=0.316975907355E-03 H=4.116 R=0.520596084200E+01 X=0.525769378259E+02 Yc=1.934 "
       "passivity=told: enforced warnings=0",
       ""},
      {"line500_bergeron",
       "B=0.514579435842E-03 R=0.188215854088E+01 X=0.321030228103E+02 warnings=0", ""},
      {"manual_pi_refused", "warnings=0", "ERROR: The Manual Data Entry component c"},
      {"table_jump", "H=86.56 Yc=65.06 warnings=2", "NEWTON-RAPHSON EIGENVALUE PROCEDURE"},
  };
  for (const auto& c : consoles) {
    SCOPED_TRACE(c.name);
    const Facts facts =
        consoleFacts(consoleOfCase(c.name), std::string(c.name).ends_with("refused"));
    EXPECT_EQ(told(facts), c.facts);
    EXPECT_EQ(facts.at("message").substr(0, 40), c.message);
  }
}

TEST(Batch, NumbersAreThoseBehindTheLastLineOfTheirText) {
  const std::string twice = "\n Yc: a\n 5.0000 %\n x Yc: b\n 7 %\n Yc: a\n\n 1.234E-04 %  12\n";
  EXPECT_EQ(numberBehind(twice, " Yc: "), 1.234e-4);
  EXPECT_TRUE(std::isnan(numberBehind(twice, " Hphase: ")));
  EXPECT_TRUE(std::isnan(numberBehind("\n Yc: none", " Yc: ")));
}

TEST(Batch, PartsHoldEachCaseOnceAndGetSmaller) {
  for (const std::size_t n : {1, 2, 7, 64, 300, 1000, 20000}) {
    std::vector<std::size_t> cases(n);
    std::iota(cases.begin(), cases.end(), 1);
    for (const std::size_t runners : {1, 2, 16, 300}) {
      std::vector<std::size_t> all;
      std::size_t before = n, most = 0;
      const Parts parts = partsFor(cases, runners);
      for (const auto& part : parts) {
        EXPECT_LE(part.size(), before);
        before = part.size();
        most = std::max(most, part.size());
        all.insert(all.end(), part.begin(), part.end());
      }
      EXPECT_EQ(all, cases);
      EXPECT_GE(parts.size(), std::min(n, runners));
      EXPECT_LE(parts.back().size() * runners,
                std::max(n, runners) / 8 + runners); // waits for little
      EXPECT_LE(most, 64U);
    }
    EXPECT_EQ(equalParts(cases, 7).size(), (n + 6) / 7);
  }
}

TEST(Batch, ListsAreTakenAsTheyAreMeant) {
  const Folder folder;
  folder.write("a b.cvi", "x");
  folder.write("it's.cbi", "x");
  const struct {
    const char *text, *cases;
  } lists[] = {
      {"file\tlength\n# all\n\na b.cvi\t1e3\r\nit's.cbi\t20\t/steps 2\tx y\n",
       "a b.cvi 1e3 case_0001 [];it's.cbi 20 x y [/steps 2];"},
      {"a b.cvi\t1\t\tsame\na b.cvi\t2\t\t./same\n", "same and ./same are one folder"},
      {"a b.cvi\n", "file and length expected, parted by a tab"},
      // These are cases that fail, and stop no other.
      {"none.cvi\t10\n", "none.cvi 10 case_0001 [];"},
      {"a b.cvi\tlong\n", "a b.cvi long case_0001 [];"},
      {"a b.cvi\t10\t\tf\tmore\n",
       "5 columns, 2 to 4 expected (file, length, arguments, folder); no name may hold a tab"},
      {"", "no case in the list"},
  };
  for (const auto& l : lists) {
    SCOPED_TRACE(l.text);
    const std::string found = listed(readList(folder.write("list", l.text), folder.path / "work"));
    EXPECT_NE(found.find(l.cases), std::string::npos) << found;
  }
  const CaseList list = readList(folder.write("list", lists[0].text), folder.path / "work");
  ASSERT_EQ(list.cases.size(), 2U);
  const std::vector<BatchCase> again = casesOf(tableOf(list.cases));
  CaseList back;
  back.cases = again;
  EXPECT_EQ(listed(back), listed(list));
}

TEST(Batch, ValuesStandWhereTheReaderFindsThem) {
  const Folder folder;
  const fs::path base = folder.write(
      "line.cvi",
      description(summary(3) + threePhaseTower("", "") +
                  "Line Constants Ground Data\n{\nGroundResistivity: 100.0 [ohm m]\n}\n"));
  std::vector<std::string> notes;
  const CaseList list = makeCases({base, "", "/steps 2"},
                                  {variationOf("Ground Resistivity=10,1e3"),
                                   variationOf("P2=0 21,0 23,0 25"), variationOf("length=5e3,7e3")},
                                  folder.path / "work", notes);
  ASSERT_EQ(list.trouble, "");
  ASSERT_EQ(list.cases.size(), 12U);
  EXPECT_EQ(list.cases[1].length, "7e3"); // the last key fastest
  for (std::size_t k = 0; k < list.cases.size(); ++k) {
    std::string text;
    readWhole(list.cases[k].source, text);
    readHere(text, 0);
    EXPECT_EQ(lcp::RUNDATA.ground.GRHO, k < 6 ? 10 : 1000);
    EXPECT_EQ(lcp::RUNDATA.cond.CY[2], 21 + 2.0 * static_cast<double>(k / 2 % 3));
    EXPECT_EQ(lcp::RUNDATA.cond.CY[3], 20);
  }
  EXPECT_TRUE(notes.empty());
}

TEST(Batch, LinesOfAVariedFileKeepTheirEnds) {
  const Folder folder;
  std::string text = description(summary(3) + threePhaseTower("ShuntConductance: 1e-11\n") +
                                 "Line Constants Ground Data\n{\nGroundResistivity: 100.0\n}\n");
  for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 2))
    text.insert(at, "\r");
  std::vector<std::string> notes;
  const CaseList list =
      makeCases({folder.write("line.cvi", text), "1e3", ""},
                {variationOf("GroundResistivity=20"), variationOf("ShuntConductance=3e-11")},
                folder.path / "work", notes);
  ASSERT_EQ(list.trouble, "");
  for (const auto& [from, to] : {std::pair{"100.0", "20"}, {"1e-11", "3e-11"}})
    text.replace(text.find(from), std::string(from).size(), to);
  std::string written;
  readWhole(list.cases[0].source, written);
  EXPECT_EQ(written, text);
}

TEST(Batch, AFingerprintChangesWithAllThatCounts) {
  const Folder folder;
  BatchCase c;
  c.source = folder.write("a.cvi", "Library File Name: 'wires.txt'\n");
  folder.write("wires.txt", "1 2 3\n");
  c.beside = c.folder = folder.path;
  c.length = "1000";
  std::vector<std::string> prints = {fingerprintOf(c)};
  EXPECT_EQ(fingerprintOf(c), prints[0]);
  c.length = "1001";
  prints.push_back(fingerprintOf(c));
  c.arguments = "/steps 2";
  prints.push_back(fingerprintOf(c));
  folder.write("wires.txt", "1 2 4\n");
  prints.push_back(fingerprintOf(c));
  folder.write("a.cvi", "Library File Name: 'wires.txt' \n");
  prints.push_back(fingerprintOf(c));
  std::sort(prints.begin(), prints.end());
  EXPECT_EQ(std::unique(prints.begin(), prints.end()), prints.end());
}
