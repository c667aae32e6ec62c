// Following all modes from matrix to matrix, as a solve does from frequency to frequency.
#pragma once

#include "kernels/eigen_package.h"
#include "line_matrices.h"
#include "modal/newton.h"

namespace lcp::test {

struct Walk {
  LineMatrix A, TI, TIINV;
  ModeComplex EIG;
  ModeInts PIVOT;
  double s = 0.0;
};

// The decomposition of A.
inline void start(Walk& W, int n) {
  static LineMatrix copy;
  copy = W.A;
  W.s = 0.0;
  for (int i = 1; i <= n; ++i) W.s += std::abs(W.A(i, i)) / n;
  VALVC(W.EIG, W.TIINV, W.TI, copy, n);
  PIVNORM(W.TI, W.TIINV, W.PIVOT, n);
}

// The modes of the next A from those of the last one.
inline bool step(Walk& W, int n) {
  static LineMatrix copy, XGUESS;
  ModeComplex LGUESS;
  copy = W.A;
  XGUESS = W.TI;
  for (int i = 1; i <= n; ++i) LGUESS[i] = W.EIG[i] / W.s;
  const bool ok = NREIG(W.EIG, W.TI, LGUESS, XGUESS, copy, W.s, W.PIVOT, n);
  PIVNORM(W.TI, W.TIINV, W.PIVOT, n);
  return ok;
}

} // namespace lcp::test
