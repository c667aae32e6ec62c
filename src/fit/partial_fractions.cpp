#include "fit/partial_fractions.h"

#include "base/console.h"
#include "base/register_widths.h"

#include <algorithm>

namespace lcp {

void classifyPoles(const PoleTable& P, int N, PoleClasses& CINDEX) {
  std::fill_n(CINDEX.data(), N, REALPOLE);
  for (int m = 1; m <= N; ++m) {
    if (P[m].imag() == 0) continue;
    if (m > 1 && CINDEX[m - 1] == PAIRFIRST) {
      CINDEX[m] = PAIRSECOND;
    } else {
      CINDEX[m] = PAIRFIRST;
      if (m < N) CINDEX[m + 1] = PAIRSECOND;
    }
  }
}

namespace {

Complex timesJ(Complex z) { return {-z.imag(), z.real()}; }

Complex pairSum(Complex s, Complex p) { return poleTerm(s, p) + poleTerm(s, std::conj(p)); }

Complex pairDifference(Complex s, Complex p) {
  return timesJ(poleTerm(s, p)) - timesJ(poleTerm(s, std::conj(p)));
}

} // namespace

Complex basisFunction(const PoleTable& P, const PoleClasses& CINDEX, int m, Complex s) {
  switch (CINDEX[m]) {
  case REALPOLE: return poleTerm(s, P[m]);
  case PAIRFIRST: return pairSum(s, P[m]);
  case PAIRSECOND: return pairDifference(s, P[m - 1]);
  default: console::line("ERROR 2"); return 0;
  }
}

LCP_WIDTHS("avx2")
void basisCurve(const PoleTable& P, const PoleClasses& CINDEX, int m, const FreqCurve& WFREQ,
                int NS, ComplexCurve& phi) {
  const Complex p = P[CINDEX[m] == PAIRSECOND ? m - 1 : m];
  switch (CINDEX[m]) {
  case REALPOLE: poleCurve(p, WFREQ, NS, phi); break;
  case PAIRFIRST:
    for (int k = 1; k <= NS; ++k) phi[k] = pairSum(Complex(0, WFREQ[k]), p);
    break;
  case PAIRSECOND:
    for (int k = 1; k <= NS; ++k) phi[k] = pairDifference(Complex(0, WFREQ[k]), p);
    break;
  default:
    console::line("ERROR 2");
    for (int k = 1; k <= NS; ++k) phi[k] = 0;
  }
}

void curveColumn(const ComplexCurve& F, const FreqCurve& WFIT, int NS, ColumnRows to) {
  for (int k = 1; k <= NS; ++k) {
    to.re[k - 1] = WFIT[k] * F[k].real();
    to.im[k - 1] = WFIT[k] * F[k].imag();
  }
}

void constantColumn(const FreqCurve& WFIT, int NS, ColumnRows to) {
  std::copy_n(WFIT.steps, NS, to.re);
  std::fill_n(to.im, NS, 0.0);
}

void proportionalColumn(const FreqCurve& WFREQ, const FreqCurve& WFIT, int NS, ColumnRows to) {
  std::fill_n(to.re, NS, 0.0);
  for (int k = 1; k <= NS; ++k) to.im[k - 1] = WFIT[k] * WFREQ[k];
}

Complex residueOf(const PoleClasses& CINDEX, int m, RConstView X, int c) {
  switch (CINDEX[m]) {
  case PAIRFIRST: return {X(m, c), X(m + 1, c)};
  case PAIRSECOND: return {X(m - 1, c), -X(m, c)};
  default: return {X(m, c), 0};
  }
}

void residuesOf(const PoleClasses& CINDEX, int N, RConstView X, int c, PoleTable& R) {
  for (int m = 1; m <= N; ++m) R[m] = residueOf(CINDEX, m, X, c);
}

Complex partialFractions(const PoleTable& P, const PoleTable& R, int N, double D, double E,
                         Complex s) {
  Complex F = D + s * E;
  for (int m = 1; m <= N; ++m) F += R[m] * poleTerm(s, P[m]);
  return F;
}

namespace {

void asymptotes(double D, double E, const FreqCurve& WFREQ, int NS, ComplexCurve& F) {
  for (int k = 1; k <= NS; ++k) F[k] = Complex(D, WFREQ[k] * E);
}

// F = F + R1 u1 + R2 u2 + ..., C terms per sweep.
template <int C> void addTerms(const Complex* R, const ComplexCurve* u, int NS, ComplexCurve& F) {
  Complex r[C];
  std::copy_n(R, C, r);
  for (int k = 0; k < NS; ++k) {
    Complex sum = F.steps[k];
    for (int c = 0; c < C; ++c) sum += r[c] * u[c].steps[k];
    F.steps[k] = sum;
  }
}

} // namespace

LCP_WIDTHS("avx2")
void partialFractionCurve(const PoleTable& P, const PoleTable& R, int N, double D, double E,
                          const FreqCurve& WFREQ, int NS, ComplexCurve& F) {
  asymptotes(D, E, WFREQ, NS, F);
  for (int m = 1; m <= N; ++m) {
    for (int k = 1; k <= NS; ++k) F[k] += R[m] * poleTerm(Complex(0, WFREQ[k]), P[m]);
  }
}

LCP_WIDTHS("avx2")
void poleCurve(Complex p, const FreqCurve& WFREQ, int NS, ComplexCurve& u) {
  for (int k = 1; k <= NS; ++k) u[k] = poleTerm(Complex(0, WFREQ[k]), p);
}

LCP_WIDTHS("avx2") void addTimes(Complex R, const ComplexCurve& u, int NS, ComplexCurve& F) {
  addTerms<1>(&R, &u, NS, F);
}

void poleCurves(const PoleTable& P, int N, const FreqCurve& WFREQ, int NS, PoleCurves& u) {
  for (int m = 1; m <= N; ++m) poleCurve(P[m], WFREQ, NS, u[m]);
}

LCP_WIDTHS("avx2")
void partialFractionCurve(const PoleCurves& u, const PoleTable& R, int N, double D, double E,
                          const FreqCurve& WFREQ, int NS, ComplexCurve& F) {
  constexpr int TERMS = 4;
  asymptotes(D, E, WFREQ, NS, F);
  int m = 1;
  for (; m + TERMS - 1 <= N; m += TERMS) addTerms<TERMS>(&R[m], &u[m], NS, F);
  for (; m <= N; ++m) addTerms<1>(&R[m], &u[m], NS, F);
}

} // namespace lcp
