// Overhead line constants in normalised form, in which geometry enters as plain logarithms:
//   Zn = Z / (j w L0)          Zn(i, i) = log(2 h / r) + GMUR E_ii + Zi / (j w L0)
//                              Zn(i, j) = 1/2 log(D2 / d2) + GMUR E_ij, or the exact earth term
//   Pn = inverse of Y / (j w C0), the same logarithms alone (Maxwell's potential coefficients)
//
// Here h is the average height, r the radius, D2 and d2 are the squared distances from conductor i
// to the image of j and to j itself, E is the earth return and Zi the internal impedance. The
// matrices are built over all physical conductors, reduced to the equivalent ones and averaged over
// transposed circuits.
#include "overhead/overhead_zy.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/solve_error.h"
#include "kernels/matrix_kernels.h"
#include "overhead/bundle_reduction.h"
#include "overhead/earth_return.h"
#include "overhead/exact_earth.h"
#include "overhead/internal_impedance.h"
#include "overhead/overhead_store.h"
#include "overhead/transposition.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace lcp {

namespace {

// A conductor in the ground or without radius has no logarithm, and its earth-return integral
// diverges.
void checkConductor(int i) {
  const ConductorTable& C = RUNDATA.cond;
  const std::string name = fmt::format("Conductor at X = {:.4g} m, Y = {:.4g} m", C.CX[i], C.CY[i]);
  if (C.CSTRND[i] && !C.CTUBE[i]) checkStrands(name, {C.CSTRAD[i], C.CNOUT[i], C.CNTOT[i]});
  if (C.CYAVG[i] > 0.0 && C.CRAD[i] > 0.0) return;
  console::openStars();
  console::print("{}:", name);
  console::print("Average Height ({:.4g} m) and Radius ({:.4g} m) Must be > 0!", C.CYAVG[i],
                 C.CRAD[i]);
  stopInStars();
}

// Maps the matrices for n conductors.
void mapMatrices(int n) {
  OverheadStore& S = OVERHEAD;
  for (ConductorMatrix* M : {&S.PGEO, &S.PRED, &S.PINV, &S.ZWORK, &S.PZWORK}) M->map(n);
  S.DINV.map(n);
}

// Logarithms and reciprocal squared image distances of all pairs of physical conductors.
void prepareGeometry(int n) {
  const ConductorTable& C = RUNDATA.cond;
  OverheadStore& S = OVERHEAD;
  for (int j = 1; j <= n; ++j) {
    const double image = 2.0 * C.CYAVG[j];
    S.PGEO(j, j) = std::log(image / C.CRAD[j]);
    S.DINV(j, j) = 1.0 / (image * image);
    for (int i = 1; i < j; ++i) {
      const double x = C.CX[i] - C.CX[j];
      const double above = C.CYAVG[i] + C.CYAVG[j];
      const double beside = C.CYAVG[i] - C.CYAVG[j];
      const double D2 = above * above + x * x;
      const double d2 = x * x + beside * beside;
      S.DINV(i, j) = S.DINV(j, i) = 1.0 / D2;
      S.PGEO(i, j) = S.PGEO(j, i) = 0.5 * std::log(D2 / d2);
    }
  }
}

// Potential coefficients of the equivalent conductors, and their inverse.
void prepareAdmittance(int n, int nc) {
  OverheadStore& S = OVERHEAD;
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) S.PRED(i, j) = S.PGEO(i, j);
  }
  BUNDRED(S.PRED, n);
  TRANSAV(S.groups, S.PRED, nc);
  for (int j = 1; j <= nc; ++j) {
    for (int i = 1; i <= nc; ++i) S.PINV(i, j) = S.PRED(i, j);
  }
  SYMINV(S.PINV, nc);
}

// Earth term of Zn.
Complex earthOf(int i, int j) {
  if (RUNDATA.numerics.IMPROVEDEARTH) return EXACTTERM(i, j);
  return RUNDATA.ground.GMUR * EARTHTERM(i, j);
}

void fillImpedance(double w, int n) {
  OverheadStore& S = OVERHEAD;
  S.DEPTH = GRDDEPTH(w);
  S.DEPTHINV = 1.0 / S.DEPTH;
  if (RUNDATA.numerics.IMPROVEDEARTH) SOLVEEXACT(w);
  const Complex normalise(0.0, -TWOPI / (w * MU0));
  for (int i = 1; i <= n; ++i) {
    S.ZWORK(i, i) = S.PGEO(i, i) + earthOf(i, i) + ZINT(w, i) * normalise;
    for (int j = i + 1; j <= n; ++j) {
      S.ZWORK(j, i) = S.ZWORK(i, j) = S.PGEO(j, i) + earthOf(i, j);
    }
  }
}

// Conductance is only on the diagonal of Y, as the imaginary part of Y / (j w C0).
void setConductance(double w, int nc) {
  for (int i = 1; i <= nc; ++i) {
    OVERHEAD.PINV(i, i).imag(-RUNDATA.cond.CSHUNT[i] / (w * C0));
  }
}

// Row i of PINV ZWORK as a sum of columns of ZWORK, both symmetric. PINV is real except on its
// diagonal, so the sum runs over contiguous real numbers.
void productRow(int i, int nc) {
  OverheadStore& S = OVERHEAD;
  double row[2 * LDMAT] = {};
  for (int k = 1; k <= nc; ++k) {
    const double factor = S.PINV(k, i).real();
    const double* z = reinterpret_cast<const double*>(S.ZWORK.view().column(k));
    for (int m = 0; m < 2 * nc; ++m) row[m] += factor * z[m];
  }
  const Complex conductance(0.0, S.PINV(i, i).imag());
  for (int j = 1; j <= nc; ++j) {
    S.PZWORK(i, j) = Complex(row[2 * j - 2], row[2 * j - 1]) + conductance * S.ZWORK(i, j);
  }
}

// Forms PINV ZWORK. With eliminated conductors among the first nc, ZWORK is not symmetric.
void formProduct(int n, int nc) {
  OverheadStore& S = OVERHEAD;
  if (leadingKept(n) < nc) {
    CMATMUL(S.PZWORK, S.PINV, S.ZWORK, nc);
    return;
  }
  for (int i = 1; i <= nc; ++i) productRow(i, nc);
}

// j x value; adding 0 prevents negative zeros.
Complex timesJ(double x, Complex value) { return {0.0 - x * value.imag(), x * value.real()}; }

} // namespace

void OHZY(double f, CView YMAT, CView ZMAT, CView PMAT) {
  OverheadStore& S = OVERHEAD;
  const int n = RUNDATA.cond.NCOND;
  const int nc = RUNDATA.line.NC;
  const double w = TWOPI * f;
  const bool first = SOLVEDATA.first.ISTATUS;
  if (first) {
    for (int i = 1; i <= n; ++i) checkConductor(i);
    mapMatrices(std::max(n, nc));
    prepareGeometry(n);
    if (RUNDATA.numerics.IMPROVEDEARTH) PREPAREEXACT(n);
    SPLITCIRC(S.groups, nc);
  }
  fillImpedance(w, n);
  BUNDRED(S.ZWORK, n);
  TRANSAV(S.groups, S.ZWORK, nc);
  if (first) prepareAdmittance(n, nc);
  setConductance(w, nc);
  formProduct(n, nc);
  for (int j = 1; j <= nc; ++j) {
    for (int i = 1; i <= nc; ++i) {
      YMAT(i, j) = timesJ(w * C0, S.PINV(i, j));
      ZMAT(i, j) = timesJ(w * L0, S.ZWORK(i, j));
      PMAT(i, j) = S.PZWORK(i, j);
    }
  }
}

} // namespace lcp
