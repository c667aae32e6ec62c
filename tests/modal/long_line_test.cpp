#include "modal/long_line.h"

#include "modal/line_constants.h"
#include "modal/pi_model.h"
#include "store/rundata.h"
#include "store/solvedata.h"
#include "support/dense_functions.h"
#include "support/solve.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

TEST(LongLine, GivesTheExactPiCircuit) {
  static LineMatrix YLC, ZLC;
  for (const std::string& body : {singleCircuit(phaseModel()), doubleCircuit(phaseModel()),
                                  singleCircuit(phaseModel(), "Transposed: 1\n")}) {
    solveFirstLoop(body);
    const int n = RUNDATA.line.NC;
    for (const double f : {1.0, 60.0, 2000.0, 30000.0}) {
      for (const double length : {1e2, 1e4, 3e5}) {
        if (f * length > 1e9) continue; // many wavelengths: the exponential itself loses digits
        constantsAt(f);
        const FirstLoopStore& S = SOLVEDATA.first;
        bool shown = false;
        LONGCOR(S.YMAT, S.ZMAT, length, YLC, ZLC, n, shown);
        const PiCircuit pi = exactPi(corner(S.YMAT, n), corner(S.ZMAT, n), length);
        EXPECT_LT(distance(times(length, corner(ZLC, n)), pi.Z), 1e-10) << f << ' ' << length;
        EXPECT_LT(distance(times(length, corner(YLC, n)), pi.Y), 1e-10) << f << ' ' << length;
      }
    }
  }
}

TEST(LongLine, AVeryLongLineStaysFinite) {
  static LineMatrix Y, Z, YLC, ZLC;
  Y(1, 1) = {1e-11, 4e-9};
  Z(1, 1) = {1e-3, 5e-4};
  bool shown = false;
  LONGCOR(Y, Z, 1e9, YLC, ZLC, 1, shown);
  EXPECT_TRUE(std::isfinite(std::abs(YLC(1, 1))) && std::isfinite(std::abs(ZLC(1, 1))));
  EXPECT_FALSE(shown && ZLC(1, 1).real() < 1e-20);
}

TEST(LongLine, PiDataAreBranches) {
  static LineMatrix YLC, PIW;
  RUNDATA.resetInput();
  RUNDATA.line.NC = 2;
  RUNDATA.run.LINELEN = 100;
  YLC(1, 1) = {3, 30};
  YLC(2, 2) = {4, 40};
  YLC(1, 2) = YLC(2, 1) = {-1, -10};
  formShuntData(PIW, YLC);
  EXPECT_EQ(PIW(1, 2), Complex(-50, -500));
  EXPECT_EQ(PIW(1, 1), Complex(100, 1000)); // the row sum stands to ground
  EXPECT_EQ(PIW(2, 2), Complex(150, 1500));
  const ShuntBranch b = shuntBranch({-2, -376.99111843077515e-6});
  EXPECT_EQ(b.g, -2.0);
  EXPECT_NEAR(b.c, 1.0, 1e-14);
}
