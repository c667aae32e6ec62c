#include "cable/cable_earth.h"

#include "cable/earth_pairs.h"
#include "cable/numbering.h"
#include "overhead/earth_return.h"
#include "store/rundata.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;

namespace {

// A buried cable of two conductors, two of one in a pipe or beside it, two aerial ones.
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

// Every element is the value of the two bodies that its conductors belong to, the later one of the
// walk first.
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
