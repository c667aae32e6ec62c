#include "cable/cable_zy.h"

#include "base/constants.h"
#include "input/cable_data.h"
#include "support/cable_systems.h"

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

// Overhead conductors whose shapes remain distinct in the conversion to cables only by the wall.
void makeConvertibleLine(std::uint64_t seed) {
  makeLine(seed, {.mostKept = 8, .mostBundle = 3, .mostEliminated = 2});
  ConductorTable& C = RUNDATA.cond;
  for (int i = 1; i <= C.NCOND; ++i) {
    if (!C.CTUBE[i]) C.CTHICK[i] = 0;
  }
}

// The same line as aerial cables of a system with n single-core cables far away and, on request, an
// insulated pipe; their sheaths are grounded.
void convertLine(int n, bool pipe) {
  RUNDATA.run.ISCABLE = CABLESYSTEM;
  CableTable& T = RUNDATA.cable;
  T.MIXEDOH = true;
  T.NCABLE = n;
  for (int c = 1; c <= n; ++c) {
    setSingleCore(c, FAR + c, 1.0);
    cable(c).CBGLAST = 1;
  }
  T.NPIPE = pipe;
  T.pipe = {0, 2 * FAR, 1.5, 0, 1, 0, 0.2, 0.21, 0.22, 2e-7, 1, 0, 0, 0, 2.5, 1};
  convertOverheadConductors();
}

// The chain core, insulator, sheath, ... of an aerial cable with the air last, solved by
// eliminating the surface of its outermost insulator.
Dense chain(int layers, double g, double air) {
  const auto conductors = static_cast<std::size_t>((layers + 1) / 2);
  const std::size_t nodes = conductors + (layers % 2 == 1 ? 0 : 1);
  Dense Y(nodes, std::vector<Wide>(nodes));
  for (std::size_t k = 1; k < nodes; ++k) join(Y, k, k + 1, g);
  join(Y, nodes, 0, air);
  if (nodes > conductors) Y[nodes - 2][nodes - 2] -= Wide(g * g) / Y[nodes - 1][nodes - 1];
  return block(Y, 0, 0, conductors);
}

} // namespace

TEST(CableZY, PropertiesOfGeneratedSystems) {
  for (std::uint64_t seed = 1; seed <= 200; ++seed) {
    makeCables(seed);
    const double f = std::pow(10.0, static_cast<double>(seed % 7) - 1);
    // From 10 kHz the closed form between buried cables is not passive.
    if (f > 1e3) RUNDATA.ground.EARTHFU = EARTHINTEGRAL;
    const LineResult r = solveCables(f);
    EXPECT_EQ(unsound(r, f), "") << seed;
    EXPECT_TRUE(isOfCapacitances(times(1.0L / Wide(0, TWOPI * f), r.Y))) << seed;
  }
}

// Grounded conductors have zero voltage and carry the current that keeps it at zero.
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
  RUNDATA.cable.NPIPE = 1; // and a separate pipe that does not affect the others
  RUNDATA.cable.pipe = {1, 9, 1, 0, 0, 0, 0.2, 0.21, 0, 2e-7, 1};
  const Dense Y = solveCables(50.0).Y;
  EXPECT_EQ(block(Y, 0, 0, 4), r.Y);
  for (std::size_t i = 0; i < 5; ++i) EXPECT_EQ(Y[4][i], Wide(0));
  RUNDATA.cable.NPIPE = 0;
  for (int c = 1; c <= 2; ++c) {
    cable(c).CBGLAST = 3;
    cable(c).CBBARE = cable(c).CBELIM1 = true;
  }
  EXPECT_EQ(solveCables(50.0).n, 1); // the first conductor always stays
}

// Towers in a cable file: bundles, ground wires and transposition as on an overhead line. Sheaths
// and a pipe before them, grounded or not, do not shift the overhead conductors; high frequency and
// low resistivity make distant cables negligible.
TEST(CableZY, OverheadConductorsAsCablesAreTheOverheadLine) {
  for (std::uint64_t seed = 1; seed <= 100; ++seed) {
    const int cables = seed <= 60 ? 0 : 3, pipe = seed > 80;
    const double limit = cables == 0 ? 1e-11 : 1e-6;
    makeConvertibleLine(seed);
    const double f = cables > 0 ? 1e6 : std::pow(10.0, static_cast<double>(seed % 6));
    RUNDATA.ground.GMUR = 1.3;
    if (cables > 0) RUNDATA.ground.GRTYPE = false;
    if (cables > 0) RUNDATA.ground.GRHO = 10;
    const LineResult overhead = solveLine(f);
    convertLine(cables, pipe == 1);
    const LineResult r = solveCables(f);
    ASSERT_EQ(r.n, overhead.n + cables + pipe) << seed;
    const std::size_t n = overhead.Z.size(), at = std::size_t(cables);
    EXPECT_LT(distance(block(r.Z, at, at, n), overhead.Z), limit) << seed;
    EXPECT_LT(distance(block(r.Y, at, at, n), overhead.Y), limit) << seed;
    EXPECT_LT(distance(solveCables(f).Z, r.Z), 1e-15) << seed; // the next length step
  }
}

// Inverse of the capacitances: a pipe in air acts like a wire of its radius, the cable in it shares
// its potential, and its contents are screened from a wire outside.
TEST(CableZY, PipeInTheAir) {
  for (const int kind : {0, 1, 2}) { // empty, a cable in it marked as aerial, not marked
    const int inside = kind > 0;
    layCables(1 + inside);
    Cable &wire = cable(1), &inner = cable(2);
    RUNDATA.cable.NPIPE = 1;
    RUNDATA.cable.ANYOVHD = wire.CBOVHD = true;
    RUNDATA.cable.pipe = {1, 4, 7, inside, 0, 0, 0.2, 0.21, 0, 2e-7, 1, 2.5, 1};
    RUNDATA.cable.pipe.PIPEOVHD = true;
    wire.CBNLAY = 1;
    wire.CBY = 10;
    wire.CBGAER = inner.CBGAER = 0;
    inner.CBPIPE = inside;
    inner.CBOVHD = kind == 1;
    const Dense C = times(1.0L / Wide(0, TWOPI * 50 * C0), solveCables(50.0).Y), P = inverse(C);
    const std::size_t pipe = C.size() - 1;
    const double D2 = std::pow(wire.CBX - 4, 2) + 17.0 * 17, d2 = D2 - 4.0 * 10 * 7;
    const double mutual = kind == 2 ? 0 : 0.5 * std::log(D2 / d2);
    for (std::size_t i = 1; i <= pipe; ++i) EXPECT_LT(std::abs(P[0][i] - Wide(mutual)), 1e-9L) << i;
    EXPECT_LT(std::abs(P[pipe][pipe] - Wide(std::log(14 / 0.21))), 1e-9L);
    EXPECT_TRUE(inside == 0 || std::abs(C[0][1]) < 1e-12L * std::abs(C[0][0]));
    EXPECT_TRUE(isOfCapacitances(C));
  }
}

TEST(CableZY, ConductanceOfAerialCables) {
  for (int n = 0; n < 48; ++n) {
    const double air = n < 16 || n >= 32 ? 5e-11 : 0.0;
    const bool corrected = n % 2 == 0, tangents = n >= 32; // all losses
    const double g = tangents ? 0.0 : 3e-10;
    const int layers = 1 + n / 2 % 8;
    layCables(1);
    Cable& C = cable(1);
    C.CBNLAY = layers;
    for (std::size_t k = 5; k < 9; ++k) C.CBRAD[k] = C.CBRAD[k - 1] + 0.002;
    C.CBRHO.fill(2e-8);
    C.CBEPS.fill(2.5);
    C.CBOVHD = RUNDATA.cable.ANYOVHD = true;
    C.CBY = 10;
    C.CBGAER = air;
    RUNDATA.fit.DIELM = tangents;
    RUNDATA.fit.CSHUNTG = 3e-10;
    RUNDATA.fit.DCCORRF = corrected;
    Dense wanted = chain(layers, g, air);
    if (!corrected) { // without insulators only the air remains
      wanted = times(0, wanted);
      wanted.back().back() = air;
    }
    const Dense Y = solveCables(50.0).Y;
    for (std::size_t e = 0, m = Y.size(); e < m * m; ++e)
      EXPECT_LT(std::abs(Y[e / m][e % m].real() - wanted[e / m][e % m].real()), 1e-20L) << layers;
  }
}

// Configuration 606 of the IEEE 13 node test feeder: 250 kcmil aluminium, 13 strands no. 14 copper
// as concentric neutral, 6 inches apart, 60 Hz, 100 ohm m, neutrals grounded. The core has the
// radius of its geometric mean radius of 0.0171 ft, the neutral is a thin tube at 0.0486 ft, that
// of its strands.
TEST(CableZY, PublishedConcentricNeutralCables) {
  constexpr double MILE = 1609.344, FOOT = 0.3048, WALL = 2e-4; // m
  const double r = 0.0171 * FOOT * std::exp(0.25), q = 0.0486 * FOOT - WALL / 2;
  layCables(3);
  for (int c = 1; c <= 3; ++c) {
    Cable& C = cable(c);
    C.CBX = 0.5 * FOOT * c;
    C.CBRAD = {0, r, q, q + WALL, 1.29 / 24 * FOOT};
    C.CBRHO = {0.410 / MILE * PI * r * r, 14.87 / 13 / MILE * PI * WALL * (2 * q + WALL)};
    C.CBGLAST = 1;
  }
  const Dense published = {{{0.7982, 0.4463}, {0.3192, 0.0328}, {0.2849, -0.0143}}, // ohm/mile
                           {{0.3192, 0.0328}, {0.7891, 0.4041}, {0.3192, 0.0328}},
                           {{0.2849, -0.0143}, {0.3192, 0.0328}, {0.7982, 0.4463}}};
  EXPECT_LT(largest(sum(times(MILE, solveCables(60.0).Z), published, -1)), 0.008);
}
