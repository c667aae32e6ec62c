// With A = I + H and B = I - H, the Hermitian part of the half (I - H)^-1 (I + H) Yc has no
// negative eigenvalue exactly if
//
//   g(x) = 2 Re(x^H A Yc B^H x) >= 0   for every vector x
//
// and the other half with A and B exchanged. This form contains no inverse, so it stays nearly
// linear where H is close to I, as at low frequency. A frequency and a vector x with g(x) < 0 form
// a cut. Its derivatives are, with a = A^H x, b = B^H x and + or - the sign of H in A,
//
//   dg = +- 2 Re(x^H dH (Yc b - Yc^H a))     dg = 2 Re(a^H dYc b)
//
// Each iteration scans the model, adds cuts for the minima found, linearises all cuts around the
// current model and finds the least change from the fitted model that meets them: a sequence of
// quadratic programs.
#include "improved/passivity/least_change.h"

#include "base/constants.h"
#include "fit/partial_fractions.h"
#include "kernels/lapack.h"
#include "kernels/matrix_kernels.h"
#include "passivity/nodal_admittance.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace lcp {

namespace {

constexpr std::size_t NEWCUTS = 150; // deepest minima of a scan that become cuts
constexpr double MARGIN = 1e-6;      // value to which a cut is raised, relative to its terms
constexpr double MARGINGROWTH = 1.5; // from one program to the next
constexpr double MOSTMARGIN = 1e-3;
constexpr int MOSTIDLE = 4;       // programs for which a cut may be inactive
constexpr double SMALL = 0.02;    // eigenvalue over the largest whose vector becomes a cut too
constexpr double SMALLH = 0.1;    // an H below it is weighted as if it were this large
constexpr double OUTSIDE = 10;    // changes up to a decade below and above the band count too
constexpr int POINTSOUTSIDE = 15; // frequencies in each of these decades

struct YcTerms {
  Table<LineMatrix, MAXPOLES> residue;
  RealMatrix constant;
};

YcTerms& FITTEDYC = bigStore<YcTerms>(); // as fitted

// The model from which changes are measured.
struct BaseModel {
  ResidueList H;
  YcTerms Yc;
};
BaseModel& BASE = bigStore<BaseModel>();

std::size_t at(int i) { return static_cast<std::size_t>(i); }

void keepYc(YcTerms& terms) {
  for (int m = 1; m <= ENFORCE.ENY; ++m) copyCorner(terms.residue[m], ENFORCE.ERY[m], ENFORCE.NC);
  terms.constant = ENFORCE.EDY;
}

void takeFittedYc() {
  for (int m = 1; m <= ENFORCE.ENY; ++m)
    copyCorner(ENFORCE.ERY[m], FITTEDYC.residue[m], ENFORCE.NC);
  ENFORCE.EDY = FITTEDYC.constant;
}

double largestElement(CConstView A) {
  double largest = 0;
  for (int c = 1; c <= ENFORCE.NC; ++c) {
    for (int r = 1; r <= ENFORCE.NC; ++r) largest = std::max(largest, std::abs(A(r, c)));
  }
  return largest;
}

struct WeighedFrequencies {
  std::vector<double> f;      // Hz
  std::vector<double> weight; // of each

  void add(double hertz, double w) {
    f.push_back(hertz);
    weight.push_back(w);
  }
};

// The frequencies of the fit, and some below and above them.
WeighedFrequencies weighedFrequencies(double outside) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  const auto [low, high] = std::minmax({G.WFREQ[1] / TWOPI, G.WFREQ[G.NFUSE] / TWOPI});
  WeighedFrequencies all;
  for (int k = 1; k <= G.NFUSE; ++k) all.add(G.WFREQ[k] / TWOPI, 1);
  for (int k = 1; k <= POINTSOUTSIDE; ++k) {
    const double step = std::pow(OUTSIDE, static_cast<double>(k) / POINTSOUTSIDE);
    all.add(low / step, outside);
    all.add(high * step, outside);
  }
  return all;
}

// A change counts relative to H and Yc at its frequency.
void weighBases(LeastChange& C, double outside) {
  static LineMatrix F;
  const WeighedFrequencies all = weighedFrequencies(outside);
  std::vector<double> ofH, ofYc;
  for (std::size_t k = 0; k < all.f.size(); ++k) {
    const Complex s(0, TWOPI * all.f[k]);
    propagationAt(ENFORCE.FORIG, s, F);
    ofH.push_back(all.weight[k] * std::pow(std::max(largestElement(F), SMALLH), -2));
    characteristicAt(s, false, F);
    ofYc.push_back(all.weight[k] * std::pow(largestElement(F), -2));
  }
  whiten(C.ofH, all.f, ofH);
  whiten(C.ofYc, all.f, ofYc);
}

// The matrices of a condition at one frequency.
struct Condition {
  double f = -1; // Hz; below 0 before the first
  Half half = AGAINST;
  LineMatrix H, Yc, A, B; // A and B: I with H added and subtracted, in the order of the half
  LineMatrix dH, dYc;     // changes from the base
};

// F of the model at hand, and its change from the base.
void formFunction(const std::vector<RealLanes>& now, const std::vector<RealLanes>& base,
                  const Complexes& phi, CView F, CView change) {
  const int n = ENFORCE.NC;
  PlanarMatrix present(n), before(n);
  addWeighted(present, now, phi);
  addWeighted(before, base, phi);
  present.copyTo(F);
  for (int c = 1; c <= n; ++c) {
    for (int r = 1; r <= n; ++r) change(r, c) = present(r, c) - before(r, c);
  }
}

void formCondition(Condition& K, const LeastChange& C, double f, Half half) {
  if (f != K.f) {
    const Complex s(0, TWOPI * f);
    formFunction(C.model.H, C.base.H, plainBasis(C.ofH, s), K.H, K.dH);
    formFunction(C.model.Yc, C.base.Yc, plainBasis(C.ofYc, s), K.Yc, K.dYc);
  }
  const double sign = half == AGAINST ? 1 : -1;
  K.f = f;
  K.half = half;
  for (int c = 1; c <= ENFORCE.NC; ++c) {
    for (int r = 1; r <= ENFORCE.NC; ++r) {
      K.A(r, c) = (r == c ? 1.0 : 0.0) + sign * K.H(r, c);
      K.B(r, c) = (r == c ? 1.0 : 0.0) - sign * K.H(r, c);
    }
  }
}

// Returns A x; adjointTimes returns A^H x.
Complexes times(CConstView A, const Complexes& x) {
  Complexes y(x.size());
  const int n = static_cast<int>(x.size());
  for (int c = 1; c <= n; ++c) {
    for (int r = 1; r <= n; ++r) y[at(r - 1)] += A(r, c) * x[at(c - 1)];
  }
  return y;
}

Complexes adjointTimes(CConstView A, const Complexes& x) {
  Complexes y(x.size());
  const int n = static_cast<int>(x.size());
  for (int c = 1; c <= n; ++c) {
    for (int r = 1; r <= n; ++r) y[at(c - 1)] += std::conj(A(r, c)) * x[at(r - 1)];
  }
  return y;
}

Complex product(const Complexes& a, const Complexes& b) { // a^H b
  Complex sum = 0;
  for (std::size_t i = 0; i < a.size(); ++i) sum += std::conj(a[i]) * b[i];
  return sum;
}

double length(const Complexes& a) { return std::sqrt(product(a, a).real()); }

// A Yc B^H + B Yc^H A^H
void formWavePower(const Condition& K, CView M) {
  const int n = ENFORCE.NC;
  for (int c = 1; c <= n; ++c) {
    Complexes unit(at(n));
    unit[at(c - 1)] = 1;
    const Complexes first = times(K.A, times(K.Yc, adjointTimes(K.B, unit)));
    const Complexes second = times(K.B, adjointTimes(K.Yc, adjointTimes(K.A, unit)));
    for (int r = 1; r <= n; ++r) M(r, c) = first[at(r - 1)] + second[at(r - 1)];
  }
}

// Adds cuts for all vectors at a minimum with a negative or nearly negative value, since the next
// program could turn into those, and in any case for the lowest, whose sign may be hidden by
// rounding.
void addCutsAt(LeastChange& C, const NegativePoint& m) {
  static Condition K;
  static LineMatrix M;
  static ModeReals W;
  const int n = ENFORCE.NC;
  K.f = -1;
  formCondition(K, C, m.f, m.half);
  formWavePower(K, M);
  ZHEEVECTORS(M, W.data(), n);
  for (int j = 1; j <= n; ++j) {
    if (j > 1 && !(W[j] < SMALL * W[n])) break;
    const Complex* v = M.view().column(j);
    C.cuts.push_back({m.f, m.half, Complexes(v, v + n), 0});
  }
}

Complexes conjugated(Complexes a) {
  for (Complex& z : a) z = std::conj(z);
  return a;
}

// Re(l^T dF q)
double rowTimes(const RankOneRow& row, CConstView dF) {
  return product(conjugated(row.l), times(dF, row.q)).real();
}

// The change of Yc at s.
void changeOfYc(const YcTerms& base, Complex s, CView dY) {
  const EnforcementStore& E = ENFORCE;
  for (int c = 1; c <= E.NC; ++c) {
    for (int r = 1; r <= E.NC; ++r) dY(r, c) = E.EDY(r, c) - base.constant(r, c);
  }
  for (int m = 1; m <= E.ENY; ++m) {
    addTimes(dY, poleTerm(s, E.EPY[m]), E.ERY[m], E.NC);
    addTimes(dY, -poleTerm(s, E.EPY[m]), base.residue[m], E.NC);
  }
}

// A cut as conditions on the whole change of H and Yc.
void addRow(LeastChange& C, const Condition& K, const Cut& cut) {
  const Complex s(0, TWOPI * cut.f);
  const Complexes a = adjointTimes(K.A, cut.x), b = adjointTimes(K.B, cut.x);
  const Complexes Yb = times(K.Yc, b), Ya = adjointTimes(K.Yc, a);
  const double sign = cut.half == AGAINST ? 2 : -2;
  RankOneRow ofH{conjugated(cut.x), Yb, basisAt(C.ofH, s)}, ofYc;
  for (std::size_t i = 0; i < Yb.size(); ++i) ofH.q[i] = sign * (Yb[i] - Ya[i]);
  double bound = rowTimes(ofH, K.dH) - 2 * product(a, Yb).real();
  if (C.freeYc) {
    ofYc = {conjugated(a), b, basisAt(C.ofYc, s)};
    for (Complex& z : ofYc.q) z *= 2;
    bound += rowTimes(ofYc, K.dYc);
  }
  const double size = 2 * length(a) * largestElement(K.Yc) * length(b);
  C.rowsH.push_back(ofH);
  C.rowsYc.push_back(ofYc);
  C.program.b.push_back(bound + C.margin * size);
}

// Cuts of one frequency and half stand side by side.
void addCutRows(LeastChange& C) {
  static Condition K;
  K.f = -1;
  for (const Cut& cut : C.cuts) {
    if (cut.f != K.f || cut.half != K.half) formCondition(K, C, cut.f, cut.half);
    addRow(C, K, cut);
  }
}

// Elements at zero frequency that do not move.
void addFixedValues(LeastChange& C) {
  const int n = ENFORCE.NC;
  const auto unit = [&](int i) {
    Complexes e(at(n));
    e[at(i - 1)] = 1;
    return e;
  };
  const Complexes phiH = basisAt(C.ofH, 0), phiYc = basisAt(C.ofYc, 0);
  for (int c = 1; c <= n; ++c) {
    for (int r = 1; r <= n; ++r) {
      C.rowsH.push_back({unit(r), unit(c), phiH});
      C.rowsYc.push_back({});
      if (!C.freeYc || r > c) continue;
      C.rowsH.push_back({});
      C.rowsYc.push_back({unit(r), unit(c), phiYc});
    }
  }
  C.program.b.assign(C.rowsH.size(), 0);
}

// Moves the scalar products of the n rows that stay to the front.
void compactProducts(std::vector<double>& M, std::size_t n,
                     const std::vector<std::size_t>& stayed) {
  const std::size_t kept = stayed.size();
  for (std::size_t i = 0; i < kept; ++i) {
    for (std::size_t j = 0; j < kept; ++j) M[i * kept + j] = M[stayed[i] * n + stayed[j]];
  }
  M.resize(kept * kept);
}

// Keeps the rows that were active in the last solution unchanged: g is concave in H, so what a
// linearisation around any model cuts off stays cut off, and the programs cannot cycle.
void keepActiveRows(LeastChange& C, const std::vector<double>& u) {
  std::size_t kept = 0;
  std::vector<std::size_t> stayed;
  for (std::size_t i = 0; i < u.size(); ++i) {
    const bool fixed = static_cast<int>(i) < C.program.equalities;
    if (!fixed && !(u[i] > 0)) continue;
    C.rowsH[kept] = C.rowsH[i];
    C.rowsYc[kept] = C.rowsYc[i];
    C.program.b[kept] = C.program.b[i];
    stayed.push_back(i);
    ++kept;
  }
  compactProducts(C.program.M, u.size(), stayed);
  C.rowsH.resize(kept);
  C.rowsYc.resize(kept);
  C.program.b.resize(kept);
  C.known = kept;
}

// Drops cuts that have been inactive for several programs; a later scan finds them again if they
// matter.
void dropIdleCuts(LeastChange& C, const std::vector<double>& u) {
  const std::size_t first = u.size() - C.cuts.size();
  std::size_t kept = 0;
  for (std::size_t i = 0; i < C.cuts.size(); ++i) {
    Cut& cut = C.cuts[i];
    cut.idle = u[first + i] > 0 ? 0 : cut.idle + 1;
    if (cut.idle <= MOSTIDLE) std::swap(C.cuts[kept++], cut);
  }
  C.cuts.resize(kept);
}

void startRows(LeastChange& C) {
  C.rowsH.clear();
  C.rowsYc.clear();
  C.program.b.clear();
  C.known = 0;
  if (RUNDATA.fit.DCCORR > 0) addFixedValues(C);
  C.program.equalities = static_cast<int>(C.program.b.size());
}

// The products of the rows that stayed are those of the last program.
void formProgram(LeastChange& C) {
  addCutRows(C);
  const std::size_t n = C.program.b.size(), known = C.known, ports = at(ENFORCE.NC);
  const std::vector<double> last = std::move(C.program.M);
  std::vector<double>& M = C.program.M;
  PackedRows H{false, ports, at(C.ofH.N)}, Yc{true, ports, at(C.ofYc.N)};
  for (std::size_t i = 0; i < n; ++i) {
    H.add(C.rowsH[i]);
    if (C.freeYc) Yc.add(C.rowsYc[i]);
  }
  C.program.n = static_cast<int>(n);
  M.assign(n * n + LANES, 0); // room for a whole group after the last row
  for (std::size_t i = n; i-- > 0;) {
    double* row = M.data() + i * n;
    if (i < known) {
      std::copy_n(last.data() + i * known, known, row);
      continue;
    }
    addRowProducts(C.rowsH[i], H, i + 1, row);
    if (C.freeYc) addRowProducts(C.rowsYc[i], Yc, i + 1, row);
  }
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = i + 1; j < n; ++j) M[i * n + j] = M[j * n + i];
  }
}

void applyToH(const LeastChange& C, const std::vector<double>& u) {
  EnforcementStore& E = ENFORCE;
  for (int c = 1; c <= E.NC; ++c) {
    for (int r = 1; r <= E.NC; ++r) {
      const std::vector<double> x = changeOf(C.ofH, C.rowsH, u, r, c, false);
      for (int m = 1; m <= E.TOTORD; ++m)
        E.FRES[m](r, c) = BASE.H[m](r, c) + residueChange(C.ofH, x, at(m - 1));
    }
  }
}

void applyToYc(const LeastChange& C, const std::vector<double>& u) {
  EnforcementStore& E = ENFORCE;
  for (int c = 1; c <= E.NC; ++c) {
    for (int r = 1; r <= c; ++r) {
      const std::vector<double> x = changeOf(C.ofYc, C.rowsYc, u, r, c, true);
      for (int m = 1; m <= E.ENY; ++m) {
        const Complex R = BASE.Yc.residue[m](r, c) + residueChange(C.ofYc, x, at(m - 1));
        E.ERY[m](r, c) = E.ERY[m](c, r) = R;
      }
      E.EDY(r, c) = E.EDY(c, r) = BASE.Yc.constant(r, c) + x.back();
    }
  }
}

} // namespace

LeastChange startLeastChange(double outside) {
  LeastChange C;
  C.ofH = propagationBasis();
  C.ofYc = admittanceBasis();
  keepYc(FITTEDYC);
  weighBases(C, outside);
  restartLeastChange(C, false);
  return C;
}

void restartLeastChange(LeastChange& C, bool freeYc) {
  copyResidues(ENFORCE.FRES, ENFORCE.FORIG);
  takeFittedYc();
  C.freeYc = freeYc;
  C.margin = MARGIN;
  rebaseLeastChange(C);
}

void rebaseLeastChange(LeastChange& C) {
  copyResidues(BASE.H, ENFORCE.FRES);
  keepYc(BASE.Yc);
  C.model = C.base = packModel();
  startRows(C);
}

void addCuts(LeastChange& C, std::vector<NegativePoint> minima) {
  std::stable_sort(minima.begin(), minima.end(),
                   [](const auto& a, const auto& b) { return a.depth < b.depth; });
  if (minima.size() > NEWCUTS) minima.resize(NEWCUTS);
  for (const NegativePoint& m : minima) addCutsAt(C, m);
}

bool solveLeastChange(LeastChange& C) {
  formProgram(C);
  const LeastVector found = leastVector(C.program);
  applyToH(C, found.multiplier);
  if (C.freeYc) applyToYc(C, found.multiplier);
  C.model = packModel();
  dropIdleCuts(C, found.multiplier);
  keepActiveRows(C, found.multiplier);
  C.margin = std::min(C.margin * MARGINGROWTH, MOSTMARGIN);
  return found.contradicted == 0;
}

double changeOfAdmittance(const FreqCurve& WFREQ, int NS) {
  static LineMatrix change, fitted;
  double moved = 0, scale = 0;
  for (int k = 1; k <= NS; ++k) {
    const Complex s(0, WFREQ[k]);
    changeOfYc(FITTEDYC, s, change);
    characteristicAt(s, false, fitted);
    addTimes(fitted, -1.0, change, ENFORCE.NC);
    moved = std::max(moved, largestElement(change));
    scale = std::max(scale, largestElement(fitted));
  }
  return moved / scale;
}

} // namespace lcp
