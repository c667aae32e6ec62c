// The companion that compares a model file with the line.
//
// Its readers are tested on the files of the whole runs, its scans and its passivity against closed
// forms, its errors against those that the program prints.
#include "base/constants.h"
#include "companions/shared/adaptive_scan.h"
#include "companions/shared/captured_run.h"
#include "companions/shared/direct_line.h"
#include "companions/shared/model_file.h"
#include "companions/verify/compare_functions.h"
#include "companions/verify/passivity.h"
#include "companions/verify/poles.h"
#include "companions/verify/told_by_run.h"
#include "passivity/enforcement.h"
#include "store/rundata.h"
#include "support/child.h"
#include "support/description.h"
#include "support/scratch.h"
#include "support/whole_run.h"

#include <cmath>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>

using namespace lcp::companions;
using namespace lcp::test;

namespace {

// Conductance D in parallel with R / (s + a) at both ends of a line that transmits nothing: the
// nodal admittance is that network, whose real part at w is D + R a / (w^2 + a^2).
ModelFile networkOf(double D, double R, double a) {
  ModelFile file;
  file.kind = lcp::ModelKind::Phase;
  file.n = 1;
  file.Yc = {oneByOne(D), {}, {-a}, {oneByOne(R)}};
  file.H = {{1e-3}, {{{}, {}, {-1.0}, {oneByOne(0)}}}};
  return file;
}

} // namespace

// A complete file from a whole run is accepted, every part of it is rejected.
TEST(ModelFiles, OfAllKindsAreReadToTheirEnds) {
  std::map<lcp::ModelKind, int> kinds;
  for (const auto& entry :
       std::filesystem::recursive_directory_iterator(CORVO_TEST_DATA "/cases")) {
    const auto extension = entry.path().extension();
    if (extension != ".cvo" && extension != ".cbo") continue;
    const std::string text = contentOf(entry.path());
    if (!text.starts_with("! ------ ORVEX") || text.find("\n@@ ") < text.size()) continue;
    const ModelFile file = parseModelFile(text);
    EXPECT_EQ(file.trouble, "") << entry.path();
    std::string returned; // as an editor of another system writes it
    for (const std::string& line : splitLines(text)) returned += line + "\r\n";
    EXPECT_EQ(parseModelFile(returned).trouble, "") << entry.path();
    EXPECT_NE(parseModelFile(text + "1\n").trouble, "") << entry.path();
    const auto lines = splitLines(text);
    std::string part;
    for (std::size_t k = 0; k + 1 < lines.size(); ++k) {
      part += lines[k] + "\n";
      if (k % 7 == 0 || k + 20 > lines.size()) {
        EXPECT_NE(parseModelFile(part).trouble, "") << k;
      }
    }
    ++kinds[file.kind];
  }
  for (const auto kind :
       {lcp::ModelKind::Pi, lcp::ModelKind::Bergeron, lcp::ModelKind::Mode, lcp::ModelKind::Mfdtd})
    EXPECT_GT(kinds[kind], 0) << nameOf(kind);
  for (const char* text :
       {"", "! only\n", "Fre-Phase  3\n", "Fre-Dep  1\n", "MFDTD  1 **\n", "   x\n"})
    EXPECT_NE(parseModelFile(text).trouble, "") << text;
}

TEST(Scan, FindsBandsByTheirEdges) {
  // Negative between 995 and 1005 Hz, a tenth of the spacing of the first grid.
  const auto notch = [](double f) {
    return ScanPoint{f, 1 - 2 * std::exp(-std::log(2) * std::pow((f - 1000) / 5, 2)), 1};
  };
  const auto wide = [&](double f) {
    return ScanPoint{f, notch(f).value + 0.2 * std::pow(std::log10(f / 1000), 2), 1};
  };
  const Scan scan = adaptiveScan({10, 1e5, 400, 1e-3, 50000}, wide);
  const auto bands = bandsBelow(scan, [](const ScanPoint&) { return 0.0; });
  EXPECT_TRUE(scan.resolved);
  ASSERT_EQ(bands.size(), 1U);
  EXPECT_NEAR(bands[0].from, 995, 1);
  EXPECT_NEAR(bands[0].to, 1005, 1);
  EXPECT_NEAR(bands[0].worst, -1, 0.01);
  EXPECT_FALSE(adaptiveScan({10, 1e5, 40, 1e-9, 300}, wide).resolved);
}

// With the opposite sign, the residue makes the real part negative up to w^2 = R a / D - a^2.
TEST(Passivity, OfALumpedNetworkIsKnown) {
  auto& F = lcp::RUNDATA.fit;
  lcp::RUNDATA.resetInput();
  lcp::RUNDATA.run = {}; // independent of earlier tests
  lcp::RUNDATA.run.DATAFMT = lcp::ROUTECONSTANTS;
  F.FSTART = 1;
  F.FEND = 1e5;
  F.NFINC = 50;
  const double D = 1e-3, a = 2000, R = 8;
  const double edge = std::sqrt(R * a / D - a * a) / lcp::TWOPI;
  const auto good = phasePassivity(networkOf(D, R, a), {});
  ASSERT_EQ(good.size(), 1U);
  EXPECT_EQ(good[0].verdict, Verdict::GOOD);
  EXPECT_NEAR(good[0].value, D, 1e-3 * D);
  const auto bad = phasePassivity(networkOf(D, -R, a), {});
  ASSERT_EQ(bad.size(), 2U);
  EXPECT_EQ(bad[0].verdict, Verdict::BAD);
  EXPECT_NEAR(bad[0].value, D - R / a, 1e-3 * R / a);
  EXPECT_NE(bad[1].words.find(fmt::format("to {:.4g} Hz", edge)), std::string::npos)
      << bad[1].words << edge;
}

TEST(Poles, ThatNoRealNetworkHasAreCounted) {
  ModelFile file = networkOf(1, 2, 3);
  file.Yc.poles = {{4, 0}, {-1, 2}, {-1, -2}, {-5, 6}};
  file.Yc.residues = {oneByOne({1, 0}), oneByOne({1, 1}), oneByOne({1, 1}), oneByOne({1, 0})};
  const auto found = checkPoles(file, {});
  ASSERT_EQ(found.size(), 4U);
  EXPECT_EQ(found[0].value, 1); // unstable
  EXPECT_EQ(found[1].value, 1); // alone
  EXPECT_EQ(found[2].value, 1); // a pair whose residues are equal
  EXPECT_NEAR(found[3].value, std::sqrt(2.0 / 5), 1e-12);
  EXPECT_EQ(exitStatus(found), 1);
}

namespace {

// What the program prints, and its exit status.
std::pair<int, std::string> verify(const std::string& words, const std::string& before = "") {
  FILE* pipe = popen((before + CORVO_VERIFY " " + words).c_str(), "r");
  std::string text;
  for (int c = 0; (c = std::fgetc(pipe)) != EOF;) text.push_back(static_cast<char>(c));
  return {WEXITSTATUS(pclose(pipe)), text};
}

using Json = nlohmann::json;

const Json& findingOf(const Json& all, const std::string& subject, const std::string& where) {
  static const Json none;
  for (const Json& f : all) {
    if (f["subject"] == subject && f["where"].get<std::string>().starts_with(where)) return f;
  }
  ADD_FAILURE() << subject << " " << where;
  return none;
}

} // namespace

// Lines whose runs succeed although their models are not good; the expected status is given.
TEST(Verify, FindsWhatARunDoesNotTell) {
  struct Fault {
    const char *file, *length, *subject, *where;
    double least, most;
  };
  const Fault FAULTS[] = {
      {"above.cvi", "5719", "H", "a decade above", 50, 1e9},
      {"above.cvi", "5719", "H", "at the points", 0, 1},
      {"between.cbi", "28550", "H", "between them", 100, 1e9},
      {"between.cbi", "28550", "H", "of the file over", 4, 1e9},
      {"printed.cvi", "2267", "Yc", "of the file over", 2, 1e9},
      {"enforced.cvi", "500", "passivity", "smallest", -1e9, -0.1},
      {"dropped.cvi", "29207", "passivity", "smallest", -1e-4, -1e-5},
      {"surge.cvi", "100000", "Zc", "mode 1, at the points", 40, 1e9},
      {"turned.cvi", "50000", "vector", "mode 3, turned by element 6", 1, 5},
      {"unpaired.cvi", "125846", "poles", "residues that", 1, 1e9},
  };
  std::map<std::string, Json> runs;
  for (const Fault& f : FAULTS) {
    if (!runs.contains(f.file)) {
      const auto [status, text] = verify(fmt::format("{}/companions/faults/{} /length {} --json",
                                                     CORVO_TEST_DATA, f.file, f.length));
      EXPECT_EQ(status, 1) << text;
      runs[f.file] = Json::parse(text)["findings"];
    }
    const Json& found = findingOf(runs[f.file], f.subject, f.where);
    if (found.is_null()) continue;
    EXPECT_GE(found["value"], f.least) << f.file << found;
    EXPECT_LE(found["value"], f.most) << f.file << found;
  }
}

// The errors of the example are those that its run prints: 0.0773 % and 0.1300 %.
TEST(Verify, AgreesWithThePrintedErrors) {
  const std::string file = CORVO_EXAMPLES "/line500kv_phase.cvi /length 100000 --json";
  const auto [status, text] = verify(file);
  EXPECT_EQ(status, 0) << text;
  const Json all = Json::parse(text)["findings"];
  EXPECT_NEAR(findingOf(all, "Yc", "at the points")["value"].get<double>(), 0.0773, 6e-5);
  EXPECT_NEAR(findingOf(all, "H", "at the points")["value"].get<double>(), 0.1300, 6e-5);
  // At zero frequency, the values of the line itself: only conductance and resistance.
  EXPECT_EQ(findingOf(all, "Yc", "at zero")["frequency"], 1e-6);
  EXPECT_EQ(verify(file + " --limits h=0.01:0.1").first, 1);
}

TEST(Verify, LooksAtEachLengthOfARun) {
  const Scratch scratch;
  const auto file = scratch.file("a.cvi", contentOf(CORVO_EXAMPLES "/line500kv.cvi"));
  const std::string steps = " /length 1e4 /steps 2 /increment 5e3 --json";
  const Json made = Json::parse(verify(file + steps).second);
  ASSERT_EQ(made.size(), 2U);
  EXPECT_EQ(made[1]["length"], 15000);
  EXPECT_EQ(runProgram({"/file", "a.cvi", "/length", "1e4", "/steps", "2", "/increment", "5e3"},
                       scratch.path())
                .status,
            0);
  const auto model = (scratch.path() / "a.cvo").string();
  EXPECT_EQ(Json::parse(verify(file + " " + model + steps).second), made);
  EXPECT_EQ(verify(file + " " + model + " /length 1e4 /steps 3 /increment 5e3 2>&1").first, 2);
}

// One change in a sound file, and what shows it.
TEST(Verify, FindsChangesInAModelFile) {
  const Scratch scratch;
  const std::string examples = CORVO_EXAMPLES "/";
  const auto changed = [&](std::string text, std::string_view line, std::string_view to) {
    const auto at = text.find(line);
    EXPECT_NE(at, std::string::npos) << line;
    if (at != std::string::npos) text.replace(at, line.size(), to);
    return scratch.file("changed", text);
  };
  const std::string bergeron =
      contentOf(CORVO_TEST_DATA "/cases/line500_bergeron/expected/line500kv.cvo");
  const auto head = bergeron.find(" 60.0");
  ASSERT_NE(head, std::string::npos);
  const auto [status, text] = verify(
      examples + "line500kv.cvi " + changed(bergeron, " 60.0", " 50.0") + " /length 100000 --json");
  EXPECT_EQ(status, 1);
  EXPECT_EQ(findingOf(Json::parse(text)["findings"], "file", "steady state")["verdict"], "bad");

  std::string mfdtd = contentOf(examples + "line500kv_phase.cvi");
  const std::string phase = "Frequency Dep. (Phase) Model Options";
  mfdtd.replace(mfdtd.find(phase), phase.size(), "MFDTD Model Options");
  const std::string input = scratch.file("m.cvi", mfdtd);
  ASSERT_NE(runProgram({"/file", "m.cvi", "/length", "100000"}, scratch.path()).status, 1);
  ModelFile file = readModelFile((scratch.path() / "m.cvo").string());
  ASSERT_EQ(file.trouble, "");
  lcp::companions::readHere(input, 1e5);
  for (lcp::companions::Complex& c : file.C.elements) c *= 10;
  const auto found = compareSeries(file, {});
  const auto ofY =
      std::find_if(found.begin(), found.end(), [](const Finding& f) { return f.subject == "Y"; });
  EXPECT_NEAR(ofY->value, 900, 1);
  EXPECT_EQ(ofY->verdict, Verdict::BAD);
}

// Verdicts for a person, verdicts and curves for a script.
TEST(Verify, SimulatesTheModelOnRequest) {
  const std::string line = CORVO_EXAMPLES "/line500kv_phase.cvi /length 100000 --time ";
  const auto [status, text] = verify(line + "--case step --step 2e-6 --until 2e-3 --json");
  EXPECT_EQ(status, 0);
  const Json all = Json::parse(text);
  EXPECT_LT(findingOf(all["findings"], "in time", "step, of the model")["value"], 0.3);
  EXPECT_LT(findingOf(all["findings"], "in time", "step, of the step")["value"], 1);
  EXPECT_EQ(findingOf(all["findings"], "growth", "4 kinds")["verdict"], "good");
  ASSERT_EQ(all["in_time"].size(), 1U);
  for (const char* curve : {"line", "model", "stepped"}) {
    ASSERT_EQ(all["in_time"][0][curve].size(), 3U) << curve;
    EXPECT_EQ(all["in_time"][0][curve][0].size(), 1001U) << curve;
    EXPECT_NEAR(all["in_time"][0][curve][0][160].get<double>(), 0, 1e-3); // light takes 167
  }
  EXPECT_EQ(verify(line + "--step 40e-6 --case energise | grep -c 'us is good'").second, "1\n");
  EXPECT_EQ(verify(line + "--case none 2>&1").first, 2);
}

TEST(Passivity, EnforcedByWordAloneIsBad) {
  for (const double smallest : {1e-9, -0.3}) {
    std::vector<Finding> found = {{"passivity", "smallest eigenvalue, both ends"}};
    found[0].value = smallest;
    found[0].verdict = smallest < 0 ? Verdict::DOUBTFUL : Verdict::GOOD;
    const auto told = compareConsole(fmt::format("x\n{}\n", lcp::ENFORCEDLINE), found, {});
    EXPECT_EQ(exitStatus(told), smallest < 0 ? 1 : 0);
  }
}

// The capacitance of the wire at height h alone: 2 pi e0 / ln(2 h / r).
TEST(DirectLine, FollowsTheDescriptionReadLast) {
  const Scratch scratch;
  for (const double h : {20.0, 12.0, 20.0}) {
    const std::string file = scratch.file(
        "a.cvi", description(fmt::format("{}Line Constants Tower\n{{\nCircuit\n{{\nConductors: 1\n"
                                         "Conductor Phase Information: 1\nRadius: 0.02\nSag: 0\n"
                                         "DCResistance: 0.05\nP1 : 0 {}\n}}\n}}\n",
                                         summary(1), h)));
    lcp::companions::readHere(file, 1000);
    const double C = constantsOf(60).Y(0, 0).imag() / (120 * std::acos(-1.0));
    EXPECT_NEAR(C, 5.5632502805066084e-11 / std::log(2 * h / 0.02), 1e-6 * C) << h;
  }
}

TEST(Verify, TellsWhereItsScratchFilesHaveNoRoom) {
  const std::string words = CORVO_EXAMPLES "/line500kv_phase.cvi /length 1e5 2>&1";
  for (const std::string before : {"TMPDIR=/none ", "ulimit -f 24; "}) {
    const auto [status, text] = verify(words, before);
    EXPECT_EQ(status, 2) << before;
    EXPECT_NE(text.find("corvo-verify: no scratch files in "), std::string::npos) << text;
  }
}

TEST(Verify, ComparesNothingWithAStranger) {
  const Scratch scratch;
  const std::string model = (scratch.path() / "m").string(), examples = CORVO_EXAMPLES "/";
  std::ofstream(model) << contentOf(CORVO_TEST_DATA
                                    "/cases/line500_bergeron/expected/line500kv.cvo");
  const std::string of = " " + model + " /length 100000 2>/dev/null";
  EXPECT_EQ(verify(examples + "line500kv.cvi" + of).first, 0);
  EXPECT_EQ(verify(examples + "line500kv_phase.cvi" + of).first, 1); // of another kind
  for (const char* words : {"fourwire.cbi", "none", "."})
    EXPECT_EQ(verify(examples + words + of).first, 2) << words;
  for (const char* length : {"0", "-1", "text", "nan"})
    EXPECT_EQ(verify(examples + "line500kv.cvi /length " + length + " 2>/dev/null").first, 2);
  for (const char* json : {"", " --json"}) {
    EXPECT_EQ(verify(examples + "line500kv_phase.cvi /length 1000 2>&1 >/dev/full" + json).first,
              2);
  }
  EXPECT_EQ(verify(examples + "line500kv.cvi " + model + " /length 50000").first, 1);
}
