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
constexpr double THIN = 1e-4;   // real over imaginary part of a pole, at least

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

void layColumns(const PoleTargets& T, const PoleFrame& frame, const PoleSet& S) {
  WORK.basis = (frame.constant && !frame.fixedAtZero ? 1 : 0) + (frame.proportion ? 1 : 0);
  WORK.derivatives = 0;
  for (int g = 1; g <= S.groups; ++g) WORK.derivatives += S.NH[g] + (frame.delays ? 1 : 0);
  for (int g = 1; g <= S.groups; ++g) WORK.basis += S.NH[g];
  WORK.targets = T.count;
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
double leaveOver(const PoleTargets& T, const PoleFrame& frame, const PoleSet& S) {
  layColumns(T, frame, S);
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

void bound(Complex& p, double low, double high) {
  const double size = std::clamp(std::abs(p), low, high) / std::abs(p);
  p *= size;
  if (-p.real() < THIN * std::fabs(p.imag())) p.real(-THIN * std::fabs(p.imag()));
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

} // namespace

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
