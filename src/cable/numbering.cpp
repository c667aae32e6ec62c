#include "cable/numbering.h"

#include "store/rundata.h"

namespace lcp {

void numberConductors(CableNumbering& N) {
  const CableTable& T = RUNDATA.cable;
  N.ninner = 0;
  N.total = 0;
  for (int c = 1; c <= T.NCABLE; ++c) {
    N.CBCUM[c] = N.total += T.CB[c].conductors();
    if (T.CB[c].CBPIPE != 0) N.inner[++N.ninner] = c;
  }
  N.pipeRow = T.NPIPE > 0 ? ++N.total : 0;
}

} // namespace lcp
