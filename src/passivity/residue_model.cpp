#include "passivity/residue_model.h"

#include "base/console.h"
#include "modal/modal_transform.h"

#include <algorithm>
#include <cmath>

namespace lcp {

void RESCLASS() {
  static ModeComplex w;
  static LineMatrix vectors;
  EnforcementStore& E = ENFORCE;
  for (int m = 1; m <= E.TOTORD; ++m) {
    ZEIGSORT(E.FRES[m], w, vectors, E.NC);
    for (int j = 1; j <= E.NC; ++j) E.EIGFLAG[m][j] = std::fabs(w[j].imag()) > SMALLSINGLE ? 1 : 0;
  }
}

void decomposeResidues() {
  EnforcementStore& E = ENFORCE;
  for (int m = 1; m <= E.TOTORD; ++m) {
    ZEIGSORT(E.FRES[m], E.FEIG[m], E.FVEC[m], E.NC);
    ZINVERSE(E.FVEC[m], E.FVECINV[m], E.NC);
  }
}

namespace {

// Number of free eigenvalues per pole of the first group.
int freeEigenvalues(int poles) {
  const int n = ENFORCE.NC;
  return n * poles <= MAXFREE ? n : MAXFREE / poles;
}

} // namespace

void RESMASK() {
  EnforcementStore& E = ENFORCE;
  const int poles = E.FNG[1];
  const int perPole = freeEigenvalues(poles);
  int all = 0;
  E.NVAR = 0;
  E.NFREE = 0;
  for (int m = 1; m <= poles; ++m) {
    for (int j = 1; j <= E.NC; ++j) {
      const int parts = 1 + E.EIGFLAG[m][j];
      all += parts;
      if (j > perPole) continue;
      E.FREE[++E.NFREE] = {m, j, parts == 2};
      E.NVAR += parts;
    }
  }
  console::line("    ...........   ");
  console::line("  Model Order reduction ");
  console::print("  Original {:5}, Reduced {:5}", all, E.NVAR);
}

void RESAPPLY(const Table<double, MAXVARIABLES>& x) {
  static ModeComplex w;
  EnforcementStore& E = ENFORCE;
  int i = 1; // free eigenvalue
  int k = 0; // variable
  for (int m = 1; m <= E.TOTORD; ++m) {
    std::copy_n(E.FEIG[m].data(), E.NC, w.data());
    for (; i <= E.NFREE && E.FREE[i].pole == m; ++i) {
      const double re = single(x[++k]);
      const double im = E.FREE[i].complex ? single(x[++k]) : 0.0;
      w[E.FREE[i].eigenvalue] += Complex(re, im);
    }
    diagonalToPhases(E.FPERT[m], E.FVEC[m], w, E.FVECINV[m], E.NC);
  }
}

} // namespace lcp
