#include "cable/cable_zy.h"

#include "base/constants.h"
#include "input/cable_data.h"
#include "support/cable_systems.h"
#include "support/child.h"

#include <cmath>
#include <functional>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

std::size_t at(int i) { return static_cast<std::size_t>(i); }

Cable& cable(int c) { return RUNDATA.cable.CB[c]; }

// Smallest eigenvalue sign by Gaussian pivots of the real part, each against its diagonal element.
bool positiveDefinite(Dense A) {
  const std::size_t n = A.size();
  for (std::size_t k = 0; k < n; ++k) {
    if (!(A[k][k].real() > 0)) return false;
    for (std::size_t i = k + 1; i < n; ++i) {
      const long double t = A[i][k].real() / A[k][k].real();
      for (std::size_t j = k; j < n; ++j) A[i][j] -= t * A[k][j].real();
    }
  }
  return true;
}

// Positive diagonal, nothing positive beside it, no row that sums below 0.
void expectMaxwell(const Dense& capacitance, std::uint64_t seed) {
  for (std::size_t i = 0; i < capacitance.size(); ++i) {
    long double sum = 0;
    for (std::size_t j = 0; j < capacitance.size(); ++j) {
      const long double c = capacitance[i][j].real();
      EXPECT_TRUE(i == j ? c > 0 : c <= 1e-12L * capacitance[i][i].real()) << seed;
      sum += c;
    }
    EXPECT_GE(sum, -1e-12L * capacitance[i][i].real()) << seed;
  }
}

Dense impedanceOf(const Dense& Z, const std::vector<std::size_t>& rows) {
  Dense Y = inverse(Z);
  Dense kept;
  for (const std::size_t i : rows) {
    kept.emplace_back();
    for (const std::size_t j : rows) kept.back().push_back(Y[i][j]);
  }
  return inverse(kept);
}

// A system of n single-core cables with their sheaths, conductors 1 to 2 n.
void layCables(int n) {
  RUNDATA = {};
  RUNDATA.run.ISCABLE = CABLESYSTEM;
  RUNDATA.cable.NCABLE = n;
  for (int c = 1; c <= n; ++c) setSingleCore(c, 0.3 * c, 1.0);
}

constexpr double FAR = 1e6; // m

// An insulated pipe of its own, far away.
void addPipe() {
  PipeRecord& P = RUNDATA.cable.pipe;
  RUNDATA.cable.NPIPE = 1;
  P.PIPEX = 2 * FAR;
  P.PIPEY = 1.5;
  P.PIPEOUTL = 1;
  P.PIPERI = 0.2;
  P.PIPERC = 0.21;
  P.PIPERO = 0.22;
  P.PIPERHO = 2e-7;
  P.PIPEMU = P.PIPEMUO = 1;
  P.PIPEEPSO = 2.5;
}

// Overhead conductors whose shapes the conversion to cables keeps apart by the wall alone.
void makeConvertibleLine(std::uint64_t seed) {
  makeLine(seed, {.mostKept = 8, .mostBundle = 3, .mostEliminated = 2, .transposition = true});
  ConductorTable& C = RUNDATA.cond;
  for (int i = 1; i <= C.NCOND; ++i) {
    if (!C.CTUBE[i]) C.CTHICK[i] = 0;
  }
}

// The same line as the aerial cables of a system with n single-core cables far away from it, and
// with a pipe when asked for; their sheaths are grounded.
void convertLine(int n, bool pipe) {
  RUNDATA.run.ISCABLE = CABLESYSTEM;
  CableTable& T = RUNDATA.cable;
  T.MIXEDOH = true;
  T.NCABLE = n;
  for (int c = 1; c <= n; ++c) {
    setSingleCore(c, FAR + c, 1.0);
    cable(c).CBGLAST = 1;
  }
  if (pipe) addPipe();
  convertOverheadConductors();
}

// The chain core, insulator, sheath, ... of an aerial cable, the air last, solved by elimination of
// the surface of its outermost insulator.
Dense chain(int layers, double g, double air) {
  const bool bare = layers % 2 == 1;
  const std::size_t conductors = at((layers + 1) / 2);
  const std::size_t nodes = conductors + (bare ? 0 : 1);
  Dense Y(nodes, std::vector<Wide>(nodes));
  for (std::size_t k = 0; k + 1 < nodes; ++k) {
    Y[k][k] += g;
    Y[k + 1][k + 1] += g;
    Y[k][k + 1] = Y[k + 1][k] = -g;
  }
  Y[nodes - 1][nodes - 1] += air;
  if (bare) return Y;
  const Wide v = Y[nodes - 1][nodes - 2];
  Y[nodes - 2][nodes - 2] -= v * v / Y[nodes - 1][nodes - 1];
  return block(Y, 0, 0, conductors);
}

} // namespace

TEST(CableZY, PropertiesOfGeneratedSystems) {
  for (std::uint64_t seed = 1; seed <= 200; ++seed) {
    makeCables(seed);
    const double f = std::pow(10.0, static_cast<double>(seed % 7) - 1);
    // From 10 kHz on the closed form between buried cables is no more passive.
    if (f > 1e3) RUNDATA.ground.EARTHFU = EARTHINTEGRAL;
    const LineResult r = solveCables(f);
    EXPECT_EQ(r.length, RUNDATA.run.LINELEN);
    for (std::size_t i = 0; i < r.Z.size(); ++i) {
      for (std::size_t j = 0; j < i; ++j) {
        ASSERT_LT(std::abs(r.Z[i][j] - r.Z[j][i]), 1e-12L * std::abs(r.Z[i][i])) << seed;
        ASSERT_LT(std::abs(r.Y[i][j] - r.Y[j][i]), 1e-12L * std::abs(r.Y[i][i])) << seed;
      }
    }
    EXPECT_TRUE(positiveDefinite(r.Z)) << seed << " at " << f;
    expectMaxwell(times(1.0L / Wide(0, TWOPI * f), r.Y), seed);
    const Dense P = times(1.0L / Wide(-std::pow(TWOPI * f, 2) * C0 * L0), product(r.Y, r.Z));
    EXPECT_LT(distance(r.P, P), 1e-13) << seed;
  }
}

// Grounded conductors have the voltage 0 and carry the current that keeps it there.
TEST(CableZY, GroundingIsEliminationOfCurrents) {
  for (const int last : {1, 2, 3}) {
    layCables(3);
    RUNDATA.cable.CB[2].CBNLAY = 6;
    cable(2).CBRAD[5] = 0.042;
    cable(2).CBRAD[6] = 0.045;
    cable(2).CBRHO[2] = 1e-7;
    cable(2).CBEPS[2] = 3;
    const LineResult whole = solveCables(50.0); // rows: 1 2 | 3 4 5 | 6 7
    for (int c = 1; c <= 3; ++c) cable(c).CBGLAST = last;
    cable(2).CBELIM2 = true; // the armour, where the flags count
    cable(3).CBBARE = true;  // the core of cable 3
    const LineResult r = solveCables(50.0);
    const std::vector<std::size_t> kept = last == 1   ? std::vector<std::size_t>{0, 2, 3, 5}
                                          : last == 2 ? std::vector<std::size_t>{0, 2, 5}
                                                      : std::vector<std::size_t>{0, 1, 2, 3, 6};
    ASSERT_EQ(r.Z.size(), kept.size()) << last;
    EXPECT_LT(distance(r.Z, impedanceOf(whole.Z, kept)), 1e-12) << last;
    for (std::size_t i = 0; i < kept.size(); ++i) {
      EXPECT_EQ(r.Y[i][i], whole.Y[kept[i]][kept[i]]) << last;
    }
  }
}

TEST(CableZY, BareConductors) {
  layCables(2);
  cable(1).CBNLAY = 3; // a sheath in the ground
  const LineResult r = solveCables(50.0);
  const Wide normalised = r.Y[1][1] / Wide(0, TWOPI * 50 * C0);
  EXPECT_LT(std::abs(normalised - Wide(1)), 1e-15L);
  EXPECT_EQ(r.Y[0][1], Wide(0));
  EXPECT_GT(std::abs(r.Y[2][3]), 0);
  for (int c = 1; c <= 2; ++c) {
    cable(c).CBGLAST = 3;
    cable(c).CBBARE = cable(c).CBELIM1 = true;
  }
  EXPECT_EQ(solveCables(50.0).n, 1); // the first conductor always stays
}

// Towers alone in a cable file: bundles, ground wires and transposition as on an overhead line.
TEST(CableZY, OverheadConductorsAsCablesAreTheOverheadLine) {
  for (std::uint64_t seed = 1; seed <= 60; ++seed) {
    makeConvertibleLine(seed);
    const double f = std::pow(10.0, static_cast<double>(seed % 6));
    const LineResult overhead = solveLine(f);
    convertLine(0, false);
    const LineResult r = solveCables(f);
    ASSERT_EQ(r.n, overhead.n) << seed;
    EXPECT_LT(distance(r.Z, overhead.Z), 1e-11) << seed;
    EXPECT_LT(distance(r.Y, overhead.Y), 1e-11) << seed;
  }
}

// Sheaths and a pipe that leave or stay in front of them do not move the overhead conductors.
TEST(CableZY, OverheadConductorsKeepTheirRowsBesideCables) {
  constexpr double f = 1e6; // shallow earth currents, so that far cables do not matter
  for (const bool pipe : {false, true}) {
    for (std::uint64_t seed = 1; seed <= 20; ++seed) {
      makeConvertibleLine(seed);
      RUNDATA.ground.GRTYPE = false;
      RUNDATA.ground.GRHO = 10;
      const LineResult overhead = solveLine(f);
      convertLine(3, pipe);
      const LineResult r = solveCables(f);
      ASSERT_EQ(r.n, overhead.n + 3 + (pipe ? 1 : 0)) << seed;
      EXPECT_LT(distance(block(r.Z, 3, 3, overhead.Z.size()), overhead.Z), 1e-6) << seed;
      EXPECT_LT(distance(block(r.Y, 3, 3, overhead.Z.size()), overhead.Y), 1e-6) << seed;
      EXPECT_LT(distance(solveCables(f).Z, r.Z), 1e-15) << seed; // the next length step
    }
  }
}

TEST(CableZY, ConductanceOfAerialCables) {
  constexpr double g = 3e-10;
  for (const double air : {5e-11, 0.0}) {
    for (int layers = 1; layers <= 8; ++layers) {
      layCables(1);
      Cable& C = cable(1);
      C.CBNLAY = layers;
      for (std::size_t k = 5; k < 9; ++k) C.CBRAD[k] = C.CBRAD[k - 1] + 0.002;
      C.CBRHO.fill(2e-8);
      C.CBEPS.fill(2.5);
      C.CBOVHD = RUNDATA.cable.ANYOVHD = true;
      C.CBY = 10;
      C.CBGAER = air;
      RUNDATA.fit.DIELM = 0;
      RUNDATA.fit.CSHUNTG = g;
      RUNDATA.fit.DCCORRF = true;
      const LineResult insulators = solveCables(50.0);
      const Dense expected = chain(layers, g, air);
      for (std::size_t i = 0; i < expected.size(); ++i) {
        for (std::size_t j = 0; j < expected.size(); ++j) {
          EXPECT_NEAR(static_cast<double>(insulators.Y[i][j].real()),
                      static_cast<double>(expected[i][j].real()), 1e-20)
              << layers;
        }
      }
      RUNDATA.fit.DCCORRF = false;
      const LineResult airAlone = solveCables(50.0);
      for (std::size_t i = 0; i < expected.size(); ++i) {
        const bool outermost = i + 1 == expected.size();
        EXPECT_NEAR(static_cast<double>(airAlone.Y[i][i].real()), outermost ? air : 0, 1e-20);
      }
    }
  }
}

TEST(CableZY, FortyNineConductorsAreTheMost) {
  layCables(24);
  setSingleCore(25, 20.0, 1.0);
  cable(25).CBNLAY = 2;
  RUNDATA.cable.NCABLE = 25;
  EXPECT_EQ(solveCables(50.0).n, 49);
  cable(25).CBNLAY = 4;
  const ChildResult r = runChild([] { solveCables(50.0); });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.console, "***** CORVO.EXE - ERROR *****\n"
                       "Total number of conductors (including conductive \n"
                       "layers such as sheaths, armours) in the cable \n"
                       "system is 50.Total number of conductors\n"
                       "can not be greater than the maximum allowed 49\n");
}

TEST(CableZY, MaterialsThatTheFormulasNeed) {
  const std::string cable1 = "Cable 1: Resistivities, Relative Permeabilities and\n";
  const std::string pipe1 = "Pipe 1: Radii Must Grow Outwards, and the Resistivity,\n";
  PipeRecord& P = RUNDATA.cable.pipe;
  const struct {
    const std::string& message;
    std::function<void()> change;
  } cases[] = {
      {cable1, [] { cable(1).CBRHO[1] = 0; }},   {cable1, [] { cable(1).CBEPS[0] = -2; }},
      {cable1, [] { cable(1).CBMU[3] = 0; }},    {pipe1, [&] { P.PIPERC = P.PIPERI; }},
      {pipe1, [&] { P.PIPEMU = std::nan(""); }}, {pipe1, [&] { P.PIPEEPSO = 0; }},
  };
  for (const auto& c : cases) {
    layCables(1);
    addPipe();
    EXPECT_EQ(solveCables(50.0).n, 3);
    c.change();
    const ChildResult r = runChild([] { solveCables(50.0); });
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.console.find(c.message), std::string::npos) << r.console;
  }
}
