// With the basis B of all poles of all groups, weighted, and the targets F, the residues are
// x = B+ F and what is left r = P F, P the projection at right angles to B. For a parameter t of
// pole or delay, with the term of the second derivative left out (Kaufman),
//
//   dr/dt = -P dB/dt x
//
// dB/dt has few columns: with phi a basis function of group g, E = exp(-s tau_g),
//
//   real pole a      t = ln(-a)     d phi/dt = a / (s - a)^2 E
//   pair p = al+-jb  t = ln(-al), ln(b)   from 1/(s - p)^2 E and its like with p*
//   delay            -s x phi E: s / (s - p) = 1 + p / (s - p), of which the second part is in the
//                    span of B, so that P leaves one column E for all poles of the group
//
// A step solves (J^T J + lambda diag) d = J^T r. Poles stay stable as logarithms.
#include "improved/fits/moved_poles.h"

#include "fit/partial_fractions.h"

#include <algorithm>
#include <cmath>

namespace lcp {

namespace {

constexpr double FIRSTLAMBDA = 1e-2;
constexpr double LESSLAMBDA = 0.2, MORELAMBDA = 5, MOSTLAMBDA = 1e4;
constexpr double LONGEST = 0.5; // step of a logarithm
constexpr double ENOUGH = 2e-3; // relative gain of a step that is not worth another
constexpr int IDLE = 2;         // such steps in a row
constexpr double FARBELOW = 0.05,
                 FARABOVE = 20; // of the frequencies of the samples: bounds of poles
constexpr double THIN = 1e-3;   // real over imaginary part of a pair, at least
constexpr double DOUBLE = 0.1;  // imaginary over real part

// A derivative column times an unknown of the basis times a factor: a part of dB/dt x.
struct Term {
  int column;  // of the derivatives, from 1
  int unknown; // behind those of the basis one for each group, of its delay
  double factor;
};

struct Parameter {
  int terms;
  Term term[2];
  int g, m;  // m 0: the delay of the group
  bool imag; // of a pair
};

struct Work {
  SampleColumns A;
  MappedArray<double> R, X, S, C, J, G, step, diagonal;
  MappedArray<Parameter> parameter;
  int basis, targets, derivatives, parameters;
  double unit; // of a delay, s
};
Work& WORK = bigStore<Work>();
PoleSet& TRIAL = bigStore<PoleSet>();

ComplexCurve lag, curve;
PoleClasses CINDEX;

RView matrix(MappedArray<double>& store, int rows, int columns) {
  return {store.room(static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns)), rows};
}

void formLag(const PoleTargets& T, double tau) {
  for (int k = 1; k <= T.NS; ++k) {
    const double turn = T.WFREQ[k] * tau;
    lag[k] = T.WFIT[k] * Complex(std::cos(turn), -std::sin(turn));
  }
}

// Room for the columns of the set, and behind them for so many others where those of derivatives
// are not wanted.
void layColumns(const PoleTargets& T, const PoleFrame& frame, const PoleSet& S, int others) {
  WORK.basis = (frame.constant && !frame.fixedAtZero ? 1 : 0) + (frame.proportion ? 1 : 0);
  WORK.derivatives = 0;
  for (int g = 1; g <= S.groups; ++g) WORK.derivatives += S.NH[g] + (frame.delays ? 1 : 0);
  for (int g = 1; g <= S.groups; ++g) WORK.basis += S.NH[g];
  WORK.targets = T.count;
  WORK.derivatives = std::max(WORK.derivatives, others);
  WORK.A.lay(T.NS, WORK.basis + WORK.targets + WORK.derivatives);
}

// curve times the lag into column c, less its value at zero when the model is tied there.
void putColumn(const PoleTargets& T, const PoleFrame& frame, Complex atZero, int c) {
  Complex* a = WORK.A.samples(c);
  if (!frame.fixedAtZero) atZero = 0;
  for (int k = 1; k <= T.NS; ++k) a[k - 1] = (curve[k] - atZero) * lag[k];
}

void formBasis(const PoleTargets& T, const PoleFrame& frame, const PoleSet& S) {
  int c = 0;
  for (int g = 1; g <= S.groups; ++g) {
    classifyPoles(S.HPOLE[g], S.NH[g], CINDEX);
    formLag(T, S.TAU[g]);
    for (int m = 1; m <= S.NH[g]; ++m) {
      basisCurve(S.HPOLE[g], CINDEX, m, T.WFREQ, T.NS, curve);
      putColumn(T, frame, basisFunction(S.HPOLE[g], CINDEX, m, 0.0), ++c);
    }
  }
  formLag(T, 0);
  if (frame.constant && !frame.fixedAtZero) {
    for (int k = 1; k <= T.NS; ++k) curve[k] = 1;
    putColumn(T, frame, 0, ++c);
  }
  if (frame.proportion) {
    for (int k = 1; k <= T.NS; ++k) curve[k] = Complex(0, T.WFREQ[k]);
    putColumn(T, frame, 0, ++c);
  }
}

// What is left of the targets, squared, over the set.
double leaveOver(const PoleTargets& T, const PoleFrame& frame, const PoleSet& S, int others = 0) {
  layColumns(T, frame, S, others);
  formBasis(T, frame, S);
  for (int i = 1; i <= T.count; ++i)
    std::copy_n(const_cast<PoleTargets&>(T).F.column(i), WORK.A.ld, WORK.A.column(WORK.basis + i));
  const int all = WORK.basis + WORK.targets;
  bringToRightAngles(WORK.A, WORK.basis, all, matrix(WORK.R, all + WORK.derivatives, WORK.basis));
  double sum = 0;
  for (int i = WORK.basis + 1; i <= all; ++i) {
    double square = 0;
    formProducts(WORK.A, i, i, i, i, {&square, 1});
    sum += square;
  }
  return sum;
}

// Second powers: 1 / (s - p)^2 and its like with p*, or times j and -j.
void squaredCurve(const PoleTargets& T, Complex p, int kind, Complex& atZero) {
  const auto value = [&](Complex s) {
    const Complex u = poleTerm(s, p), v = poleTerm(s, std::conj(p));
    if (kind == REALPOLE) return p.real() * u * u;
    const Complex plus = u * u, minus = v * v;
    return kind == PAIRFIRST ? plus + minus : Complex(0, 1) * (plus - minus);
  };
  for (int k = 1; k <= T.NS; ++k) curve[k] = value(Complex(0, T.WFREQ[k]));
  atZero = value(0);
}

void addParameter(const Parameter& p) { WORK.parameter.numbers[WORK.parameters++] = p; }

// Parameters of pole m, whose unknown and column of derivatives are those, and their columns.
void addPole(const PoleTargets& T, const PoleFrame& frame, const PoleSet& S, int g, int m, int q) {
  const Complex p = S.HPOLE[g][m];
  const double a = p.real(), b = p.imag();
  Complex atZero;
  squaredCurve(T, CINDEX[m] == PAIRSECOND ? std::conj(p) : p, CINDEX[m], atZero);
  putColumn(T, frame, atZero, WORK.basis + WORK.targets + q);
  if (CINDEX[m] == REALPOLE) addParameter({1, {{q, q, 1}, {}}, g, m, false});
  if (CINDEX[m] != PAIRFIRST) return;
  addParameter({2, {{q, q, a}, {q + 1, q + 1, a}}, g, m, false});
  addParameter({2, {{q + 1, q, b}, {q, q + 1, -b}}, g, m, true});
}

void addDelay(const PoleTargets& T, int g, int column, int groupUnknown) {
  for (int k = 1; k <= T.NS; ++k) curve[k] = 1;
  putColumn(T, {}, 0, WORK.basis + WORK.targets + column);
  addParameter({1, {{column, groupUnknown, -WORK.unit}, {}}, g, 0, false});
}

void formDerivatives(const PoleTargets& T, const PoleFrame& frame, const PoleSet& S) {
  int q = 0, poles = 0;
  for (int g = 1; g <= S.groups; ++g) poles += S.NH[g];
  WORK.parameter.room(static_cast<std::size_t>(poles + S.groups));
  WORK.parameters = 0;
  WORK.unit = 1 / std::max(T.WFREQ[1], T.WFREQ[T.NS]);
  for (int g = 1; g <= S.groups; ++g) {
    classifyPoles(S.HPOLE[g], S.NH[g], CINDEX);
    formLag(T, S.TAU[g]);
    for (int m = 1; m <= S.NH[g]; ++m) addPole(T, frame, S, g, m, ++q);
    if (frame.delays) addDelay(T, g, poles + g, WORK.basis + g);
  }
  const int first = WORK.basis + WORK.targets + 1, last = first + WORK.derivatives - 1;
  takePivotsOut(WORK.A, WORK.basis, first, last,
                matrix(WORK.R, WORK.basis + WORK.targets + WORK.derivatives, WORK.basis));
}

// Unknowns of the basis for all targets, behind them what the delay of each group multiplies.
RView formUnknowns(const PoleSet& S) {
  const RView R = matrix(WORK.R, WORK.basis + WORK.targets + WORK.derivatives, WORK.basis);
  const RView X = matrix(WORK.X, WORK.basis + S.groups, WORK.targets);
  for (int i = 1; i <= WORK.targets; ++i) solveTriangle(R, WORK.basis, WORK.basis + i, X.column(i));
  int q = 0;
  for (int g = 1; g <= S.groups; ++g) {
    classifyPoles(S.HPOLE[g], S.NH[g], CINDEX);
    for (int i = 1; i <= WORK.targets; ++i) X(WORK.basis + g, i) = 0;
    for (int m = 1; m <= S.NH[g]; ++m) {
      ++q;
      const double s = CINDEX[m] == REALPOLE ? 1 : CINDEX[m] == PAIRFIRST ? 2 : 0;
      for (int i = 1; i <= WORK.targets; ++i) X(WORK.basis + g, i) += s * X(q, i);
    }
  }
  return X;
}

RView productsOfRows(RView X, int rows, int columns) {
  const RView C = matrix(WORK.C, rows, rows);
  for (int b = 1; b <= rows; ++b) {
    for (int a = 1; a <= rows; ++a) C(a, b) = 0;
  }
  for (int i = 1; i <= columns; ++i) {
    for (int b = 1; b <= rows; ++b) {
      const double f = X(b, i);
      for (int a = b; a <= rows; ++a) C(a, b) += f * X(a, i);
    }
  }
  for (int b = 1; b <= rows; ++b) {
    for (int a = b + 1; a <= rows; ++a) C(b, a) = C(a, b);
  }
  return C;
}

// J^T J and J^T r of the set whose basis and targets stand at right angles.
void formNormal(const PoleTargets& T, const PoleFrame& frame, const PoleSet& S) {
  formDerivatives(T, frame, S);
  const int first = WORK.basis + WORK.targets + 1, nd = WORK.derivatives, n = WORK.parameters;
  const RView X = formUnknowns(S);
  const RView C = productsOfRows(X, WORK.basis + S.groups, WORK.targets);
  const RView D = matrix(WORK.S, nd, nd), G = matrix(WORK.G, nd, WORK.targets);
  formProducts(WORK.A, first, first + nd - 1, first, first + nd - 1, D);
  formProducts(WORK.A, first, first + nd - 1, WORK.basis + 1, WORK.basis + WORK.targets, G);
  const RView J = matrix(WORK.J, n, n + 1);
  const Parameter* p = WORK.parameter.numbers;
  for (int k = 1; k <= n; ++k) {
    for (int j = 1; j <= n; ++j) {
      double sum = 0;
      for (int s = 0; s < p[j - 1].terms; ++s) {
        for (int t = 0; t < p[k - 1].terms; ++t) {
          const Term &a = p[j - 1].term[s], &b = p[k - 1].term[t];
          sum += a.factor * b.factor * D(a.column, b.column) * C(a.unknown, b.unknown);
        }
      }
      J(j, k) = sum;
    }
    double sum = 0;
    for (int t = 0; t < p[k - 1].terms; ++t) {
      const Term& a = p[k - 1].term[t];
      for (int i = 1; i <= WORK.targets; ++i) sum += a.factor * G(a.column, i) * X(a.unknown, i);
    }
    J(k, n + 1) = sum;
  }
}

// The step for a damping lambda; false when there is none.
bool solveStep(double lambda) {
  static MappedArray<double>& copy = bigStore<MappedArray<double>>();
  const int n = WORK.parameters;
  const RView J = matrix(WORK.J, n, n + 1), M = matrix(copy, n, n);
  double* d = WORK.diagonal.room(static_cast<std::size_t>(n));
  double* x = WORK.step.room(static_cast<std::size_t>(n));
  double most = 0;
  for (int j = 1; j <= n; ++j) most = std::max(most, J(j, j));
  for (int j = 1; j <= n; ++j) {
    std::copy_n(J.column(j), n, M.column(j));
    d[j - 1] = lambda * J(j, j) + 1e-12 * most;
    x[j - 1] = J(j, n + 1);
  }
  return solvePositive(M, d, x, n);
}

double limited(double step) { return std::clamp(step, -LONGEST, LONGEST); }

// A pair that is thin swings between the samples, one that is nearly double has huge residues.
void bound(Complex& p, double low, double high) {
  p *= std::clamp(std::abs(p), low, high) / std::abs(p);
  if (p.imag() == 0) return;
  const double a = std::max(-p.real(), THIN * std::fabs(p.imag()));
  p = Complex(-a, std::copysign(std::max(std::fabs(p.imag()), DOUBLE * a), p.imag()));
}

void takeStep(const PoleTargets& T, const PoleSet& from, PoleSet& to) {
  const double low = FARBELOW * std::min(T.WFREQ[1], T.WFREQ[T.NS]), high = FARABOVE / WORK.unit;
  to = from;
  for (int i = 0; i < WORK.parameters; ++i) {
    const Parameter& p = WORK.parameter.numbers[i];
    const double step = WORK.step.numbers[i];
    if (p.m == 0) {
      to.TAU[p.g] = std::max(to.TAU[p.g] + WORK.unit * limited(step), 0.0);
      continue;
    }
    Complex& pole = to.HPOLE[p.g][p.m];
    const double factor = std::exp(limited(step));
    if (p.imag) {
      pole.imag(pole.imag() * factor);
    } else {
      pole.real(pole.real() * factor);
    }
    const bool last = pole.imag() == 0 || p.imag;
    if (last) bound(pole, low, high);
    if (p.imag) to.HPOLE[p.g][p.m + 1] = std::conj(pole);
  }
}

// --- poles that come and go

constexpr double NEAR = 1.6;  // quotient of two real poles that may be a pair
constexpr double BROAD = 0.4; // imaginary over real part of what becomes of them
constexpr int PLACES = 16;    // where a pole is tried
constexpr double WIDTH = 0.3; // real over imaginary part of a pair that is tried

double placeOf(const PoleTargets& T, int i) {
  return T.WFREQ[1] * std::pow(T.WFREQ[T.NS] / T.WFREQ[1], (i - 0.5) / PLACES);
}

// Three columns for each place and group: a real pole, and both of a pair.
void formTrials(const PoleTargets& T, const PoleFrame& frame, const PoleSet& S) {
  static PoleTable P;
  int c = WORK.basis + WORK.targets;
  for (int g = 1; g <= S.groups; ++g) {
    formLag(T, S.TAU[g]);
    for (int i = 1; i <= PLACES; ++i) {
      const double w = placeOf(T, i);
      P[1] = -w;
      P[2] = Complex(-WIDTH * w, w);
      P[3] = std::conj(P[2]);
      classifyPoles(P, 3, CINDEX);
      for (int m = 1; m <= 3; ++m) {
        basisCurve(P, CINDEX, m, T.WFREQ, T.NS, curve);
        putColumn(T, frame, basisFunction(P, CINDEX, m, 0.0), ++c);
      }
    }
  }
}

// Squares that the columns c and, of a pair, c + 1 of the trials take off.
double squaresOff(const PoleTargets& T, int c, bool pair, RConstView G) {
  double D[4];
  const int first = WORK.basis + WORK.targets + c;
  formProducts(WORK.A, first, first + (pair ? 1 : 0), first, first + (pair ? 1 : 0), {D, 2});
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
  const RView V = matrix(WORK.S, WORK.basis, WORK.basis);
  for (int j = 1; j <= WORK.basis; ++j) {
    for (int i = WORK.basis; i >= 1; --i) {
      double sum = i == j ? 1 : 0;
      for (int m = i + 1; m <= j; ++m) sum -= R(m, i) * V(m, j);
      V(i, j) = i > j || R(i, i) == 0 ? 0 : sum / R(i, i);
    }
  }
  return V;
}

double lossOf(RConstView V, RConstView X, int q, bool pair) {
  double a = 0, b = 0, c = 0, sum = 0;
  for (int j = q; j <= WORK.basis; ++j) {
    a += V(q, j) * V(q, j);
    if (!pair) continue;
    b += V(q, j) * V(q + 1, j);
    c += V(q + 1, j) * V(q + 1, j);
  }
  const double det = pair ? a * c - b * b : a;
  if (!(det > 0)) return 0;
  for (int i = 1; i <= WORK.targets; ++i) {
    const double x = X(q, i), y = pair ? X(q + 1, i) : 0;
    sum += pair ? (x * x * c - 2 * x * y * b + y * y * a) / det : x * x / det;
  }
  return pair ? sum / 2 : sum;
}

} // namespace

RView FINDRESIDUES(const PoleTargets& T, const PoleFrame& frame, const PoleSet& S) {
  leaveOver(T, frame, S);
  return formUnknowns(S);
}

bool ADDPOLE(const PoleTargets& T, const PoleFrame& frame, int limit, PoleSet& S) {
  const int trials = 3 * PLACES * S.groups;
  leaveOver(T, frame, S, trials);
  formTrials(T, frame, S);
  const int first = WORK.basis + WORK.targets + 1;
  takePivotsOut(WORK.A, WORK.basis, first, first + trials - 1,
                matrix(WORK.R, WORK.basis + WORK.targets + WORK.derivatives, WORK.basis));
  const RView G = matrix(WORK.G, trials, WORK.targets);
  formProducts(WORK.A, first, first + trials - 1, WORK.basis + 1, WORK.basis + WORK.targets, G);
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

bool PAIRUP(PoleSet& S) {
  bool any = false;
  for (int g = 1; g <= S.groups; ++g) {
    PoleTable& P = S.HPOLE[g];
    for (int j = S.NH[g]; j > 1; --j) {
      int i = P[j].imag() != 0 ? 0 : j - 1;
      while (i > 0 && !(P[i].imag() == 0 && P[i].real() / P[j].real() < NEAR &&
                        P[j].real() / P[i].real() < NEAR))
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
  leaveOver(T, frame, S);
  const RView X = formUnknowns(S);
  const RView V =
      inverseTriangle(matrix(WORK.R, WORK.basis + WORK.targets + WORK.derivatives, WORK.basis));
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
  const int i = (element - 1 + 7 * turn) % T.count + 1;
  const double sign = (element * 2654435761u >> 16 & 1) != 0 && turn > 0 ? -1 : 1;
  Complex* to = T.F.samples(i);
  for (int k = 1; k <= T.NS; ++k) to[k - 1] += sign * T.WFIT[k] * (F[k - 1] - atZero);
}

double MOVEPOLES(const PoleTargets& T, const PoleFrame& frame, int steps, PoleSet& S) {
  double best = leaveOver(T, frame, S), lambda = FIRSTLAMBDA;
  int idle = 0;
  for (int step = 1; step <= steps && idle < IDLE && best > 0; ++step) {
    formNormal(T, frame, S);
    bool gained = false;
    for (; !gained && lambda < MOSTLAMBDA;) {
      if (!solveStep(lambda)) {
        lambda *= MORELAMBDA;
        continue;
      }
      takeStep(T, S, TRIAL);
      const double left = leaveOver(T, frame, TRIAL);
      gained = left < best;
      if (!gained) {
        lambda *= MORELAMBDA;
        continue;
      }
      idle = left > (1 - ENOUGH) * best ? idle + 1 : 0;
      best = left;
      S = TRIAL;
      lambda *= LESSLAMBDA;
    }
    if (!gained) break;
  }
  return std::sqrt(best / (static_cast<double>(T.NS) * std::max(T.count, 1)));
}

} // namespace lcp
