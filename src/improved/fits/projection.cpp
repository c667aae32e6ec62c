// Weighted columns of all basis functions of all groups, each with the delay of its group, stand
// before those of the targets: brought to right angles they give the residues, and what is left of
// the targets.
#include "improved/fits/projection.h"

#include <algorithm>
#include <cmath>

namespace lcp {

namespace {

constexpr int SPREAD = 7; // columns by which elements are shifted that share them

ComplexCurve lag, curve;
PoleClasses CINDEX;

void formLag(const PoleTargets& T, double tau) {
  for (int k = 1; k <= T.NS; ++k) {
    const double turn = T.WFREQ[k] * tau;
    lag[k] = T.WFIT[k] * Complex(std::cos(turn), -std::sin(turn));
  }
}

void layColumns(const PoleTargets& T, const PoleFrame& frame, const PoleSet& S, int others) {
  Projection& P = PROJECTION;
  P.basis = (frame.constant && !frame.fixedAtZero ? 1 : 0) + (frame.proportion ? 1 : 0);
  for (int g = 1; g <= S.groups; ++g) P.basis += S.NH[g];
  P.targets = T.count;
  P.others = others;
  P.A.lay(T.NS, P.basis + P.targets + P.others);
}

// F times the lag into column c, less its value at zero when the model is tied there.
void putColumn(const PoleTargets& T, const PoleFrame& frame, const ComplexCurve& F, Complex atZero,
               int c) {
  Complex* a = PROJECTION.A.samples(c);
  if (!frame.fixedAtZero) atZero = 0;
  for (int k = 1; k <= T.NS; ++k) a[k - 1] = (F[k] - atZero) * lag[k];
}

void formBasis(const PoleTargets& T, const PoleFrame& frame, const PoleSet& S) {
  int c = 0;
  for (int g = 1; g <= S.groups; ++g) {
    classifyPoles(S.HPOLE[g], S.NH[g], CINDEX);
    formLag(T, S.TAU[g]);
    for (int m = 1; m <= S.NH[g]; ++m) {
      basisCurve(S.HPOLE[g], CINDEX, m, T.WFREQ, T.NS, curve);
      putColumn(T, frame, curve, basisFunction(S.HPOLE[g], CINDEX, m, 0.0), ++c);
    }
  }
  formLag(T, 0);
  if (frame.constant && !frame.fixedAtZero) {
    for (int k = 1; k <= T.NS; ++k) curve[k] = 1;
    putColumn(T, frame, curve, 0, ++c);
  }
  if (frame.proportion) {
    for (int k = 1; k <= T.NS; ++k) curve[k] = Complex(0, T.WFREQ[k]);
    putColumn(T, frame, curve, 0, ++c);
  }
}

} // namespace

double leaveOver(const PoleTargets& T, const PoleFrame& frame, const PoleSet& S, int others) {
  Projection& P = PROJECTION;
  layColumns(T, frame, S, others);
  formBasis(T, frame, S);
  for (int i = 1; i <= T.count; ++i)
    std::copy_n(const_cast<PoleTargets&>(T).F.column(i), P.A.ld, P.A.column(P.basis + i));
  const int all = P.basis + P.targets;
  bringToRightAngles(P.A, P.basis, all, P.triangle());
  double sum = 0;
  for (int i = P.basis + 1; i <= all; ++i) {
    double square = 0;
    formProducts(P.A, i, i, i, i, {&square, 1});
    sum += square;
  }
  return sum;
}

void putOther(const PoleTargets& T, const PoleFrame& frame, double tau, const ComplexCurve& F,
              Complex atZero, int c) {
  formLag(T, tau);
  putColumn(T, frame, F, atZero, PROJECTION.basis + PROJECTION.targets + c);
}

void takeBasisOutOfOthers() {
  Projection& P = PROJECTION;
  takePivotsOut(P.A, P.basis, P.firstOther(), P.firstOther() + P.others - 1, P.triangle());
}

RView formUnknowns(const PoleSet& S) {
  Projection& P = PROJECTION;
  const RView R = P.triangle(), X = Projection::matrix(P.X, P.basis + S.groups, P.targets);
  for (int i = 1; i <= P.targets; ++i) solveTriangle(R, P.basis, P.basis + i, X.column(i));
  int q = 0;
  for (int g = 1; g <= S.groups; ++g) {
    classifyPoles(S.HPOLE[g], S.NH[g], CINDEX);
    for (int i = 1; i <= P.targets; ++i) X(P.basis + g, i) = 0;
    for (int m = 1; m <= S.NH[g]; ++m) {
      ++q;
      const double s = CINDEX[m] == REALPOLE ? 1 : CINDEX[m] == PAIRFIRST ? 2 : 0;
      for (int i = 1; i <= P.targets; ++i) X(P.basis + g, i) += s * X(q, i);
    }
  }
  return X;
}

RView FINDRESIDUES(const PoleTargets& T, const PoleFrame& frame, const PoleSet& S) {
  leaveOver(T, frame, S, 0);
  return formUnknowns(S);
}

void beginTargets(PoleTargets& T, int NS, const FreqCurve& WFREQ, const FreqCurve& WFIT,
                  int elements) {
  T.NS = NS;
  T.count = std::min(elements, MOSTTARGETS);
  std::copy_n(WFREQ.steps, NS, T.WFREQ.steps);
  std::copy_n(WFIT.steps, NS, T.WFIT.steps);
  T.F.lay(NS, T.count);
  for (int i = 1; i <= T.count; ++i) std::fill_n(T.F.column(i), T.F.ld, 0.0);
}

void addTarget(PoleTargets& T, int element, const Complex* F, double atZero) {
  const int turn = (element - 1) / T.count;
  const int i = (element - 1 + SPREAD * turn) % T.count + 1;
  const double sign =
      (static_cast<unsigned>(element) * 2654435761U >> 16 & 1) != 0 && turn > 0 ? -1 : 1;
  Complex* to = T.F.samples(i);
  for (int k = 1; k <= T.NS; ++k) to[k - 1] += sign * T.WFIT[k] * (F[k - 1] - atZero);
}

} // namespace lcp
