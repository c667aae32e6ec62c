// The passivity check against a closed form and, for lines from end to end, against the eigenvalues
// of the nodal admittance of the model file.
#include "passivity/passivity_check.h"

#include "base/constants.h"
#include "base/number_forms.h"
#include "kernels/lapack.h"
#include "passivity/passivity_grid.h"
#include "support/console_capture.h"
#include "support/description.h"
#include "support/propagation_case.h"
#include "support/scratch.h"
#include "support/solve.h"
#include "support/whole_run.h"
#include "support/written_model.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

using Options = PassivityOptions; // lowest frequency, asked for, highest, count, distribution
using Bands = std::vector<std::string>;

std::string three(double v) { return scientificField(v, 10, 3); }

std::string band(double from, double to, double worst) {
  return " From " + three(from) + " Hz to " + three(to) + " Hz         " + three(worst);
}

// The bands in what the check prints; the table around them is held by whole runs.
Bands bandsIn(const std::string& console) {
  Bands bands;
  for (const std::string& l : splitLines(console)) {
    if (l.starts_with(" From ")) bands.push_back(l);
  }
  EXPECT_EQ(console.find(" No passivity violations detected.\n") < console.size(), bands.empty());
  return bands;
}

// The smallest eigenvalue of the real part of the nodal admittance, of order 2 n.
double smallest(const ModelFile& file, double f) {
  const Complex s(0, TWOPI * f);
  const Dense H = denseOf(file.H.at(s)), H2 = product(H, H), unit = identity(H.size());
  const Dense P = inverse(sum(unit, H2, -1));
  const Dense own = product(P, product(sum(unit, H2), denseOf(file.Yc.at(s))));
  const Dense mutual = product(P, product(times(-2, H), denseOf(file.Yc.at(s))));
  const std::size_t n = H.size();
  const auto E = realEigenvalues(formed(2 * n, [&](std::size_t i, std::size_t j) {
    return ((i < n) == (j < n) ? own : mutual)[i % n][j % n];
  }));
  return *std::min_element(E.begin(), E.end());
}

Bands bandsOf(const ModelFile& file, const FrequencyList& grid) {
  Bands bands;
  for (int i = 1; i <= grid.NGRID; ++i) {
    const int first = i;
    double worst = 0, e = -1;
    for (; i <= grid.NGRID && (e = smallest(file, grid.f[i])) < 0; ++i) worst = std::min(worst, e);
    if (worst < 0) bands.push_back(band(grid.f[first], grid.f[std::min(i, grid.NGRID)], worst));
  }
  return bands;
}

const FrequencyList& layGrid(const Options& O) {
  static FrequencyList grid;
  PASSGRID(O.PFLO, O.PFHI, O.NPFINC, O.PFDIST, grid);
  return grid;
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
      {{1, true, 2000, 2, 3}, {1, 10, 100, 1000}}, // less than a point a decade
      {{1, true, 100, 5, 0}, {}},
      {{-1, true, -5, -5, 4}, {}},
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

TEST(PassivityCheck, ALineFromEndToEnd) {
  const ProgramRun run =
      runLine(doubleCircuit(phaseModel(EVENWEIGHTS + "Lower frequency for passivity check: 1\n"
                                                     "Upper frequency for passivity check: 2e4\n"
                                                     "Frequency increments for passivity check: "
                                                     "300\n"
                                                     "Frequency distribution for passivity check: "
                                                     "3\n")),
              "1e5");
  const Bands expected = bandsOf(readModel(run.files.at("a.cvo")), layGrid({1, true, 2e4, 300, 3}));
  EXPECT_EQ(expected.size(), 2);
  EXPECT_EQ(bandsIn(run.console), expected);
}
