// Earth terms of cable systems: blocks, messages and caching; tests/values holds their values.
#include "cable/aerial_integral.h"
#include "cable/cable_earth.h"
#include "cable/earth_integrals.h"
#include "cable/earth_pairs.h"
#include "cable/exact_earth.h"
#include "cable/numbering.h"
#include "overhead/earth_return.h"
#include "store/rundata.h"
#include "support/console_capture.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;

namespace {

// A buried cable of two conductors, two single-conductor cables in a pipe or next to it, two aerial
// ones.
void setSystem(bool inside) {
  RUNDATA.resetInput();
  CableTable& T = RUNDATA.cable;
  T.NCABLE = 5;
  T.NPIPE = 1;
  T.pipe = {1, 2.0, 1.2, 0, 0, 0, 0.1, 0.12};
  for (int c = 1; c <= 5; ++c) {
    Cable& C = T.CB[c];
    C.CBX = 0.5 * c;
    C.CBY = c > 3 ? 10.0 : c > 1 ? 0.8 : 0.9;
    C.CBOVHD = c > 3;
    C.CBNLAY = c == 1 ? 4 : 1;
    C.CBRAD = {0, c < 5 ? 0.02 : 0.03, 0.03, 0.035, 0.04};
    C.CBPIPE = inside && (c == 2 || c == 3) ? 1 : 0;
  }
  RUNDATA.ground.EARTHFU = RUNDATA.ground.EARTHF = EARTHINTEGRAL;
  numberConductors(CABLE.numbering);
}

} // namespace

// Every element has the value of the two bodies of its conductors, with the later body first.
TEST(CableEarth, BodiesFillTheBlocksOfTheirConductors) {
  const double w = 300.0;
  LastKexpone last;
  for (const bool inside : {true, false}) {
    setSystem(inside);
    const Complex m = 1.0 / GRDDEPTH(w);
    for (Complex& q : CABLE.Q.elements) q = std::nan("");
    CBEARTH(w, CABLE.numbering, CABLE.D, CABLE.Q);
    const int owner[] = {1, 1, 2, 3, 4, 5, inside ? 3 : 6}; // by conductor; 6 a pipe by itself
    for (int k = 0; k < 49; ++k) {
      const int i = std::max(owner[k / 7], owner[k % 7]), j = std::min(owner[k / 7], owner[k % 7]);
      const Body I = i == 6 ? pipeBody() : cableBody(i), J = cableBody(j);
      const bool same = i == j || (inside && i == 3 && j == 2);
      EarthValue value = I.aerial == J.aerial ? EarthValue{} : EarthValue{EMIX(0, I, J, m), 0.0};
      if (I.aerial && J.aerial) value = same ? EASELF(2, I, m, w) : EAMUT(2, I, J, m, w);
      if (!I.aerial && !J.aerial) value.Z = same ? EBSELF(2, I, m, last) : EBMUT(2, I, J, m, last);
      EXPECT_EQ(CABLE.D(k / 7 + 1, k % 7 + 1), value.Z) << inside << k;
      EXPECT_EQ(CABLE.Q(k / 7 + 1, k % 7 + 1), value.P) << inside << k;
    }
  }
}

// The same walk over exact values: bodies in the air and in the ground at the same numbers, and no
// formula that counts.
TEST(CableEarth, ExactValuesFillTheBlocks) {
  const double w = 300.0;
  const Complex p(0.0, w);
  setSystem(false);
  CableTable& T = RUNDATA.cable;
  T.CB[5].CBY = T.CB[4].CBY = T.CB[3].CBY = T.CB[2].CBY = 2.0;
  T.CB[5].CBX = T.CB[2].CBX = 0.5;
  T.CB[4].CBX = T.CB[3].CBX = 1.5;
  RUNDATA.ground.EARTHF = RUNDATA.ground.EARTHFU = RUNDATA.ground.EARTHFM = 1;
  RUNDATA.numerics.IMPROVEDEARTH = true;
  CBEARTH(w, CABLE.numbering, CABLE.D, CABLE.Q);
  for (int i = 2; i <= 5; ++i) {
    for (int j = 2; j <= i; ++j) {
      const Body I = cableBody(i), J = cableBody(j);
      const BodyPair g = i == j ? pairOf(I) : pairOf(I, J);
      ExactAerial value{{0.0, 0.0}, {0.0, 0.0}};
      if (I.aerial && J.aerial) value = EXACTAERIAL(p, g);
      if (I.aerial != J.aerial) value.Z = EXACTMIXED(p, I.y, J.y, g.x);
      if (!I.aerial && !J.aerial) value.Z = EXACTBURIED(p, g);
      EXPECT_EQ(CABLE.D(i + 1, j + 1), value.Z.value) << i << j;
      EXPECT_EQ(CABLE.Q(j + 1, i + 1), value.P.value) << i << j;
    }
  }
  RUNDATA.numerics.IMPROVEDEARTH = false;
}

TEST(EarthIntegrals, SayWhatDoesNotConverge) {
  const std::string failed = "Failed to converge", on = "Execution Continuing\n";
  const auto told = [](Complex (*integral)(Complex), Complex z) {
    return test::consoleOf([&] { integral(z); });
  };
  EXPECT_EQ(told(KEXPINT, {6e-91, 8e-91}),
            failed + " for R=   1.000000E-90in hyper-b region\"// \" Exec. Continuing\n");
  EXPECT_EQ(told(KEXPINT, {3.0, 4e3}),
            failed + " for R=   4.000001E+03in constant region\"//\" Exec. Continuing\n");
  EXPECT_EQ(told(KEXPONE, {3.0, 4e3}),
            failed + ", Carson R Magnitude =    4.000001E+03Execution continuing\n");
  EXPECT_EQ(told(KEXPONE, 0.0), "");
  EXPECT_EQ(test::consoleOf([] { CBMUT(0.0, 0.5); }),
            failed + " on hyperbolic step loop for R=    0.000000E+00 CBMUT " + on + failed +
                " on exponential step loopfor R=    0.000000E+00 CBMUT " + on);
}

// Pairs are new at the first frequency, summed together at the others, and summed again for the
// second soil at the last one. The two distant pairs have too many panels for both to be kept; they
// come last, so that a store that evicts them is noticed.
TEST(AerialIntegral, IsTheSameKeptAndAnew) {
  const double pairs[][2] = {{0.01, 20}, {4, 20}, {4, 22}, {3000, 20}, {20e5, 20}, {21e5, 21}};
  const auto same = [&](int k, double w, bool anew) {
    const AerialSums kept = AERIALSUM(pairs[k][0], pairs[k][1], w);
    if (anew) FORGETAERIAL();
    const AerialSums again = AERIALSUM(pairs[k][0], pairs[k][1], w);
    return kept.SZ == again.SZ && kept.SQ == again.SQ;
  };
  FORGETAERIAL();
  for (const double eps : {1.0, 30.0}) {
    RUNDATA.ground = {};
    RUNDATA.ground.GRHO = 2e4;
    RUNDATA.ground.GEPSR = eps;
    for (const double w : {1.0, 3e3, 6e6}) {
      for (int k = 0; k < (w == 3e3 && eps == 1.0 ? 6 : 4); ++k) EXPECT_TRUE(same(k, w, false));
    }
  }
  for (const int k : {1, 2, 5}) EXPECT_TRUE(same(k, 6e6, true)) << k;
  RUNDATA.ground.GEPSR = 10; // over another soil at the same frequency
  EXPECT_TRUE(same(1, 6e6, true));
}
