#include "cable/body.h"

#include "store/rundata.h"

#include <algorithm>
#include <fmt/format.h>

namespace lcp {

Body cableBody(int c) {
  const Cable& C = RUNDATA.cable.CB[c];
  if (C.CBPIPE == 0) return {C.CBX, C.CBY, C.radius(), C.CBOVHD};
  Body body = pipeBody();
  body.aerial = C.CBOVHD;
  return body;
}

Body pipeBody() {
  const PipeRecord& P = RUNDATA.cable.pipe;
  return {P.PIPEX, P.PIPEY, P.radius(), P.PIPEOVHD};
}

int towerConductor(int c) {
  const CableTable& T = RUNDATA.cable;
  return std::max(0, c - (T.NCABLE - T.overhead));
}

std::string cableName(int c) {
  const int i = towerConductor(c);
  if (i == 0) return fmt::format("Cable {}", c);
  const ConductorTable& C = RUNDATA.cond;
  return fmt::format("Conductor at X = {:.4g} m, Y = {:.4g} m", C.CX[i], C.CY[i]);
}

} // namespace lcp
