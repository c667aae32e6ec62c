#include "support/cable_systems.h"

#include "base/constants.h"
#include "cable/cable_zy.h"

#include <algorithm>
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
  C.CBMU.fill(1);
  for (std::size_t k = 0; k < 4; ++k) {
    C.CBRHO[k] = std::pow(10.0, r.between(-7.8, -6.6));
    C.CBEPS[k] = r.between(2, 5);
    C.CBTAND[k] = r.chance(0.3) ? TWOPI * 50 * r.between(1e-4, 5e-3) : 0;
  }
}

void givePipe(int cables, LineNumbers& r) {
  CableTable& T = RUNDATA.cable;
  PipeRecord& P = T.pipe;
  T.NPIPE = 1;
  const int insulated = r.upTo(0, 1);
  const double mu = r.chance(0.5) ? 1 : 200;
  P = {1, -3, 1.5, 0, insulated, 1, 0.4, 0.41, 0.42, 2e-7, mu, 2.5, 1, 0, 2.5, 1};
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
  C = {c, x, depth, 0, 0, 4, {0, 0.02, 0.035, 0.037, 0.04}, {1.8e-8, 2.8e-8}, {}, {2.5, 2.3}};
  C.CBSOLID = true;
  C.CBMU.fill(1);
}

void makeCables(std::uint64_t seed) {
  RUNDATA = {};
  CableTable& T = RUNDATA.cable;
  LineNumbers r(seed);
  RUNDATA.run.ISCABLE = CABLESYSTEM;
  RUNDATA.run.LINELEN = r.between(1e2, 1e4);
  RUNDATA.ground.GRHO = std::pow(10.0, r.between(1, 3));
  RUNDATA.ground.GEPSR = r.between(1, 10);
  T.NCABLE = r.upTo(1, 6);
  for (int c = 1; c <= T.NCABLE; ++c) {
    Cable& C = T.CB[c];
    C.CBUSED = c;
    giveLayers(C, r, r.between(0.005, 0.02));
    C.CBX = 0.5 * c + r.between(0, 0.1);
    C.CBOVHD = r.chance(0.2);
    C.CBY = C.CBOVHD ? r.between(5, 20) : r.between(0.5, 2);
    C.CBGLAST = std::max(0, r.upTo(-3, 3)); // half of them ground something
    for (bool* eliminated : {&C.CBELIM1, &C.CBELIM2, &C.CBELIM3}) *eliminated = r.chance(0.5);
  }
  if (r.chance(0.3)) givePipe(T.NCABLE, r);
  for (int c = 1; c <= T.NCABLE; ++c) T.ANYOVHD = T.ANYOVHD || T.CB[c].CBOVHD;
}

LineResult solveCables(double f) { return solveWith(CBZY, f); }

} // namespace lcp::test
