#include "base/stop.h"
#include "companions/check/check.h"
#include "companions/check/finding.h"
#include "companions/check/near_key.h"
#include "support/child.h"
#include "support/scratch.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <set>

namespace lcp::companions {

namespace {

using test::ChildResult;
using test::Scratch;
using Strings = std::set<std::string>;

const std::string EXAMPLES = std::string(CORVO_EXAMPLES) + "/";
const std::string LINE = "line500kv_phase.cvi", CABLES = "singlecore.cbi", PIPE = "pipetype.cbi",
                  HAND = "manual.cvi", FOURWIRE = "fourwire.cbi";

ChildResult check(std::string file, bool json) {
  std::string option = "--json";
  return test::runChild([&] {
    std::vector<char*> words = {file.data()};
    if (json) words.push_back(option.data());
    stop(checkDescription(words));
  });
}

// An example with texts replaced at their first occurrence, and the expected findings: line number
// and kind.
struct Case {
  std::string example;
  std::vector<std::pair<std::string, std::string>> changes;
  Strings found;
  int status = 1;
};

const std::string BERGERON = "Bergeron Line Model Options\n{\n"
                             "Shaping Time Constant (0 Seq.): 1.0E-9 [s]\n"
                             "Shaping Time Constant (Metallic): 1.0E-9 [s]\n}\n";
const std::string CONDUCTORS = "Conductors: 3\nTransposed: 0\n",
                  RADII = "Radius: 0.01407 [m]\nInner Radius: 0.00518 [m]\n",
                  BUNDLE = "Sub-ConductorsPerBundle: 4\n", SPACING = "BundleSpacing: 0.45 [m]\n",
                  WEIGHTS = "Weighting Factor 1: 1.0\n", HOLE = "Inner Radius: 0.00518 [m]\n";

std::string strands(std::string_view radius, int outer, int total) {
  return fmt::format(
      "Strand Radius: {}\nNumber of Outer Strands: {}\nTotal Number of Strands: {}\n", radius,
      outer, total);
}

// Where possible, changes keep the line numbers of the example.
const std::vector<Case> CASES = {
    // lines without effect
    {LINE, {{"Sag: 13.0", "! Sag: 13.0"}}, {"28 comment-key"}},
    {LINE, {{"Name: Flat tower", "Cicuit"}}, {"18 comment-key"}},
    {LINE, {{"Sag: 13.0", "C Sag is 13"}}, {}},
    {LINE, {{"Sag: 9.0", "sag: 9.0"}}, {"42 unknown-line"}},
    {LINE, {{"Sag: 13.0", "Sag: 13.0" + std::string(120, ' ') + "x"}}, {"28 long-line"}},
    {LINE, {{"END", std::string(20000, '\n')}}, {"0 long-file"}},
    // values that differ from what they say
    {LINE, {{"P1 : -8.0", "P1: -8.5"}}, {"43 lost-character"}},
    {LINE, {{"GroundResistivity: ", "GroundResistivity:"}}, {"50 lost-character", "50 soil"}},
    {LINE, {{"Sag: 9.0", "Sag: , 9.0"}}, {"42 early-end"}},
    {LINE, {{"Sag: 9.0", "Sag: /"}}, {"42 early-end"}},
    {LINE, {{"Sag: 9.0 [m]", "Sag:"}}, {"42 no-value"}},
    {LINE,
     {{"P3 : 11.0 28.0", "P3 : 11.0"}},
     {"0 solve-ends", "24 radius-above-height", "28 sag-above-height", "31 few-items"},
     2},
    {LINE, {{"P3 : 11.0 28.0", "P3 : 11.0, 28.0, 5"}}, {"31 more-items"}},
    {LINE, {{"P3 : 11.0 28.0", "P3 : 2*28.0"}}, {}},
    {CABLES, {{"P1: -0.3 1.3", "P1: -0.3 1.3 0.2 0"}}, {"20 more-items"}},
    {PIPE,
     {{"P1: 0.0 -0.05 0.05 -90.0", "P1: 0.0 -0.05"}},
     {"36 few-items", "36 pipe-place", "53 pipe-place", "58 pipe-place"}},
    {LINE, {{"Sag: 9.0", "Sag: 9,5"}}, {"42 cut-number"}},
    {CABLES, {{"layers: 1", "layers: 2"}}, {"30 flag-value"}},
    {LINE,
     {{"0.01407 [m]", "0.01407 [cm]"}, {"2.865 [ohm/km]", "2.865 [Ohms / km]"}},
     {"24 other-unit"}},
    {LINE, {{"Weighting Factor 1: 1.0", "Weighting Factor 1: 1.0 [%]"}}, {"60 other-unit"}},
    {LINE, {{"1.0E-11 [mho/m]", "1.0E-11 [mhos/metre]"}}, {}},
    // keys compared with each other
    {LINE, {{CONDUCTORS, "Transposed: 0\nConductors: 3\n"}}, {}},
    {LINE,
     {{RADII, "Inner Radius: 0.00518 [m]\nRadius: 0.01407 [m]\n"}},
     {"24 ahead-of-need", "25 hole"}},
    {CABLES,
     {{"Cable Number: 1\nP1: -0.3 1.3\n", "P1: -0.3 1.3\nCable Number: 1\n"}},
     {"0 depth", "0 solve-ends", "19 ahead-of-need"},
     2},
    {HAND,
     {{"Data Entry Format : ohms/m\n", ""},
      {"450.0 [Mohm*m]\n", "450.0 [Mohm*m]\nData Entry Format : ohms/m\n"}},
     {"0 solve-ends", "18 ahead-of-need", "19 ahead-of-need", "20 ahead-of-need",
      "21 ahead-of-need", "22 ahead-of-need", "23 ahead-of-need", "19 entered-value",
      "20 entered-value", "22 entered-value", "23 entered-value"},
     2},
    {CABLES,
     {{"EarthUImpedanceFormula: 2", "EarthUImpedanceFormula: 2\nEarthImpedanceFormula: 2"}},
     {"97 undone"}},
    {LINE, {{"Sag: 9.0 [m]", "Sag: 9.0 [m]\nSag: 8.0"}}, {"43 repeated"}},
    {LINE, {{"GroundPermeability", "GroundResistivity: 50\nGroundPermeability"}}, {"51 repeated"}},
    {LINE,
     {{"GroundWires: 2", "GroundWires: 1"}, {"P2 : 8.0 37.5", "GW2 Radius: 0.005"}},
     {"44 no-place"}},
    {LINE, {{BUNDLE, "Sub-ConductorsPerBundle: 1\n"}}, {"34 no-place"}},
    {LINE,
     {{BUNDLE, "Sub-ConductorsPerBundle: 2\n"}, {SPACING, "P1 : 0.2 0\nP2 : -0.2 0\nP3 : 0 0.2\n"}},
     {"36 no-place"}},
    {CABLES,
     {{"Cable Number: 3", "Cable Number: 3\nOverhead Cable: 1"},
      {"EarthUImpedanceFormula", "EarthImpedanceFormula"},
      {"Start Frequency: 0.5", "Start Frequency: 0.0224"}}, // below 0.01 Hz by its five steps
     {"98 aerial-low-frequency", "98 earth-error"}},
    {CABLES,
     {{"Cable Number: 3", "Cable Number: 3\nOverhead Cable: 1"},
      {"EarthUImpedanceFormula", "EarthImpedanceFormula"},
      {"Start Frequency: 0.5", "Start Frequency: 0.0252"}},
     {"98 earth-error"}},
    // options
    {LINE,
     {{WEIGHTS, "\n"}, {"Factor 3: 1.0", "Factor 3: 0"}},
     {"55 zero-weight", "62 zero-weight"}},
    {LINE,
     {{"Start Frequency: 0.5", "Start Frequency: 2E6"}},
     {"57 unusual-number", "58 falling-grid"}},
    {LINE,
     {{WEIGHTS, WEIGHTS + "DC Correction Type: 1\n"}, {"1.0E-11", "0.0"}},
     {"61 dc-conductance"}},
    {CABLES, {{WEIGHTS, WEIGHTS + "DC Correction Type: 2\n"}}, {"106 dc-conductance"}},
    {LINE,
     {{WEIGHTS, WEIGHTS + "Maximum iterations for passivity: 3\n"
                          "Frequency distribution for passivity check: 4\n"}},
     {"55 zero-passivity-error", "55 zero-tolerance", "62 no-passivity-grid"}},
    {LINE,
     {{WEIGHTS, WEIGHTS + "Lower frequency for passivity check: 1\n"}},
     {"55 no-passivity-grid"}},
    {LINE,
     {{WEIGHTS, WEIGHTS + "Lower frequency for passivity check: 1\n"
                          "Frequency distribution for passivity check: 3\n"}},
     {}}, // which needs no increments
    {HAND,
     {{BERGERON, ""}, {" : ohms/m", " : Y and Z"}},
     {"0 no-model", "0 reader-warning", "14 entered-value", "19 no-place", "20 no-place",
      "21 no-place", "22 no-place", "23 no-place", "24 no-place"},
     2},
    // geometry and materials
    {LINE,
     {{"0.01407 [m]", "25 [m]"}},
     {"24 radius-above-height", "26 resistivity", "29 touching", "34 tight-bundle", "43 touching"}},
    {LINE, {{"Sag: 13.0", "Sag: 28.0"}}, {"28 clearance", "28 sag-above-height"}},
    {LINE, {{"0.0728", "0.728"}, {"2.865", "0.02865"}}, {"26 resistivity", "41 resistivity"}},
    {CABLES, {{"1.7E-8", "1.7E-7"}, {"2.8E-8", "2.8E-5"}}, {"25 resistivity", "34 resistivity"}},
    {PIPE,
     {{"2.0E-7", "2.0E-4"}, {"Permittivity: 2.1", "Permittivity: 0.21"}},
     {"25 permittivity", "28 resistivity"}},
    {FOURWIRE,
     {{"1.7241E-8", "1.7241"}, {"Permittivity: 3.3", "Permittivity: 0.3"}},
     {"23 resistivity", "25 permittivity"}},
    {LINE, {{"GroundResistivity: 100.0", "GroundResistivity: 1E6"}}, {"50 soil"}},
    {LINE, {{"P3 : 11.0 28.0", "P3 : 0.0005 28.0"}}, {"0 solve-ends", "29 touching"}, 2},
    {LINE, {{"0.45", "0.02"}}, {"34 tight-bundle"}},
    {LINE,
     {{"-8.0 37.5", "-8.0 7.5"}, {"8.0 37.5", "8.0 7.5"}},
     {"43 no-wire-above", "42 sag-above-height", "52 earth-error"}},
    {CABLES,
     {{"Insulator 2 Relative Permeability: 1.0\n", "\n"}, {"P1: 0.0 1.3", "P1: 0.0 -1.3"}},
     {"0 solve-ends", "20 permeability", "45 depth"},
     2},
    {PIPE,
     {{"Inner Cables: 3", "Inner Cables: 2"},
      {"Layer: 1\nConductor Inner",
       "Layer: 3\nEliminate Third Concentric Layer: 1\nConductor Inner"}},
     {"20 inner-cables", "39 absent-layer"}},
    {CABLES,
     {{"Layers: 3", "Layers: 1"}},
     {"0 solve-ends", "33 absent-layer", "40 absent-layer", "64 cable-group"},
     2},
    {CABLES, {{"Layer: 0\n", "Layer: 0\nEliminate Third Concentric Layer: 1\n"}}, {}},
    // strands and holes
    {LINE, {{HOLE, strands("0.00222", 16, 26)}}, {}},
    {LINE, {{HOLE, strands("0.00222", 28, 26)}}, {"26 strands"}},
    {LINE, {{HOLE, strands("0.00222", 22, 26)}}, {"26 strands"}},
    {LINE, {{HOLE, strands("0.00444", 6, 26)}}, {"25 strands", "28 resistivity"}},
    {LINE, {{HOLE, strands("0.00222", 16, 62)}}, {"25 strands"}},
    {LINE, {{"0.00518", "0.0158"}}, {"25 hole"}},
    // metals by resistance and cross-section
    {LINE, {{"0.01407", "0.02814"}, {"0.00518", "0.01036"}}, {"26 resistivity"}},
    {LINE, {{"0.0055", "0.011"}}, {"41 resistivity"}},
    {LINE, {{"0.0728", "0.0182"}}, {"26 resistivity"}}, // of the whole bundle
    {LINE,
     {{"0.01407", "0.003"}, {"0.00518", "0.0"}, {"0.0728", "10.7"}},
     {}}, // a thin wire of steel
    {LINE,
     {{"ShuntC", "Conductor Relative Permeability: 100\nShuntC"}, {"1.0E-11", "1.0E-5"}},
     {"27 permeability", "28 conductance"}},
    // places
    {LINE, {{"-11.0 28.0", "-11.0 2800"}}, {"43 no-wire-above", "29 clearance"}},
    {LINE, {{"Sag: 13.0", "Sag: 27.5"}}, {"28 clearance"}},
    {LINE, {{"Sag: 13.0", "Sag: -13"}}, {"28 unusual-number"}},
    {LINE, {{"-11.0 28.0", "-1100 28.0"}}, {"29 spacing", "52 earth-error"}},
    {LINE, {{"0.45", "0.045"}}, {"34 spacing"}},
    {LINE, {{"0.45", "4.5"}}, {"34 spacing"}},
    {LINE, {{"0.45", "0.02814"}}, {}}, // touching pairs exist
    // choices and usual numbers
    {LINE, {{"Transposed: 0", "Transposed: 3"}}, {"22 choice-value"}},
    {CABLES, {{"Layer: 0", "Layer: 4"}}, {"22 choice-value"}},
    {LINE,
     {{"Steady State Frequency: 60", "Steady State Frequency: 5"},
      {"Permeability: 1", "Permeability: 100"}},
     {"13 unusual-number", "51 unusual-number", "52 earth-error"}},
    {LINE, {{"Frequency: 60.0", "Frequency: 0.001"}}, {}},
    {LINE, {{"1.0E6", "1.0E3"}}, {"58 unusual-number"}},
    {LINE, {{"Increments: 100", "Increments: 5000"}}, {"59 run-ends"}, 2},
    {LINE, {{"0.5 [Hz]", "0 [Hz]"}}, {"57 run-ends"}, 2},
    {LINE, {{"Surge Admittance: 0.2", "Surge Admittance: 200"}}, {"64 unusual-number"}},
    {LINE, {{"(Phase)", "(Mode)"}}, {"63 no-place", "64 no-place"}}, // limits of the other model
    // layers of cables
    {CABLES,
     {{"Permittivity: 2.3", "Permittivity: 24"},
      {"Sheath Permeability: 1.0", "Sheath Permeability: 10"}},
     {"28 permittivity", "35 permeability"}},
    {CABLES,
     {{"Semi-", "Frequency for loss tangent: 50\nInsulator 1 Loss Tangent: 0.3\nSemi-"}},
     {"31 loss-tangent"}},
    {CABLES, {{"Semi-", "Insulator 1 Loss Tangent: 0.001\nSemi-"}}, {"30 loss-tangent"}},
    {CABLES,
     {{"0.0195", "0.039"}, {"0.03775", "0.0755"}, {"0.03797", "0.07594"}, {"0.0425", "0.085"}},
     {"24 wide-core"}},
    {CABLES, {{"0.03797", "0.0600"}, {"0.0425", "0.0625"}}, {"33 layer-thickness"}},
    {CABLES, {{"0.0 1.3", "0.0 0.013"}}, {"45 depth"}},
    {CABLES, {{"0.0 1.3", "0.0 130"}}, {"45 depth", "45 spacing", "70 spacing"}},
    {CABLES, {{"Cable Group: 1\n", "\n"}}, {"0 solve-ends", "20 cable-group", "64 cable-group"}, 2},
    {CABLES,
     {{"Crossbonded: 1\n", "Crossbonded: 0\n"}, {"Group: 1\n", "Group: 0\n"}},
     {"0 solve-ends", "64 cable-group"},
     2},
    {PIPE, {{"0.05 30.0", "0.05 -30.0"}}, {"53 pipe-place", "58 pipe-place"}},
    {PIPE, {{"0.05 30.0", "0.04 30.0"}}, {"53 pipe-place", "58 pipe-place"}},
    {PIPE,
     {{"0.05 -90.0", "0.05 90.0"}, {"0.05 30.0", "0.05 -30.0"}, {"0.05 150.0", "0.05 -150.0"}},
     {}}, // mirrored
    // entered data
    {HAND,
     {{"5.0E-5", "4.88E-4"}, {"Reactance: 4.88E-4", "Reactance: 5.0E-5"}},
     {"20 entered-value", "22 entered-value"}},
    {HAND, {{"4.88E-4 [ohm/m]", "0.488 [ohm/km]"}}, {"20 entered-unit", "20 entered-value"}},
    {HAND, {{"291.0", "0.291"}}, {"21 entered-value"}},
    {HAND, {{"450.0", "45.0"}}, {"24 entered-value"}},
    {HAND,
     {{" : ohms/m", " : Surge Impedance and Travel Time"}},
     {"0 solve-ends", "14 entered-value", "20 no-place", "21 no-place", "23 no-place",
      "24 no-place"},
     2},
    {HAND,
     {{" : ohms/m", " : RXB p.u./m"}},
     {"19 entered-value", "20 entered-value", "21 entered-value", "22 entered-value",
      "23 entered-value", "24 entered-value"}},
    // what the checks behind the lines refuse
    {LINE, {{"1 2 3", "1 2 2"}}, {"23 node"}, 2},
    {LINE, {{"Number of Conductors: 3", "Number of Conductors: 4"}}, {"12 node-count"}, 2},
    {LINE, {{"-11.0 28.0", "11.0 28.0"}}, {"29 touching"}, 2},
    {CABLES, {{"P1: 0.3 1.3", "P1: 0.03 1.3"}}, {"70 overlap"}, 2},
    {CABLES, {{"0.03775", "0.03875"}}, {"33 layer-radius"}, 2},
    {CABLES,
     {{"Layers: 3", "Layers: 4"}},
     {"20 layer-radius", "20 permeability", "20 resistivity"},
     2},
    {CABLES, {{"Number: 3", "Number: 4"}}, {"69 reader-ends", "39 cable-group"}, 2},
    {HAND, {{" : ohms/m", " : ohm/m"}}, {"17 choice-value", "17 reader-ends"}, 2},
    // formulas
    {LINE,
     {{"EarthImpedanceFormula: 0", "EarthImpedanceFormula: 1"}},
     {"0 solve-ends", "52 earth-formula"},
     2},
    {CABLES,
     {{"EarthUImpedanceFormula: 2", "EarthUImpedanceFormula: 12"}},
     {"0 solve-ends", "97 earth-formula"},
     2},
    {CABLES,
     {{"EarthUImpedanceFormula: 2", "EarthUImpedanceFormula: 0"}},
     {"97 buried-closed-form"}},
    {CABLES,
     {{"EarthUImpedanceFormula: 2", "EarthUImpedanceFormula: 3"}, {"-0.3 1.3", "-10.3 1.3"}},
     {"45 spacing", "97 earth-error"}},
    {CABLES,
     {{"EarthUImpedanceFormula: 2", "EarthUImpedanceFormula: 12"},
      {"-0.3 1.3", "-10.3 1.3"},
      {"\nFrequency Dep.", "\nNumerical Options\n{\nImproved Earth : 1\n}\nFrequency Dep."}},
     {"45 spacing"}},
    {LINE,
     {{"GroundPermeability: 1.0", "GroundPermeability: 4.0"}},
     {"51 unusual-number", "52 earth-error"}},
    {CABLES,
     {{"Cable Number: 3", "Cable Number: 3\nOverhead Cable: 1"},
      {"EarthUImpedanceFormula: 2", "EarthUImpedanceFormula: 0"}},
     {"0 earth-error", "98 buried-closed-form"}}, // two are left in the ground
    // what ends the reader
    {LINE, {{"P1 : -11.0", "P1: -11.0"}}, {"29 lost-character", "29 touching"}, 2},
    {LINE,
     {{"Radius: 0.01407", "Radius: x"}, {"Name: Flat tower", "Cicuit"}},
     {"18 comment-key", "24 reader-ends"},
     2},
};

std::string changed(const Case& c) {
  std::string text = test::contentOf(EXAMPLES + c.example);
  for (const auto& [from, to] : c.changes) {
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    if (at != std::string::npos) text.replace(at, from.size(), to);
  }
  return text;
}

Strings kindsIn(const nlohmann::json& document) {
  Strings kinds;
  for (const auto& f : document["findings"])
    kinds.insert(fmt::format("{} {}", f["line"].get<int>(), f["kind"].get<std::string>()));
  return kinds;
}

} // namespace

// The console shows what the document contains, every kind is found somewhere, and the examples
// give no findings.
TEST(Check, FindsWhatHadNoEffectOrIsHardlyMeant) {
  const Scratch scratch;
  Strings seen;
  for (const Case& c : CASES) {
    const std::string file = scratch.file(c.example, changed(c));
    const ChildResult told = check(file, false), json = check(file, true);
    const auto document = nlohmann::json::parse(json.console, nullptr, false);
    EXPECT_EQ(kindsIn(document), c.found) << c.changes[0].second;
    EXPECT_EQ(json.status, c.found.empty() ? 0 : c.status) << c.changes[0].second;
    EXPECT_EQ(told.status, json.status);
    for (const auto& f : document["findings"]) {
      seen.insert(f["kind"]);
      EXPECT_NE(told.console.find(f["text"]), std::string::npos) << f;
    }
  }
  for (Kind k = Kind::CommentKey; k <= Kind::EarthError; k = Kind(int(k) + 1))
    EXPECT_TRUE(seen.contains(std::string(rowOf(k).id))) << rowOf(k).id;
  for (const std::string& example : {LINE, CABLES, PIPE, HAND, FOURWIRE})
    EXPECT_EQ(check(EXAMPLES + example, false).status, 0) << example;
}

TEST(Check, NamesAKeyThatIsNearAndEachFindingOnce) {
  const std::string_view keys[] = {"P", "Radius"};
  EXPECT_EQ(nearestKey("x", keys, 3, 1), ""); // all of P would change
  EXPECT_EQ(nearestKey("radiu", keys, 3, 1), "Radius");
  Findings findings;
  for (const char* name : {"Sag", "Radius", "Sag"}) add(findings, 5, Kind::NoValue, name);
  EXPECT_EQ(findings.size(), 2U);
}

} // namespace lcp::companions
