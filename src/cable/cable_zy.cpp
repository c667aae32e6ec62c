// Z is the sum of the contributions between a conductor and remote earth: cable layers, inside of
// the pipe, pipe wall, earth return. The potential coefficients are the sum over the insulators on
// the same path; their inverse is Y / (j w C0). Only then are conductors grounded: their voltage is
// 0, so their rows are dropped from Y, and their currents are eliminated from Z.
//
// Bundles and transposed circuits of overhead conductors average voltages, so they are applied to
// potential coefficients: Re Y is inverted, folded, averaged and inverted back; the conductances,
// Im Y, are added unchanged.
#include "cable/cable_zy.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/stop.h"
#include "cable/cable_earth.h"
#include "cable/cable_store.h"
#include "cable/coax_layers.h"
#include "cable/conductance.h"
#include "cable/crossbonding.h"
#include "cable/layer_checks.h"
#include "cable/numbering.h"
#include "cable/pipe_blocks.h"
#include "cable/potential.h"
#include "cable/reduction.h"
#include "kernels/inversion.h"
#include "kernels/matrix_kernels.h"
#include "overhead/bundle_reduction.h"
#include "store/rundata.h"
#include "store/solvedata.h"

namespace lcp {

namespace {

void checkCount(int total) {
  if (total <= LDMAT) return;
  console::line("***** CORVO.EXE - ERROR *****");
  console::line("Total number of conductors (including conductive ");
  console::line("layers such as sheaths, armours) in the cable ");
  console::print("system is {}.Total number of conductors", total);
  console::print("can not be greater than the maximum allowed {}", LDMAT);
  stop(1);
}

void fillBlocks(double w, int n) {
  CableStore& S = CABLE;
  const CableNumbering& N = S.numbering;
  for (CableMatrix* M : {&S.A, &S.B, &S.C, &S.D, &S.P1, &S.P2, &S.P3, &S.G}) clear(*M, n);
  for (int c = 1; c <= RUNDATA.cable.NCABLE; ++c) {
    CBLAYZ(w, c, N.first(c) - 1, S.A);
    CBLAYP(c, N.first(c) - 1, S.P1, w);
  }
  if (N.pipeRow != 0) {
    PIPEZ(w, N, S.B);
    PIPEP(w, N, S.P2);
    PIPECZ(w, N, S.C);
    if (RUNDATA.cable.pipe.PIPEOUTL == 1) PIPECP(w, N, S.P3);
  }
  CBEARTH(w, N, S.D, S.Q);
  if (RUNDATA.cable.ANYOVHD) CBPOT(N, S.PA);
}

void sumBlocks(int n) {
  CableStore& S = CABLE;
  clear(S.ZT, n);
  for (const CableMatrix* M : {&S.A, &S.B, &S.C, &S.D}) add(S.ZT, *M, n);
  clear(S.PT, n);
  for (const CableMatrix* M : {&S.P1, &S.P2, &S.P3}) add(S.PT, *M, n);
  if (RUNDATA.cable.ANYOVHD) add(S.PT, S.PA, n);
  add(S.PT, S.Q, n);
}

// A bare conductor in the ground has no outer insulator and hence no value in PT: it gets a
// diagonal element of 1 and is decoupled.
void setBareConductors(int n) {
  CableStore& S = CABLE;
  for (int c = 1; c <= RUNDATA.cable.NCABLE; ++c) {
    const Cable& C = RUNDATA.cable.CB[c];
    if (C.CBNLAY % 2 == 0 || C.CBOVHD || C.CBPIPE != 0) continue;
    const int k = S.numbering.last(c);
    for (int i = 1; i <= n; ++i) S.PT(i, k) = S.PT(k, i) = 0.0;
    S.PT(k, k) = 1.0;
  }
}

// A bare pipe in the ground is excluded from the inverse; its row of Y is zero.
void invertPotentials(int n) {
  CableStore& S = CABLE;
  const PipeRecord& P = RUNDATA.cable.pipe;
  const bool barePipe = S.numbering.pipeRow != 0 && P.PIPEOUTL == 0 && !P.PIPEOVHD;
  if (barePipe) {
    for (int i = 1; i <= n; ++i) S.YN(i, n) = S.YN(n, i) = 0.0;
  }
  const int order = barePipe ? n - 1 : n;
  if (order > 0) INVCJD(S.YN, S.PT, order);
}

void addConductance(double w, int n) {
  CableStore& S = CABLE;
  const FitOptions& F = RUNDATA.fit;
  if (F.DCCORRF) {
    CBGSH(F.DIELM == 0 ? F.CSHUNTG : 0.0, S.numbering, S.G);
  } else {
    CBGAIR(S.numbering, S.G);
  }
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) {
      S.YN(i, j) -= Complex(0.0, S.G(i, j).imag() / (w * C0));
    }
  }
}

void foldOverheadConductors() {
  CableStore& S = CABLE;
  const CableOrder& O = S.order;
  const int m = O.equivalents;
  for (int j = 1; j <= O.kept; ++j) {
    for (int i = 1; i <= O.kept; ++i) S.YR(i, j) = S.YN(i, j).real();
  }
  INVCJD(S.YR, S.YR, O.kept);
  CBBUND(S.ZT, O);
  CBBUND(S.YR, O);
  if (SOLVEDATA.first.ISTATUS) cableCircuits(S.numbering, O, S.groups);
  TRANSAV(S.groups, S.ZT, m);
  TRANSAV(S.groups, S.YR, m);
  INVCJD(S.YR, S.YR, m);
  for (int j = 1; j <= m; ++j) {
    for (int i = 1; i <= m; ++i) S.YN(i, j).real(S.YR(i, j).real());
  }
}

void scaleResults(double w, int nc, CView YMAT, CView ZMAT, CView PMAT) {
  const CableStore& S = CABLE;
  CMATMUL(PMAT, S.YN, S.ZT, nc);
  const Complex y(0.0, w * C0);
  const Complex z(0.0, w * L0);
  for (int j = 1; j <= nc; ++j) {
    for (int i = 1; i <= nc; ++i) {
      YMAT(i, j) = y * S.YN(i, j);
      ZMAT(i, j) = z * S.ZT(i, j);
    }
  }
}

} // namespace

void CBZY(double f, CView YMAT, CView ZMAT, CView PMAT) {
  CableStore& S = CABLE;
  const double w = TWOPI * f;
  if (SOLVEDATA.first.ISTATUS) numberConductors(S.numbering);
  const int n = S.numbering.total;
  checkCount(n);
  if (SOLVEDATA.first.ISTATUS) checkLayers();
  fillBlocks(w, n);
  sumBlocks(n);
  setBareConductors(n);
  invertPotentials(n);
  addConductance(w, n);
  XBOND(S.ZT, S.YN, S.numbering);

  orderCableConductors(S.numbering, S.order);
  reorder(S.ZT, S.order, n);
  reorder(S.YN, S.order, n);
  CBKRON(S.ZT, S.order.kept, n);
  const int nc = S.order.equivalents;
  if (RUNDATA.cable.MIXEDOH) foldOverheadConductors();
  RUNDATA.setConductors(nc, RUNDATA.cable.MIXEDOH ? nc : n);
  scaleResults(w, nc, YMAT, ZMAT, PMAT);
}

} // namespace lcp
