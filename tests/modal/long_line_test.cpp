#include "modal/long_line.h"

#include "modal/line_constants.h"
#include "store/rundata.h"
#include "store/solvedata.h"
#include "support/dense_functions.h"
#include "support/solve.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

TEST(LongLine, GivesTheExactPiCircuit) {
  static LineMatrix YLC, ZLC;
  for (const std::string& body :
       {doubleCircuit(phaseModel()), singleCircuit(phaseModel(), "Transposed: 1\n")}) {
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
