#include "passivity/enforcement_store.h"

#include "kernels/matrix_kernels.h"

#include <algorithm>

namespace lcp {

namespace {

// The residue matrix of pole m; ResidueMatrix stores the residues element by element.
void takeMatrix(const ResidueMatrix& R, int m, CView A, int n) {
  for (int c = 1; c <= n; ++c) {
    for (int r = 1; r <= n; ++r) A(r, c) = R(r, c)[m];
  }
}

} // namespace

void PASSSETY() {
  const FitModel& M = FITMODEL;
  EnforcementStore& E = ENFORCE;
  E.NC = M.NC;
  E.ENY = M.NPY;
  E.EPY = M.YPOLE;
  for (int m = 1; m <= M.NPY; ++m) takeMatrix(M.YRES, m, E.ERY[m], M.NC);
  for (int c = 1; c <= M.NC; ++c) {
    for (int r = 1; r <= M.NC; ++r) E.EDY(r, c) = M.YD(r, c);
  }
}

void PASSSETH() {
  const FitModel& M = FITMODEL;
  EnforcementStore& E = ENFORCE;
  E.FNGROUP = M.NGROUP;
  E.FNG = M.NH;
  E.TOTORD = 0;
  for (int g = 1; g <= M.NGROUP; ++g) E.TOTORD += M.NH[g];
  if (E.TOTORD > MAXORDER) return;
  int k = 0;
  for (int g = 1; g <= M.NGROUP; ++g) {
    for (int m = 1; m <= M.NH[g]; ++m) {
      E.FPOLE[++k] = M.HPOLE[g][m];
      E.FTAU[k] = M.TAU[g];
      takeMatrix(M.HRES[g], m, E.FRES[k], M.NC);
      copyCorner(E.FORIG[k], E.FRES[k], M.NC);
    }
  }
}

void PASSBACK() {
  FitModel& M = FITMODEL;
  const EnforcementStore& E = ENFORCE;
  int k = 0;
  for (int g = 1; g <= E.FNGROUP; ++g) {
    for (int m = 1; m <= E.FNG[g]; ++m) {
      ++k;
      for (int c = 1; c <= M.NC; ++c) {
        for (int r = 1; r <= M.NC; ++r) M.HRES[g](r, c)[m] = E.FRES[k](r, c);
      }
    }
  }
}

void PASSBACKY() {
  FitModel& M = FITMODEL;
  const EnforcementStore& E = ENFORCE;
  for (int c = 1; c <= M.NC; ++c) {
    for (int r = 1; r <= M.NC; ++r) {
      for (int m = 1; m <= M.NPY; ++m) M.YRES(r, c)[m] = E.ERY[m](r, c);
      M.YD(r, c) = E.EDY(r, c);
    }
  }
}

void copyResidues(ResidueList& to, const ResidueList& from) {
  for (int m = 1; m <= ENFORCE.TOTORD; ++m) copyCorner(to[m], from[m], ENFORCE.NC);
}

} // namespace lcp
