// A pole more is looked for among real poles and pairs at places spread over the frequencies, in
// each group: the one whose columns, added to those of the set, take most off what is left
// (orthogonal matching pursuit). What a pole is worth follows from its unknowns x and the inverse V
// of B^T B: the squares without it are x^2 / V more, with blocks of two for a pair.
#include "improved/fits/pole_choice.h"

#include <algorithm>
#include <cmath>

namespace lcp {

namespace {

MappedArray<double>& PRODUCTS = bigStore<MappedArray<double>>();

ComplexCurve curve;
PoleClasses CINDEX;

constexpr double BROAD = 0.4; // imaginary over real part of what becomes of them
constexpr int PLACES = 16;    // where a pole is tried
constexpr double WIDTH = 0.3; // real over imaginary part of a pair that is tried

double placeOf(const PoleTargets& T, int i) {
  return T.WFREQ[1] * std::pow(T.WFREQ[T.NS] / T.WFREQ[1], (i - 0.5) / PLACES);
}

// Three columns for each place and group: a real pole, and both of a pair.
void formTrials(const PoleTargets& T, const PoleFrame& frame, const PoleSet& S) {
  static PoleTable P;
  int c = 0;
  for (int g = 1; g <= S.groups; ++g) {
    for (int i = 1; i <= PLACES; ++i) {
      const double w = placeOf(T, i);
      P[1] = -w;
      P[2] = Complex(-WIDTH * w, w);
      P[3] = std::conj(P[2]);
      classifyPoles(P, 3, CINDEX);
      for (int m = 1; m <= 3; ++m) {
        basisCurve(P, CINDEX, m, T.WFREQ, T.NS, curve);
        putOther(T, frame, S.TAU[g], curve, basisFunction(P, CINDEX, m, 0.0), ++c);
      }
    }
  }
}

// Squares that the columns c and, of a pair, c + 1 of the trials take off.
double squaresOff(const PoleTargets& T, int c, bool pair, RConstView G) {
  double D[4];
  const int first = PROJECTION.firstOther() + c - 1;
  formProducts(PROJECTION.A, first, first + (pair ? 1 : 0), first, first + (pair ? 1 : 0), {D, 2});
  double sum = 0;
  const double det = pair ? D[0] * D[3] - D[1] * D[1] : D[0];
  if (!(det > 0)) return 0;
  for (int i = 1; i <= T.count; ++i) {
    const double a = G(c, i), b = pair ? G(c + 1, i) : 0;
    sum += pair ? (a * a * D[3] - 2 * a * b * D[1] + b * b * D[0]) / det : a * a / det;
  }
  return sum;
}

// Inverse of the triangle, a row an unknown.
RView inverseTriangle(RConstView R) {
  const RView V = Projection::matrix(PRODUCTS, PROJECTION.basis, PROJECTION.basis);
  for (int j = 1; j <= PROJECTION.basis; ++j) {
    for (int i = PROJECTION.basis; i >= 1; --i) {
      double sum = i == j ? 1 : 0;
      for (int m = i + 1; m <= j; ++m) sum -= R(m, i) * V(m, j);
      V(i, j) = i > j || R(i, i) == 0 ? 0 : sum / R(i, i);
    }
  }
  return V;
}

double lossOf(RConstView V, RConstView X, int q, bool pair) {
  double a = 0, b = 0, c = 0, sum = 0;
  for (int j = q; j <= PROJECTION.basis; ++j) {
    a += V(q, j) * V(q, j);
    if (!pair) continue;
    b += V(q, j) * V(q + 1, j);
    c += V(q + 1, j) * V(q + 1, j);
  }
  const double det = pair ? a * c - b * b : a;
  if (!(det > 0)) return 0;
  for (int i = 1; i <= PROJECTION.targets; ++i) {
    const double x = X(q, i), y = pair ? X(q + 1, i) : 0;
    sum += pair ? (x * x * c - 2 * x * y * b + y * y * a) / det : x * x / det;
  }
  return pair ? sum / 2 : sum;
}

} // namespace

bool ADDPOLE(const PoleTargets& T, const PoleFrame& frame, int limit, PoleSet& S) {
  const int trials = 3 * PLACES * S.groups;
  leaveOver(T, frame, S, trials);
  formTrials(T, frame, S);
  takeBasisOutOfOthers();
  Projection& Q = PROJECTION;
  const RView G = Projection::matrix(PRODUCTS, trials, Q.targets);
  formProducts(Q.A, Q.firstOther(), Q.firstOther() + trials - 1, Q.basis + 1, Q.basis + Q.targets,
               G);
  double most = 0;
  int group = 0, place = 0;
  bool pair = false;
  for (int g = 1; g <= S.groups; ++g) {
    for (int i = 1; i <= PLACES; ++i) {
      const int c = 3 * ((g - 1) * PLACES + i - 1) + 1;
      for (const bool two : {false, true}) {
        if (S.NH[g] + (two ? 2 : 1) > limit) continue;
        const double off = squaresOff(T, two ? c + 1 : c, two, G) / (two ? 2 : 1);
        if (!(off > most)) continue;
        most = off;
        group = g;
        place = i;
        pair = two;
      }
    }
  }
  if (group == 0) return false;
  const double w = placeOf(T, place);
  PoleTable& P = S.HPOLE[group];
  int& N = S.NH[group];
  P[++N] = pair ? Complex(-WIDTH * w, w) : Complex(-w);
  if (!pair) return true;
  P[N + 1] = std::conj(P[N]);
  ++N;
  return true;
}

void TAKEPOLEOUT(PoleSet& S, int g, int m) {
  PoleTable& P = S.HPOLE[g];
  std::copy(P.data() + m, P.data() + S.NH[g], P.data() + m - 1);
  --S.NH[g];
}

bool PAIRUP(PoleSet& S, double near) {
  bool any = false;
  for (int g = 1; g <= S.groups; ++g) {
    PoleTable& P = S.HPOLE[g];
    for (int j = S.NH[g]; j > 1; --j) {
      int i = P[j].imag() != 0 ? 0 : j - 1;
      while (i > 0 && !(P[i].imag() == 0 && P[i].real() / P[j].real() < near &&
                        P[j].real() / P[i].real() < near))
        --i;
      if (i == 0) continue;
      const double a = std::sqrt(P[i].real() * P[j].real());
      TAKEPOLEOUT(S, g, j);
      TAKEPOLEOUT(S, g, i);
      P[++S.NH[g]] = Complex(-a, BROAD * a);
      P[++S.NH[g]] = Complex(-a, -BROAD * a);
      j = std::min(j, S.NH[g] - 1);
      any = true;
    }
  }
  return any;
}

int RANKPOLES(const PoleTargets& T, const PoleFrame& frame, const PoleSet& S, PoleLosses& losses) {
  leaveOver(T, frame, S, 0);
  const RView X = formUnknowns(S);
  const RView V = inverseTriangle(PROJECTION.triangle());
  int count = 0, q = 0;
  for (int g = 1; g <= S.groups; ++g) {
    classifyPoles(S.HPOLE[g], S.NH[g], CINDEX);
    for (int m = 1; m <= S.NH[g]; ++m) {
      ++q;
      if (CINDEX[m] == PAIRSECOND) continue;
      losses[++count] = {g, m, lossOf(V, X, q, CINDEX[m] == PAIRFIRST)};
    }
  }
  std::stable_sort(losses.data(), losses.data() + count,
                   [](const PoleLoss& a, const PoleLoss& b) { return a.loss < b.loss; });
  return count;
}

} // namespace lcp
