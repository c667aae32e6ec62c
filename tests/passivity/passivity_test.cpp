// The passivity grid, the check against a closed form, and enforcement on lines whose fits are not
// passive.
//
// The enforced model is examined from its file alone: the whole spectrum of the nodal admittance at
// ten times as many frequencies as in the enforcement.
#include "base/constants.h"
#include "base/number_forms.h"
#include "kernels/lapack.h"
#include "made_up_model.h"
#include "passivity/enforcement.h"
#include "passivity/passivity_check.h"
#include "passivity/passivity_grid.h"
#include "support/console_capture.h"
#include "support/description.h"
#include "support/propagation_case.h"
#include "support/scratch.h"
#include "support/solve.h"
#include "support/whole_run.h"
#include "support/written_model.h"

#include <algorithm>
#include <fmt/format.h>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

using Options = PassivityOptions; // lowest frequency, check enabled, highest, count, distribution
using Bands = std::vector<std::string>;

std::string three(double v) { return scientificField(v, 10, 3); }

std::string band(double from, double to, double worst) {
  return " From " + three(from) + " Hz to " + three(to) + " Hz         " + three(worst);
}

// The bands printed by the check; whole runs cover the table around them.
Bands bandsIn(const std::string& console) {
  Bands bands;
  for (const std::string& l : splitLines(console)) {
    if (l.starts_with(" From ")) bands.push_back(l);
  }
  EXPECT_EQ(console.find(" No passivity violations detected.\n") < console.size(), bands.empty());
  return bands;
}

const FrequencyList& layGrid(const Options& O) {
  static FrequencyList grid;
  PASSGRID(O.PFLO, O.PFHI, O.NPFINC, O.PFDIST, grid);
  return grid;
}

// Adds the eigenvalues of the Hermitian part h, each twice: those of [Re -Im; Im Re].
void addSpectrum(std::vector<double>& all, const Dense& P) {
  const std::size_t n = P.size();
  const auto E = realEigenvalues(formed(2 * n, [&](std::size_t i, std::size_t j) {
    const Wide h = (P[i % n][j % n] + std::conj(P[j % n][i % n])) / 2.0L;
    return i / n == j / n ? h.real() : (i < n ? -h.imag() : h.imag());
  }));
  all.insert(all.end(), E.begin(), E.end());
}

struct Worst {
  double all = 1, seen = 1; // smallest eigenvalue: of all, of the half of smallest magnitude, S
};

// Eigenvalues for ends driven in phase and in opposition, together those of both ends.
Worst scan(const ModelFile& file, double low, double high, int n) {
  const auto smaller = [](double a, double b) { return std::fabs(a) < std::fabs(b); };
  Worst worst;
  for (int i = 0; i < n; ++i) {
    const double f = low * std::pow(high / low, i / (n - 1.0));
    const Complex s(0, TWOPI * f);
    const Dense H = denseOf(file.H.at(s)), Yc = denseOf(file.Yc.at(s)), I = identity(H.size());
    const Dense ratio = product(inverse(sum(I, H)), sum(I, H, -1));
    std::vector<double> w;
    addSpectrum(w, product(ratio, Yc));
    addSpectrum(w, product(inverse(ratio), Yc));
    std::sort(w.begin(), w.end(), smaller);
    worst.all = std::min(worst.all, *std::min_element(w.begin(), w.end()));
    worst.seen =
        std::min(worst.seen,
                 *std::min_element(w.begin(), w.begin() + 2 * static_cast<std::ptrdiff_t>(file.n)));
  }
  return worst;
}

// Model section of a fit with that error limit, in percent.
std::string fitOf(double error, const std::string& more = "") {
  return phaseModel(EVENWEIGHTS + more +
                    fmt::format("Maximum Fitting Error (%) for Attenuation Constant: {}\n", error));
}

// ... and of its enforcement over 300 points.
std::string mendedFit(double error, double low = 0.5, double high = 1e6, int iterations = 8,
                      double most = 5, double tolerance = 1e-9) {
  return fitOf(error, fmt::format("Lower frequency for passivity check: {}\n"
                                  "Upper frequency for passivity check: {}\n"
                                  "Maximum iterations for passivity: {}\n"
                                  "Maximum relative error for passivity: {}\n"
                                  "Eigenvalue tolerence: {}\n"
                                  "Frequency increments for passivity check: 300\n",
                                  low, high, iterations, most, tolerance));
}

ProgramRun runSingle(const std::string& model) {
  return runLine(singleCircuit(model, "ShuntConductance: 1e-11\n"), "1e5");
}

// The crossbonded cables of the example.
ProgramRun runCables(const std::string& model) {
  const Scratch scratch;
  const std::string text = contentOf(std::filesystem::path(CORVO_EXAMPLES) / "singlecore.cbi");
  scratch.file("a.cbi", text.substr(0, text.find("Frequency Dep. (Phase)")) + model +
                            "END-OF-CORVO-INPUT-DATA\n");
  return runProgram({"/file", "a.cbi", "/length", "1.5e4"}, scratch.path());
}

bool tells(const ProgramRun& run, const char* words) {
  return run.console.find(words) != std::string::npos;
}

} // namespace

TEST(PassivityGrid, Distributions) {
  const std::pair<Options, std::vector<double>> cases[] = {
      {{0.1, true, 1000, 5, 1}, {0.1, 1, 10, 100, 1000}},
      {{-5, true, 10, 4, 2}, {-5, 0, 5, 10}},
      {{1, true, 10, 5, 3}, {1, 2.8, 4.6, 6.4, 8.2}}, // a decade
      {{1, true, 100, 4, 3}, {1, 5.5, 10, 55}},
      {{1, true, 40, 6, 3}, {1, 4, 7, 10}},        // the last part is too short for a point
      {{1, true, 70, 6, 3}, {1, 4, 7, 10, 40}},    // ... holds two
      {{1, true, 2000, 2, 3}, {1, 10, 100, 1000}}, // less than one point per decade
      {{1, true, 100, 5, 0}, {}},
      {{-1, true, -5, -5, 4}, {}},
      // descending; and counts below 1
      {{1000, true, 0.1, 5, 1}, {1000, 100, 10, 1, 0.1}},
      {{10, true, -5, 4, 2}, {10, 5, 0, -5}},
      {{7, true, 7, 3, 2}, {7, 7, 7}},
      {{1000, true, 10, 80, 3}, {1000, 752.5, 505, 257.5}}, // floor(-990 / 9000 * -40) points
      {{1000, true, 10, 2, 3}, {1000}}, // floor(-990 / 9000 * -1) = 0 become one
      {{1000, true, 10, -80, 3}, {}},
      {{1000, true, 10, -1, 3}, {1000}}, // floor(-1 / -2) = 0
      {{10, true, 1000, -5, 3}, {}},
      {{10, true, 1000, 0, 3}, {10, 100}},
      {{0, true, 0, 0, 1}, {}},
      {{0, true, 0, -7, 2}, {}},
  };
  for (const auto& [options, grid] : cases) {
    const FrequencyList& GRID = layGrid(options);
    ASSERT_EQ(GRID.NGRID, static_cast<int>(grid.size())) << options.NPFINC;
    for (int i = 1; i <= GRID.NGRID; ++i)
      EXPECT_NEAR(GRID.f[i], grid[static_cast<std::size_t>(i - 1)], 1e-10) << options.NPFINC;
  }
  EXPECT_EQ(layGrid({1, true, 10, 5020, 1}).NGRID, 5020); // full
  EXPECT_EQ(layGrid({1, true, 1e9, 5021, 3}).NGRID, 9 * 557);
}

TEST(PassivityCheck, BandsOfAClosedForm) {
  // Yc = 1 mS, H = 5 / (4 + j f): the smallest eigenvalue is (f^2 - 9) / (f^2 + 1) mS below 3 Hz.
  setGroups(1, {{0.0, {-8 * std::acos(-1.0)}}});
  FITMODEL.HRES[1](1, 1)[1] = 10 * std::acos(-1.0);
  FITMODEL.NPY = 0;
  FITMODEL.YD(1, 1) = 1e-3;
  const std::pair<Options, Bands> cases[] = {
      {{0.5, true, 4.5, 5, 2}, {band(0.5, 3.5, -7e-3)}},
      {{2, true, 3.5, 2, 2}, {band(2, 3.5, -1e-3)}}, // a single point
      {{-4, true, 2, 4, 2}, {band(-2, 2, -9e-3)}},   // open at the end, the worst inside
      {{1, true, 2, 50, 5}, {}},
  };
  for (const auto& [options, bands] : cases) {
    RUNDATA.passivity = options;
    EXPECT_EQ(bandsIn(consoleOf(PASSCHK)), bands);
  }
  setGroups(2, {}); // no H; an eigenvalue so small that it is found a second time
  FITMODEL.YD(1, 1) = 1e-3;
  FITMODEL.YD(1, 2) = FITMODEL.YD(2, 1) = 0;
  FITMODEL.YD(2, 2) = -1.25e-12;
  RUNDATA.passivity = cases[0].first;
  EXPECT_EQ(bandsIn(consoleOf(PASSCHK)), Bands{band(0.5, 4.5, -1.25e-12)});
  FITMODEL.YD(1, 1) = std::nan("");
  RUNDATA.passivity = cases[0].first;
  EXPECT_EQ(runChild(PASSCHK).status, 1);
}

TEST(EnforcedLines, CurvesShowTheFitBeforeIt) {
  const std::string detail = "Write Detailed Output Files: 1\n";
  std::string model = mendedFit(0.2);
  model.insert(model.find("Maximum iterations"), detail);
  const ProgramRun fit = runSingle(fitOf(0.2, detail)), mended = runSingle(model);
  ASSERT_TRUE(tells(mended, "Passivity is sucessfully enforced")) << mended.console;
  EXPECT_NE(fit.files.at("a.cvo"), mended.files.at("a.cvo"));
  for (const char* file : {"_hmp.out", "_hpp.out", "_ycmp.out"})
    EXPECT_EQ(fit.files.at(file), mended.files.at(file)) << file;
}

TEST(EnforcedLines, CurvesOfTheImprovedMethodShowTheMendedModel) {
  const std::string detail = "Write Detailed Output Files: 1\n";
  std::string model = mendedFit(0.2) + "Numerical Options\n{\nImproved Passivity : 1\n}\n";
  model.insert(model.find("Maximum iterations"), detail);
  EXPECT_NE(runSingle(fitOf(0.2, detail)).files.at("_hmp.out"),
            runSingle(model).files.at("_hmp.out"));
}

TEST(EnforcedLines, ArePassiveBetweenThePointsOfTheGrid) {
  const struct {
    ProgramRun run;
    double left; // largest violation between the points, S
  } cases[] = {{runSingle(mendedFit(0.2)), 0},
               {runSingle(mendedFit(5)), 1e-7}, // four poles
               {runLine(doubleCircuit(mendedFit(2)), "1e4"), 0},
               {runCables(mendedFit(0.2)), 5e-8}};
  for (const auto& [run, left] : cases) {
    EXPECT_TRUE(tells(run, "Passivity is sucessfully enforced")) << run.console;
    const bool cable = run.files.contains("a.cbo");
    const ModelFile file = readModel(run.files.at(cable ? "a.cbo" : "a.cvo"));
    EXPECT_GE(scan(file, 0.5, 1e6, 3000).all, -left) << run.console;
  }
}

TEST(EnforcedLines, KeepTheFitWhenItIsNotImproved) {
  const std::string fitted = runSingle(fitOf(5)).files.at("a.cvo");
  const std::string notMended[] = {
      mendedFit(5, 0.5, 1e6, 8, 0.01),     // the necessary change is larger
      mendedFit(5, 0.5, 1e6, 0),           // no iteration
      mendedFit(5, 0.5, 1e6, 8, 5, -1e-9), // raises them to less than the scan requires
      mendedFit(5, 1e4, 1e6),              // no violation is found ...
      mendedFit(5, 760, 900),              // ... or seen
  };
  for (const std::string& model : notMended) {
    const auto i = &model - notMended;
    const ProgramRun run = runSingle(model);
    EXPECT_TRUE(run.files.at("a.cvo") == fitted) << i;
    EXPECT_FALSE(tells(run, "Checking for Passivity"));
    EXPECT_EQ(tells(run, "There are no passivity violations  \n"), i >= 3);
  }
  // There the half of the eigenvalues that the enforcement considers is positive, and the largest
  // of the other half is not.
  const Worst worst = scan(readModel(fitted), 760, 900, 50);
  EXPECT_GT(worst.seen, 1e-6);
  EXPECT_NEAR(worst.all, -1.31e-4, 1e-6);
}

// The grid of the options misses negative eigenvalues; the scan covers all frequencies.
TEST(EnforcedLines, ImprovedPassivityMendsAllFrequencies) {
  const std::string improved = "Numerical Options\n{\nImproved Passivity: 1\n}\n";
  const std::pair<double, std::string> cases[] = {{5, ""}, {0.5, "DC Correction Type: 1\n"}};
  for (const auto& [error, dc] : cases) {
    std::string model = mendedFit(error, 760, 900);
    model.insert(model.find("Lower"), dc);
    const ModelFile fitted = readModel(runSingle(fitOf(error, dc)).files.at("a.cvo"));
    const ProgramRun run = runSingle(model + improved);
    EXPECT_TRUE(tells(run, "Passivity is sucessfully enforced")) << run.console;
    EXPECT_EQ(run.status, 0);
    const ModelFile file = readModel(run.files.at("a.cvo")); // residues in conjugate pairs
    EXPECT_GE(scan(file, 1e-3, 1e8, 800).all, 0) << run.console;
    EXPECT_LT(scan(fitted, 1e-3, 1e8, 800).all, -1e-8);
    const auto now = file.H.at(0), before = fitted.H.at(0);
    for (std::size_t i = 0; i < now.elements.size() && !dc.empty(); ++i)
      EXPECT_LT(std::abs(now.elements[i] - before.elements[i]), 1e-12);
  }
  const ProgramRun refused = runSingle(mendedFit(5, 760, 900, 8, 0.01) + improved);
  EXPECT_TRUE(tells(refused, "The model stays as it was fitted.")) << refused.console;
  EXPECT_EQ(refused.status, 2);
}
