#include "support/overhead_lines.h"

#include "base/constants.h"
#include "overhead/overhead_zy.h"
#include "store/solvedata.h"

#include <cmath>

namespace lcp::test {

namespace {

void giveShape(int i, LineNumbers& r) {
  ConductorTable& C = RUNDATA.cond;
  const int kind = r.upTo(0, 2);
  C.CTUBE[i] = kind == 1;
  C.CSTRND[i] = kind == 2;
  C.CTHICK[i] = C.CRAD[i] * r.between(0.2, 0.8);
  C.CNTOT[i] = 37;
  C.CNOUT[i] = 18;
  C.CSTRAD[i] = C.CRAD[i] / 7.0;
}

// Appends a conductor of the same kind as `main`.
void addBehind(int main, int role, double dx, double dy) {
  using T = ConductorTable;
  T& C = RUNDATA.cond;
  const int e = ++C.NCOND;
  for (CondReals T::*field :
       {&T::CX, &T::CYAVG, &T::CRDC, &T::CRAD, &T::CTHICK, &T::CSTRAD, &T::CNOUT, &T::CNTOT})
    (C.*field)[e] = (C.*field)[main];
  for (CondFlags T::*field : {&T::CTUBE, &T::CSTRND}) (C.*field)[e] = (C.*field)[main];
  for (CondInts T::*field : {&T::CCIRC, &T::CTRANSP}) (C.*field)[e] = (C.*field)[main];
  C.CX[e] += dx;
  C.CY[e] = C.CYAVG[e] += dy;
  C.CSHUNT[e] = 0;
  C.CMAP[e] = role;
}

void addKept(int i, int columns, LineNumbers& r) {
  ConductorTable& C = RUNDATA.cond;
  const int place = i - 1, row = place / columns;
  const double x = 6.0 * (place % columns) - 3.0 * columns + r.between(-2, 2);
  const double y = 10.0 + 7.0 * row + r.between(-2, 2), radius = r.between(0.008, 0.02);
  setConductor(i, x, y, radius, r.between(2e-5, 3e-4));
  giveShape(i, r);
  if (place % 3 == 0) ++C.NCIRC;
  C.CCIRC[i] = C.NCIRC;
  C.CTRANSP[i] = place % 3 == 0 ? r.chance(0.5) : C.CTRANSP[i - 1];
  C.CSHUNT[i] = r.between(0, 1e-10);
  if (C.CTRANSP[i] == 0 && r.chance(0.1)) C.CMAP[i] = MAPKEPT;
}

} // namespace

void setConductor(int i, double x, double y, double radius, double resistance) {
  ConductorTable& C = RUNDATA.cond;
  C.CX[i] = x;
  C.CY[i] = C.CYAVG[i] = y;
  C.CRAD[i] = radius;
  C.CRDC[i] = resistance;
  C.CMAP[i] = MAPMAIN;
}

void makeLine(std::uint64_t seed, const LineWish& wish) {
  RUNDATA = {};
  ConductorTable& C = RUNDATA.cond;
  LineNumbers r(seed);
  RUNDATA.run.LINELEN = r.between(1e3, 4e5);
  RUNDATA.ground.GRHO = std::pow(10.0, r.between(0.5, 3.8));
  RUNDATA.ground.GRTYPE = r.chance(0.3);
  const int kept = r.upTo(1, wish.mostKept);
  RUNDATA.line.NC = C.NCOND = kept;
  const int columns = (kept + 3) / 4; // places 6 m apart, so that wires stay clear of each other
  for (int i = 1; i <= kept; ++i) addKept(i, columns, r);
  const int sub = r.upTo(1, wish.mostBundle);
  for (int i = kept; i < kept * sub; ++i) { // one of every bundle in turn
    const int main = i % kept + 1, m = i / kept, row = m / 2;
    if (C.CMAP[main] == MAPMAIN) addBehind(main, main, 0.45 * (m % 2), 0.45 * row);
  }
  for (int g = r.upTo(0, wish.mostEliminated); g > 0; --g) {
    const double dx = 9.0 * g + r.between(-2, 2);
    addBehind(1, MAPELIMINATED, dx, 33.0 + r.between(-2, 2));
  }
}

LineResult solveWith(LineConstants routine, double f, bool first) {
  FirstLoopStore& S = SOLVEDATA.first;
  LineResult result;
  S.ISTATUS = first;
  routine(f, S.YMAT, S.ZMAT, S.PMAT);
  S.ISTATUS = false;
  result.n = RUNDATA.line.NC;
  result.Y = corner(S.YMAT, result.n);
  result.Z = corner(S.ZMAT, result.n);
  result.P = corner(S.PMAT, result.n);
  return result;
}

std::string unsound(const LineResult& r, double f, bool passive) {
  const Wide jw(0, TWOPI * f);
  const auto asymmetry = [](const Dense& A) {
    return distance(formed(A.size(), [&](auto i, auto j) { return A[j][i]; }), A);
  };
  std::string what;
  if (!(asymmetry(r.Z) < 1e-12 && asymmetry(r.Y) < 1e-12)) what += " symmetry";
  if (passive && !hasPositiveRealPart(r.Z)) what += " Z";
  if (!hasPositiveRealPart(times(Wide(1) / jw, r.Y))) what += " Y";
  const Dense P = times(Wide(1) / (jw * jw * Wide(C0 * L0)), product(r.Y, r.Z));
  if (!(distance(r.P, P) < 1e-13)) what += " P";
  return what;
}

LineResult solveLine(double f, bool first) { return solveWith(OHZY, f, first); }

} // namespace lcp::test
