#include "cable/cable_zy.h"

#include "base/constants.h"
#include "input/cable_data.h"
#include "support/cable_systems.h"
#include "support/child.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

Cable& cable(int c) { return RUNDATA.cable.CB[c]; }

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
  RUNDATA.cable.NPIPE = 1;
  RUNDATA.cable.pipe = {0, 2 * FAR, 1.5, 0, 1, 0, 0.2, 0.21, 0.22, 2e-7, 1, 0, 0, 0, 2.5, 1};
}

// Overhead conductors whose shapes the conversion to cables keeps apart by the wall alone.
void makeConvertibleLine(std::uint64_t seed) {
  makeLine(seed, {.mostKept = 8, .mostBundle = 3, .mostEliminated = 2});
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
  const auto conductors = static_cast<std::size_t>((layers + 1) / 2);
  const std::size_t nodes = conductors + (layers % 2 == 1 ? 0 : 1);
  Dense Y(nodes, std::vector<Wide>(nodes));
  for (std::size_t k = 1; k < nodes; ++k) join(Y, k, k + 1, g);
  join(Y, nodes, 0, air);
  if (nodes == conductors) return Y;
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
    for (std::size_t i = 0; i < r.Z.size(); ++i) {
      for (std::size_t j = 0; j < i; ++j) {
        ASSERT_LT(std::abs(r.Z[i][j] - r.Z[j][i]), 1e-12L * std::abs(r.Z[i][i])) << seed;
        ASSERT_LT(std::abs(r.Y[i][j] - r.Y[j][i]), 1e-12L * std::abs(r.Y[i][i])) << seed;
      }
    }
    EXPECT_TRUE(hasPositiveRealPart(r.Z)) << seed << " at " << f;
    EXPECT_TRUE(isOfCapacitances(times(1.0L / Wide(0, TWOPI * f), r.Y))) << seed;
    const Dense P = times(1.0L / Wide(-std::pow(TWOPI * f, 2) * C0 * L0), product(r.Y, r.Z));
    EXPECT_LT(distance(r.P, P), 1e-13) << seed;
  }
}

// Grounded conductors have the voltage 0 and carry the current that keeps it there.
TEST(CableZY, GroundingIsEliminationOfCurrents) {
  layCables(3);
  cable(2).CBNLAY = 6;
  cable(2).CBRAD[5] = 0.042;
  cable(2).CBRAD[6] = 0.045;
  cable(2).CBRHO[2] = 1e-7;
  cable(2).CBEPS[2] = 3;
  const LineResult whole = solveCables(50.0); // rows: 1 2 | 3 4 5 | 6 7
  cable(2).CBELIM2 = true;                    // the armour, where the flags count
  cable(3).CBBARE = true;                     // the core of cable 3
  const std::vector<std::size_t> left[] = {{0, 2, 3, 5}, {0, 2, 5}, {0, 1, 2, 3, 6}};
  for (const int last : {1, 2, 3}) {
    for (int c = 1; c <= 3; ++c) cable(c).CBGLAST = last;
    const LineResult r = solveCables(50.0);
    const std::vector<std::size_t>& kept = left[last - 1];
    ASSERT_EQ(r.Z.size(), kept.size()) << last;
    const Dense admittance = inverse(whole.Z);
    const Dense Z = inverse(formed(
        kept.size(), [&](std::size_t i, std::size_t j) { return admittance[kept[i]][kept[j]]; }));
    EXPECT_LT(distance(r.Z, Z), 1e-12) << last;
    for (std::size_t i = 0; i < kept.size(); ++i)
      EXPECT_EQ(r.Y[i][i], whole.Y[kept[i]][kept[i]]) << last;
  }
}

TEST(CableZY, BareConductors) {
  layCables(2);
  cable(1).CBNLAY = 3; // a sheath in the ground
  const LineResult r = solveCables(50.0);
  EXPECT_LT(std::abs(r.Y[1][1] / Wide(0, TWOPI * 50 * C0) - Wide(1)), 1e-15L);
  EXPECT_EQ(r.Y[0][1], Wide(0));
  EXPECT_GT(std::abs(r.Y[2][3]), 0);
  for (int c = 1; c <= 2; ++c) {
    cable(c).CBGLAST = 3;
    cable(c).CBBARE = cable(c).CBELIM1 = true;
  }
  EXPECT_EQ(solveCables(50.0).n, 1); // the first conductor always stays
}

// Towers in a cable file: bundles, ground wires and transposition as on an overhead line. Sheaths
// and a pipe that leave or stay in front of them do not move the overhead conductors; high
// frequency and low resistivity keep far cables from mattering.
TEST(CableZY, OverheadConductorsAsCablesAreTheOverheadLine) {
  const struct {
    int cables;
    bool pipe;
    std::uint64_t seeds;
    double limit;
  } cases[] = {{0, false, 60, 1e-11}, {3, false, 20, 1e-6}, {3, true, 20, 1e-6}};
  for (const auto& c : cases) {
    for (std::uint64_t seed = 1; seed <= c.seeds; ++seed) {
      makeConvertibleLine(seed);
      const double f = c.cables > 0 ? 1e6 : std::pow(10.0, static_cast<double>(seed % 6));
      if (c.cables > 0) RUNDATA.ground.GRTYPE = false;
      if (c.cables > 0) RUNDATA.ground.GRHO = 10;
      const LineResult overhead = solveLine(f);
      convertLine(c.cables, c.pipe);
      const LineResult r = solveCables(f);
      ASSERT_EQ(r.n, overhead.n + c.cables + (c.pipe ? 1 : 0)) << seed;
      const std::size_t n = overhead.Z.size(), at = c.cables > 0 ? 3 : 0;
      EXPECT_LT(distance(block(r.Z, at, at, n), overhead.Z), c.limit) << seed;
      EXPECT_LT(distance(block(r.Y, at, at, n), overhead.Y), c.limit) << seed;
      EXPECT_LT(distance(solveCables(f).Z, r.Z), 1e-15) << seed; // the next length step
    }
  }
}

// Inverse of the capacitances: a pipe in the air is a wire of its radius, the cable in it shares
// its potential, and what it holds is screened from a wire outside.
TEST(CableZY, PipeInTheAir) {
  const struct {
    int inside;    // cables in the pipe
    bool marked;   // ... as aerial
    double mutual; // potential coefficient of pipe and wire
  } cases[] = {{0, false, 1}, {1, true, 1}, {1, false, 0}};
  for (const auto& c : cases) {
    layCables(1 + c.inside);
    Cable &wire = cable(1), &inner = cable(2);
    RUNDATA.cable.NPIPE = 1;
    RUNDATA.cable.ANYOVHD = wire.CBOVHD = true;
    RUNDATA.cable.pipe = {1, 4, 7, c.inside, 0, 0, 0.2, 0.21, 0, 2e-7, 1, 2.5, 1};
    RUNDATA.cable.pipe.PIPEOVHD = true;
    wire.CBNLAY = 1;
    wire.CBY = 10;
    wire.CBGAER = inner.CBGAER = 0;
    if (c.inside > 0) {
      inner.CBPIPE = 1;
      inner.CBOVHD = c.marked;
    }
    const LineResult r = solveCables(50.0);
    const std::size_t pipe = r.Y.size() - 1;
    const Dense P = inverse(times(1.0L / Wide(0, TWOPI * 50 * C0), r.Y));
    const double D2 = std::pow(wire.CBX - 4, 2) + 17.0 * 17, d2 = D2 - 4.0 * 10 * 7;
    const double mutual = c.mutual * 0.5 * std::log(D2 / d2);
    for (std::size_t i = 1; i <= pipe; ++i) EXPECT_LT(std::abs(P[0][i] - Wide(mutual)), 1e-9L) << i;
    EXPECT_LT(std::abs(P[pipe][pipe] - Wide(std::log(14 / 0.21))), 1e-9L);
    EXPECT_TRUE(c.inside == 0 || std::abs(r.Y[0][1]) < 1e-12L * std::abs(r.Y[0][0]));
    EXPECT_TRUE(isOfCapacitances(times(1.0L / Wide(0, TWOPI * 50), r.Y)));
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
      const Dense insulators = chain(layers, g, air);
      for (const bool corrected : {true, false}) {
        RUNDATA.fit.DCCORRF = corrected;
        const LineResult r = solveCables(50.0);
        const std::size_t n = insulators.size();
        for (std::size_t e = 0; e < n * n; ++e) { // without insulators the air is what is left
          const long double told = r.Y[e / n][e % n].real();
          const double alone = e == n * n - 1 ? air : 0;
          const auto value =
              corrected ? static_cast<double>(insulators[e / n][e % n].real()) : alone;
          EXPECT_NEAR(static_cast<double>(told), value, 1e-20) << layers;
        }
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
  EXPECT_EQ(r.console, lines({"***** CORVO.EXE - ERROR *****",
                              "Total number of conductors (including conductive ",
                              "layers such as sheaths, armours) in the cable ",
                              "system is 50.Total number of conductors",
                              "can not be greater than the maximum allowed 49"}));
}

TEST(CableZY, MaterialsThatTheFormulasNeed) {
  PipeRecord& P = RUNDATA.cable.pipe;
  const struct {
    const char* message;
    double& value;
    double bad;
  } cases[] = {
      {"\nCable 1:\nSheath Resistivity Must be > 0, not 0!\n", cable(1).CBRHO[1], 0},
      {"Insulator 1 Relative Permittivity Must be > 0, not -2.333!", cable(1).CBEPS[0], -7.0 / 3},
      {"Insulator 2 Relative Permeability Must be", cable(1).CBMU[3], 0},
      {"\nPipe 1: the Outer Radii of Inner Insulator, Conductor and\n", P.PIPERC, 0.2},
      {"\nPipe 1:\nConductor Permeability Must be > 0, not nan!\n", P.PIPEMU, std::nan("")},
      {"Outer Ins. Relative Permittivity Must be > 0", P.PIPEEPSO, 0},
      {"\nConductor at X = -3 m, Y = 12 m:\nDCResistance Must be > 0, not 0!\n",
       RUNDATA.cond.CRDC[1], 0},
      {"Y = 12 m:\nRelative Permeability Must be", RUNDATA.cond.CMUR[1], 0},
      {"Y = 12 m:\nCross-Section of the Metal Must be", RUNDATA.cond.CTHICK[1], 0.03},
  };
  for (const auto& c : cases) {
    const auto solve = [] {
      convertOverheadConductors();
      return solveCables(50.0).n;
    };
    layCables(1);
    addPipe();
    setConductor(1, -3, 12, 0.01, 1e-4);
    RUNDATA.cond.NCOND = 1;
    const RunData sound = RUNDATA;
    EXPECT_EQ(solve(), 4);
    RUNDATA = sound;
    c.value = c.bad;
    const ChildResult r = runChild(solve);
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.console.find(c.message), std::string::npos) << r.console;
  }
}

// Configuration 606 of the IEEE 13 node test feeder: 250 kcmil aluminium, 13 strands no. 14 copper
// as concentric neutral, 6 inches apart, 60 Hz, 100 ohm m, neutrals grounded. The core has the
// radius of its geometric mean radius of 0.0171 ft, the neutral is a thin tube at 0.0486 ft, that
// of its strands.
TEST(CableZY, PublishedConcentricNeutralCables) {
  constexpr double MILE = 1609.344, FOOT = 0.3048; // m
  constexpr double WALL = 2e-4;                    // m
  layCables(3);
  for (int c = 1; c <= 3; ++c) {
    Cable& C = cable(c);
    C.CBX = 0.5 * FOOT * c;
    const double r = 0.0171 * FOOT * std::exp(0.25);
    const double q = 0.0486 * FOOT - WALL / 2;
    C.CBRAD = {0, r, q, q + WALL, 1.29 / 24 * FOOT};
    C.CBRHO = {0.410 / MILE * PI * r * r, 14.87 / 13 / MILE * PI * WALL * (2 * q + WALL)};
    C.CBGLAST = 1;
  }
  const Wide published[3][3] = {{{0.7982, 0.4463}, {0.3192, 0.0328}, {0.2849, -0.0143}},
                                {{0.3192, 0.0328}, {0.7891, 0.4041}, {0.3192, 0.0328}},
                                {{0.2849, -0.0143}, {0.3192, 0.0328}, {0.7982, 0.4463}}};
  const LineResult r = solveCables(60.0);
  ASSERT_EQ(r.n, 3);
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      const Wide z = r.Z[i][j] * Wide(MILE); // ohm/mile
      EXPECT_LT(std::abs(z - published[i][j]), 0.008) << i << j << z;
    }
  }
}
