// The curve data of a corvo-plot page; the pages themselves are tested in a browser.
#include "base/constants.h"
#include "companions/plot/fit_facts.h"
#include "companions/plot/functions.h"
#include "companions/plot/geometry.h"
#include "companions/plot/page.h"
#include "companions/plot/plot.h"
#include "companions/plot/sheets.h"
#include "companions/plot/survey.h"
#include "companions/plot/time_curves.h"
#include "companions/shared/captured_run.h"
#include "companions/shared/direct_line.h"
#include "companions/shared/fit_ranges.h"
#include "store/rundata.h"
#include "store/solvedata.h"
#include "support/child.h"
#include "support/description.h"
#include "support/scratch.h"
#include "support/solve.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>

namespace lcp::companions {

using namespace test;

// Three bytes are four letters: 1, -2 and 0.15625 in single precision, the last for one that is
// too small, the largest for one that is too large.
TEST(Page, NumbersArePackedInSinglePrecision) {
  const double some[] = {1, -2, 0.15625};
  EXPECT_EQ(packedNumbers(some), "AACAPwAAAMAAACA+");
  const double odd[] = {1e-300, 1e300, std::nan("")};
  EXPECT_EQ(packedNumbers(odd), "AAAAAP//f38AAMB/");
}

// A spike of one point, a point of the fit and a deviation of one point survive the thinning.
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

TEST(Page, WiresHangAndMatricesAreShownOnce) {
  readHere(CORVO_TEST_DATA "/../examples/line500kv_phase.cvi", 1e4);
  EXPECT_EQ(geometryOf()["wires"][0]["facts"]["At mid-span"],
            "y = 15.225 m"); // 28 m, half a bundle more, 13 m of sag less
  EXPECT_EQ(placesOf(3, true, {}).size(), 6U);
  EXPECT_EQ(placesOf(3, false, {}).size(), 9U);
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
             std::atexit([] { std::_Exit(2); }); // nothing of this process must be destroyed
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

// Straight lines between the kept points: the kinks of a ramp, a spike, and no more than allowed.
TEST(Page, TimesAreThoseThatStraightLinesNeed) {
  std::vector<double> ramp(1001), spike(1001, 0.0), wave(1001);
  for (std::size_t k = 0; k < ramp.size(); ++k) {
    ramp[k] = std::clamp(static_cast<double>(k) - 400, 0.0, 200.0);
    wave[k] = std::sin(0.5 * static_cast<double>(k));
  }
  spike[777] = 1e-9; // of its own height
  EXPECT_EQ(keptOf({ramp, spike}, 1e-3, 500),
            (std::vector<std::size_t>{0, 400, 600, 776, 777, 778, 1000}));
  EXPECT_EQ(keptOf({wave}, 1e-3, 50).size(), 50U);
}

// Of twelve conductors the diagonal, the first row and column, and what a finding names.
TEST(Page, LargeMatricesKeepWhatVerdictsName) {
  Finding named("Yc", "between them (9,7)");
  const std::vector<Place> half = placesOf(12, true, {named}), all = placesOf(12, false, {named});
  EXPECT_EQ(half.size(), 12U + 11U + 1U);
  EXPECT_EQ(all.size(), 12U + 2 * 11U + 1U);
  EXPECT_EQ(std::count(half.begin(), half.end(), Place{6, 8}), 1);
  EXPECT_EQ(std::count(all.begin(), all.end(), Place{8, 6}), 1);
  EXPECT_EQ(placesOf(8, true, {}).size(), 36U);
}

// Kept constants are those computed anew, also when another frequency came between.
TEST(Page, KeptConstantsAreTheSame) {
  lcp::RUNDATA.resetInput();
  readHere(CORVO_TEST_DATA "/../examples/singlecore.cbi", 1e4);
  const LinePoint anew = constantsOf(700);
  const KeptConstants kept;
  constantsOf(700);
  constantsOf(5e4);
  EXPECT_EQ(constantsOf(700).Z.elements, anew.Z.elements);
  EXPECT_NE(constantsOf(5e4).Z.elements, anew.Z.elements);
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

namespace {

// The numbers of a packed text: six bits per letter, four bytes per number.
std::vector<double> unpacked(const std::string& text) {
  const std::string letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::vector<double> numbers;
  std::uint64_t bits = 0;
  std::string bytes;
  for (std::size_t i = 0; i < text.size() && text[i] != '='; ++i) {
    bits = bits << 6 | letters.find(text[i]);
    if (i % 4 != 0) bytes += static_cast<char>(bits >> (6 - 2 * (i % 4)) & 255U);
  }
  for (std::size_t at = 0; at + 4 <= bytes.size(); at += 4) {
    float value = 0;
    std::memcpy(&value, &bytes[at], 4);
    numbers.push_back(static_cast<double>(value));
  }
  return numbers;
}

Matrix one(Complex z) {
  Matrix m(1, 1);
  m(0, 0) = z;
  return m;
}

Rational fraction(double D, double pole, double residue) {
  return {one(D), {}, {pole}, {one(residue)}};
}

constexpr double LENGTH = 3e4, DELAY = 1.05e-4; // m, s

// A model file of one conductor; its functions are unrelated to the line.
ModelFile fileOf(ModelKind kind) {
  ModelFile file;
  file.kind = kind;
  file.n = 1;
  file.Yc = fraction(2e-3, -30, 0.06);
  file.H = {{DELAY}, {{{}, {}, {-1e9}, {one(5e8)}}}};
  file.Z = fraction(1e-5, -200, 0.3);
  file.modes = {
      {1e3 * DELAY, fraction(400, -50, 900), fraction(0, -1e4, 9e3), {fraction(1, -7, 0.1)}}};
  file.bergeron = {60, 60, LENGTH, {{0.11, 420, 3e-4, 4e-4}}, one(1)};
  return file;
}

void readOneConductor(const std::string& model) {
  const std::string text = test::description(
      summary(1) +
      "Line Constants Tower\n{\nCircuit\n{\nConductors: 1\n"
      "Conductor Phase Information: 1\nDCResistance: 0.05\nSag: 6\nRadius: 0.015\nP1 : 0 20\n"
      "ShuntConductance: 1e-11\n}\n}\n" +
      model);
  companions::readHere(test::scratchFile("line", text), LENGTH);
}

} // namespace

TEST(Page, CurvesAreThoseOfTheLineAndItsModel) {
  readOneConductor(phaseModel());
  RUNDATA.line.SSFREQ = fitRanges()[0].f[20]; // which is shown once
  using Curve = std::function<Complex(Complex s, Complex Y, Complex Z)>;
  const auto ahead = [](Complex s) { return std::exp(s * DELAY); };
  const auto wave = [&](Complex s, Complex Y, Complex Z) {
    return ahead(s) * std::exp(-LENGTH * std::sqrt(Y * Z));
  };
  const struct {
    ModelKind kind;
    const char* id;
    Curve line, model;
  } curves[] = {
      {ModelKind::Phase, "Yc", [](auto, auto Y, auto Z) { return std::sqrt(Y / Z); },
       [](auto s, auto, auto) { return 2e-3 + 0.06 / (s + 30.0); }},
      {ModelKind::Phase, "H", wave, [](auto s, auto, auto) { return 0.5 / (1.0 + s / 1e9); }},
      {ModelKind::Mode, "Zc-fit", [](auto, auto Y, auto Z) { return std::sqrt(Z / Y); },
       [](auto s, auto, auto) { return 400.0 + 900.0 / (s + 50.0); }},
      {ModelKind::Mode, "H", wave, [](auto s, auto, auto) { return 9e3 / (s + 1e4); }},
      {ModelKind::Mode, "T", [](auto, auto, auto) { return Complex(1); },
       [](auto s, auto, auto) { return 1.0 + 0.1 / (s + 7.0); }},
      {ModelKind::Mfdtd, "Z-fit", [](auto, auto, auto Z) { return Z; },
       [](auto s, auto, auto) { return 1e-5 + 0.3 / (s + 200.0); }},
      {ModelKind::Bergeron, "gamma", [](auto, auto Y, auto Z) { return std::sqrt(Y * Z); },
       [](auto s, auto, auto) { return 3e-4 / 840 + s * 0.11e-3 / LENGTH; }},
      {ModelKind::Bergeron, "Zc", [](auto, auto Y, auto Z) { return std::sqrt(Z / Y); },
       [](auto, auto, auto) { return Complex(420); }},
  };
  for (const auto& c : curves) {
    const ModelFile file = fileOf(c.kind);
    const Survey survey = surveyLine(file, LENGTH);
    const Json page = c.kind == ModelKind::Bergeron ? modesOf(survey) : fitsOf(survey);
    const std::vector<double> f = unpacked(page["f"]);
    ASSERT_GT(f.size(), 100U);
    EXPECT_EQ(std::adjacent_find(f.begin(), f.end(), std::greater_equal<>()), f.end());
    for (const Json& F : page["functions"]) {
      if (F["id"] != c.id) continue;
      const Json& element = F["elements"][0];
      const auto line = unpacked(element["line"]), model = unpacked(element["model"]);
      for (std::size_t k = 0; k < f.size(); k += 10) {
        const LinePoint point = constantsOf(f[k]);
        const Complex s(0, TWOPI * f[k]);
        const Complex wanted[] = {c.line(s, point.Y(0, 0), point.Z(0, 0)), c.model(s, 0, 0)};
        EXPECT_LT(std::abs(Complex(line[2 * k], line[2 * k + 1]) - wanted[0]),
                  1e-4 * std::abs(wanted[0]))
            << c.id << ' ' << f[k];
        EXPECT_LT(std::abs(Complex(model[2 * k], model[2 * k + 1]) - wanted[1]),
                  1e-4 * std::abs(wanted[1]))
            << c.id << ' ' << f[k];
      }
    }
  }
}

// Yc (1 - H) / (1 + H) and its inverse, for a wave that returns with half its size: thousands of
// turns.
TEST(Page, EigenvaluesRiseInFrequencyAndAreThoseOfTheFile) {
  readOneConductor(phaseModel());
  const ModelFile file = fileOf(ModelKind::Phase);
  const Json curve = passivityOf(file, {})["after"];
  const std::vector<double> f = unpacked(curve["f"]), value = unpacked(curve["value"]);
  ASSERT_GT(f.size(), 1000U);
  EXPECT_TRUE(std::is_sorted(f.begin(), f.end()));
  for (std::size_t k = 0; k < f.size(); k += 7) {
    const Complex s(0, TWOPI * f[k]), H = file.H.at(s)(0, 0), Yc = file.Yc.at(s)(0, 0);
    const Complex over = Yc * (1.0 - H) / (1.0 + H), under = Yc * (1.0 + H) / (1.0 - H);
    EXPECT_NEAR(value[k], std::min(over.real(), under.real()), 1e-2 * std::abs(Yc)) << f[k];
  }
}

} // namespace lcp::companions
