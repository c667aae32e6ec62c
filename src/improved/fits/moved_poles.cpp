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
  int unknown; // after those of the basis one for each group, of its delay
  double factor;
};

struct Parameter {
  int terms;
  Term term[2];
  int g, m;  // m 0: the delay of the group
  bool imag; // of a pair
};

struct Work {
  MappedArray<double> S, C, J, G, step, diagonal;
  MappedArray<Parameter> parameter;
  int parameters;
  double unit; // of a delay, s
};
Work& WORK = bigStore<Work>();
PoleSet& TRIAL = bigStore<PoleSet>();

ComplexCurve curve;
PoleClasses CINDEX;

int derivativesOf(const PoleFrame& frame, const PoleSet& S) {
  int columns = 0;
  for (int g = 1; g <= S.groups; ++g) columns += S.NH[g] + (frame.delays ? 1 : 0);
  return columns;
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
  putOther(T, frame, S.TAU[g], curve, atZero, q);
  if (CINDEX[m] == REALPOLE) addParameter({1, {{q, q, 1}, {}}, g, m, false});
  if (CINDEX[m] != PAIRFIRST) return;
  addParameter({2, {{q, q, a}, {q + 1, q + 1, a}}, g, m, false});
  addParameter({2, {{q + 1, q, b}, {q, q + 1, -b}}, g, m, true});
}

void addDelay(const PoleTargets& T, const PoleSet& S, int g, int column, int groupUnknown) {
  for (int k = 1; k <= T.NS; ++k) curve[k] = 1;
  putOther(T, {}, S.TAU[g], curve, 0, column);
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
    for (int m = 1; m <= S.NH[g]; ++m) addPole(T, frame, S, g, m, ++q);
    if (frame.delays) addDelay(T, S, g, poles + g, PROJECTION.basis + g);
  }
  takeBasisOutOfOthers();
}

RView productsOfRows(RView X, int rows, int columns) {
  const RView C = Projection::matrix(WORK.C, rows, rows);
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

double product(const Parameter& a, const Parameter& b, RConstView D, RConstView C) {
  double sum = 0;
  for (int s = 0; s < a.terms; ++s) {
    for (int t = 0; t < b.terms; ++t) {
      const Term &u = a.term[s], &v = b.term[t];
      sum += u.factor * v.factor * D(u.column, v.column) * C(u.unknown, v.unknown);
    }
  }
  return sum;
}

// J^T J and J^T r of the set whose basis and targets stand at right angles.
void formNormal(const PoleTargets& T, const PoleFrame& frame, const PoleSet& S) {
  formDerivatives(T, frame, S);
  Projection& P = PROJECTION;
  const int first = P.firstOther(), nd = P.others, n = WORK.parameters;
  const RView X = formUnknowns(S);
  const RView C = productsOfRows(X, P.basis + S.groups, P.targets);
  const RView D = Projection::matrix(WORK.S, nd, nd), G = Projection::matrix(WORK.G, nd, P.targets);
  formProducts(P.A, first, first + nd - 1, first, first + nd - 1, D);
  formProducts(P.A, first, first + nd - 1, P.basis + 1, P.basis + P.targets, G);
  const RView J = Projection::matrix(WORK.J, n, n + 1);
  for (int k = 1; k <= n; ++k) {
    const Parameter& b = WORK.parameter.numbers[k - 1];
    for (int j = 1; j <= n; ++j) J(j, k) = product(WORK.parameter.numbers[j - 1], b, D, C);
    J(k, n + 1) = 0;
    for (int t = 0; t < b.terms; ++t) {
      const Term& u = b.term[t];
      for (int i = 1; i <= P.targets; ++i)
        J(k, n + 1) += u.factor * G(u.column, i) * X(u.unknown, i);
    }
  }
}

// The step for a damping lambda; false when there is none.
bool solveStep(double lambda) {
  static MappedArray<double>& copy = bigStore<MappedArray<double>>();
  const int n = WORK.parameters;
  const RView J = Projection::matrix(WORK.J, n, n + 1), M = Projection::matrix(copy, n, n);
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
  const double size = std::abs(p);
  p = size > 0 ? p * (std::clamp(size, low, high) / size) : -low;
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

// One step that lowers the squares that are left; false when there is none. The columns of the set
// projected before and after it.
bool stepOn(const PoleTargets& T, const PoleFrame& frame, PoleSet& S, double& left,
            double& lambda) {
  formNormal(T, frame, S);
  for (; lambda < MOSTLAMBDA; lambda *= MORELAMBDA) {
    if (!solveStep(lambda)) continue;
    takeStep(T, S, TRIAL);
    const double trial = leaveOver(T, frame, TRIAL, derivativesOf(frame, TRIAL));
    if (!(trial < left)) continue;
    left = trial;
    S = TRIAL;
    lambda *= LESSLAMBDA;
    return true;
  }
  return false;
}

} // namespace

double MOVEPOLES(const PoleTargets& T, const PoleFrame& frame, int steps, PoleSet& S) {
  double left = leaveOver(T, frame, S, derivativesOf(frame, S)), lambda = FIRSTLAMBDA;
  for (int step = 1, idle = 0; step <= steps && idle < IDLE && left > 0; ++step) {
    const double before = left;
    if (!stepOn(T, frame, S, left, lambda)) break;
    idle = left > (1 - ENOUGH) * before ? idle + 1 : 0;
  }
  return std::sqrt(left / (static_cast<double>(T.NS) * std::max(T.count, 1)));
}

} // namespace lcp
