#include "support/cable_systems.h"

#include "base/constants.h"
#include "cable/cable_zy.h"
#include "store/solvedata.h"

#include <cmath>

namespace lcp::test {

namespace {

void giveLayers(Cable& C, LineNumbers& r, double scale) {
  C.CBNLAY = r.upTo(1, 8);
  C.CBSOLID = r.chance(0.6);
  C.CBRAD[0] = C.CBSOLID ? 0 : 0.3 * scale;
  C.CBRAD[1] = scale;
  for (std::size_t k = 2; k < 9; ++k) {
    C.CBRAD[k] = C.CBRAD[k - 1] + scale * r.between(0.1, k % 2 == 0 ? 0.8 : 0.2);
  }
  for (double& mu : C.CBMU) mu = 1;
  for (std::size_t k = 0; k < 4; ++k) {
    C.CBRHO[k] = std::pow(10.0, r.between(-7.8, -6.6));
    C.CBEPS[k] = r.between(2, 5);
    C.CBTAND[k] = r.chance(0.3) ? TWOPI * 50 * r.between(1e-4, 5e-3) : 0;
  }
}

void giveGrounding(Cable& C, LineNumbers& r) {
  C.CBGLAST = r.upTo(0, 3);
  C.CBELIM1 = r.chance(0.5);
  C.CBELIM2 = r.chance(0.5);
  C.CBELIM3 = r.chance(0.5);
}

void givePipe(int cables, LineNumbers& r) {
  CableTable& T = RUNDATA.cable;
  PipeRecord& P = T.pipe;
  T.PIPEF = true;
  T.NPIPE = P.PIPEUSED = 1;
  P.PIPEX = -3;
  P.PIPEY = 1.5;
  P.PIPEOUTL = r.upTo(0, 1);
  P.PIPEGND = 1;
  P.PIPERI = 0.4;
  P.PIPERC = 0.41;
  P.PIPERO = 0.42;
  P.PIPERHO = 2e-7;
  P.PIPEMU = r.chance(0.5) ? 1 : 200;
  P.PIPEEPSI = P.PIPEEPSO = 2.5;
  P.PIPEMUI = P.PIPEMUO = 1;
  for (int c = cables; c >= 1 && c > cables - 3; --c) {
    Cable& C = T.CB[c];
    C.CBPIPE = 1;
    C.CBOVHD = false;
    ++P.PIPENIN;
    C.CBPR = 0.22;
    C.CBPTH = (cables - c) * 2.1 + r.between(-0.2, 0.2);
    C.CBX = C.CBPR * std::cos(C.CBPTH);
    C.CBY = C.CBPR * std::sin(C.CBPTH);
  }
}

} // namespace

void setSingleCore(int c, double x, double depth) {
  Cable& C = RUNDATA.cable.CB[c];
  C = {};
  C.CBUSED = c;
  C.CBX = x;
  C.CBY = depth;
  C.CBNLAY = 4;
  C.CBSOLID = true;
  C.CBRAD = {0, 0.02, 0.035, 0.037, 0.04};
  C.CBRHO = {1.8e-8, 2.8e-8};
  C.CBMU.fill(1);
  C.CBEPS = {2.5, 2.3};
}

void makeCables(std::uint64_t seed, const SystemWish& wish) {
  RUNDATA = {};
  CableTable& T = RUNDATA.cable;
  LineNumbers r(seed);
  RUNDATA.run.ISCABLE = CABLESYSTEM;
  RUNDATA.run.LINELEN = r.between(1e2, 1e4);
  RUNDATA.ground.GRHO = std::pow(10.0, r.between(1, 3));
  RUNDATA.ground.GEPSR = r.between(1, 10);
  T.NCABLE = r.upTo(1, wish.mostCables);
  for (int c = 1; c <= T.NCABLE; ++c) {
    Cable& C = T.CB[c];
    C.CBUSED = c;
    giveLayers(C, r, r.between(0.005, 0.02));
    C.CBX = 0.5 * c + r.between(0, 0.1);
    C.CBOVHD = r.chance(wish.aerial);
    C.CBY = C.CBOVHD ? r.between(5, 20) : r.between(0.5, 2);
    if (r.chance(wish.grounding)) giveGrounding(C, r);
  }
  if (r.chance(wish.pipe)) givePipe(T.NCABLE, r);
  for (int c = 1; c <= T.NCABLE; ++c) T.ANYOVHD = T.ANYOVHD || T.CB[c].CBOVHD;
}

LineResult solveCables(double f, bool first) {
  FirstLoopStore& S = SOLVEDATA.first;
  LineResult result;
  S.ISTATUS = first;
  CBZY(f, result.length, S.YMAT, S.ZMAT, S.PMAT);
  S.ISTATUS = false;
  result.n = RUNDATA.line.NC;
  result.Y = corner(S.YMAT, result.n);
  result.Z = corner(S.ZMAT, result.n);
  result.P = corner(S.PMAT, result.n);
  return result;
}

} // namespace lcp::test
