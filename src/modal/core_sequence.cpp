#include "modal/core_sequence.h"

#include "modal/line_constants.h"
#include "store/rundata.h"

namespace lcp {

namespace {

constexpr int PHASES = 3;

Complex mean(Complex sum, int count) { return sum / static_cast<double>(count); }

// Averages the 3 by 3 block after the first `before` conductors: one self value, one mutual value.
void transposeBlock(CView M, int before) {
  Complex self;
  Complex mutual;
  for (int j = 1; j <= PHASES; ++j) {
    self += M(before + j, before + j);
    for (int i = 1; i < j; ++i) mutual += M(before + i, before + j);
  }
  for (int j = 1; j <= PHASES; ++j) {
    for (int i = 1; i <= PHASES; ++i) {
      M(before + i, before + j) = mean(i == j ? self : mutual, PHASES);
    }
  }
}

void transposeCoupling(CView M) {
  Complex sum;
  for (int j = 1; j <= PHASES; ++j) {
    for (int i = 1; i <= PHASES; ++i) sum += M(i, PHASES + j);
  }
  for (int j = 1; j <= PHASES; ++j) {
    for (int i = 1; i <= PHASES; ++i) {
      M(i, PHASES + j) = M(PHASES + j, i) = mean(sum, PHASES * PHASES);
    }
  }
}

void transposeCircuits(CView M, int n) {
  if (n != PHASES && n != 2 * PHASES) return;
  transposeBlock(M, 0);
  if (n == PHASES) return;
  transposeBlock(M, PHASES);
  transposeCoupling(M);
}

} // namespace

bool hasCoreSequences() {
  const CableTable& T = RUNDATA.cable;
  if (RUNDATA.run.ISCABLE != CABLESYSTEM || T.ANYOVHD) return false;
  return T.NCABLE == 2 || T.NCABLE == PHASES || T.NCABLE == 2 * PHASES;
}

Grounding groundSheaths(double f) {
  CableTable& T = RUNDATA.cable;
  Grounding saved;
  saved.PIPEGND = T.pipe.PIPEGND;
  T.pipe.PIPEGND = 1;
  for (int c = 1; c <= T.NCABLE; ++c) {
    saved.CBGLAST[c] = T.CB[c].CBGLAST;
    T.CB[c].CBGLAST = GROUNDLAYERS;
  }
  constantsAt(f);
  transposeCircuits(SOLVEDATA.first.YMAT, RUNDATA.line.NC);
  transposeCircuits(SOLVEDATA.first.ZMAT, RUNDATA.line.NC);
  return saved;
}

void restoreSheaths(const Grounding& saved, double f) {
  CableTable& T = RUNDATA.cable;
  T.pipe.PIPEGND = saved.PIPEGND;
  for (int c = 1; c <= T.NCABLE; ++c) T.CB[c].CBGLAST = saved.CBGLAST[c];
  constantsAt(f);
}

} // namespace lcp
