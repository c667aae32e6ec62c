// For a body of radius r at height y and its image, and for two bodies:
//
//   P(i, i) = log(2 y / r)      P(i, j) = 1/2 log(D2 / d2)
//
// with D2 and d2 the squared distances from i to the image of j and to j itself.
#include "cable/potential.h"

#include "cable/body.h"
#include "store/rundata.h"

#include <cmath>

namespace lcp {

namespace {

// Conductors first to last, plus the conductor of the pipe if the body is the pipe (else 0).
struct Rows {
  int first, last, pipe;
};

Rows rowsOf(const CableNumbering& N, int c) {
  const bool inside = RUNDATA.cable.CB[c].CBPIPE != 0;
  return {N.first(c), N.last(c), inside ? N.pipeRow : 0};
}

double selfTerm(const Body& b) { return std::log(2.0 * b.y / b.r); }

double mutualTerm(const Body& a, const Body& b) {
  const double x = a.x - b.x;
  const double above = a.y + b.y;
  const double beside = a.y - b.y;
  return 0.5 * std::log((above * above + x * x) / (beside * beside + x * x));
}

void setBlock(CView PA, const Rows& a, const Rows& b, double value) {
  for (int j = b.first; j <= b.last; ++j) {
    for (int i = a.first; i <= a.last; ++i) PA(i, j) = PA(j, i) = value;
    if (a.pipe != 0) PA(a.pipe, j) = PA(j, a.pipe) = value;
  }
  if (b.pipe == 0) return;
  for (int i = a.first; i <= a.last; ++i) PA(i, b.pipe) = PA(b.pipe, i) = value;
}

// The pipe and the conductors inside it.
void setPipeSelf(const CableNumbering& N, CView PA) {
  const double value = selfTerm(pipeBody());
  PA(N.pipeRow, N.pipeRow) = value;
  for (int a = 1; a <= N.ninner; ++a) {
    const Rows rows = rowsOf(N, N.inner[a]);
    for (int b = 1; b <= a; ++b) setBlock(PA, rows, rowsOf(N, N.inner[b]), value);
  }
}

// An empty pipe and the cables. A pipe with cables gets these terms from them: the pipe and
// everything inside it have the same coefficient with an outside body.
void setPipeMutual(const CableNumbering& N, CView PA) {
  const Rows pipe = {N.pipeRow, N.pipeRow, 0};
  for (int c = 1; c <= RUNDATA.cable.NCABLE; ++c) {
    if (!RUNDATA.cable.CB[c].CBOVHD) continue;
    setBlock(PA, pipe, rowsOf(N, c), mutualTerm(pipeBody(), cableBody(c)));
  }
}

} // namespace

void CBPOT(const CableNumbering& N, CView PA) {
  const CableTable& T = RUNDATA.cable;
  for (int j = 1; j <= N.total; ++j) {
    for (int i = 1; i <= N.total; ++i) PA(i, j) = 0.0;
  }
  for (int i = 1; i <= T.NCABLE; ++i) {
    const Rows rows = rowsOf(N, i);
    const Body body = cableBody(i);
    const bool inside = T.CB[i].CBPIPE != 0;
    if (!inside && body.aerial) setBlock(PA, rows, rows, selfTerm(body));
    for (int j = 1; body.aerial && j < i; ++j) {
      if (!T.CB[j].CBOVHD || (inside && T.CB[j].CBPIPE != 0)) continue;
      setBlock(PA, rows, rowsOf(N, j), mutualTerm(body, cableBody(j)));
    }
  }
  if (T.NPIPE == 0 || !T.pipe.PIPEOVHD) return;
  setPipeSelf(N, PA);
  if (N.ninner == 0) setPipeMutual(N, PA);
}

} // namespace lcp
