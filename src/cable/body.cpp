#include "cable/body.h"

#include "store/rundata.h"

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

} // namespace lcp
