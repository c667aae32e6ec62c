// With A = I + H and B = I - H the half (I - H)^-1 (I + H) Yc has a Hermitian part that is not
// negative exactly when
//
//   g(x) = 2 Re(x^H A Yc B^H x) >= 0   for every vector x
//
// and the other half with A and B the other way round. This form has no inverse, so it stays nearly
// linear where H is close to I, as at low frequency. A pair of a frequency and a vector x with
// g(x) < 0 is a cut. Its derivatives are, with a = A^H x, b = B^H x and the sign + or - of H in A,
//
//   dg = +- 2 Re(x^H dH (Yc b - Yc^H a))     dg = 2 Re(a^H dYc b)
//
// Each iteration scans the model, adds the cuts of the minima found, linearises all cuts around the
// present model and finds the least change from the fitted one that meets them: a sequence of
// quadratic programs.
#include "passivity/improved_enforcement.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/number_forms.h"
#include "fit/fit_console.h"
#include "fit/fitted_curves.h"
#include "fit/partial_fractions.h"
#include "kernels/lapack.h"
#include "kernels/matrix_kernels.h"
#include "passivity/active_set_program.h"
#include "passivity/nodal_admittance.h"
#include "passivity/spectrum_scan.h"
#include "passivity/tied_residues.h"
#include "passivity/violation_scan.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <string>

namespace lcp {

namespace {

constexpr int PROGRAMS = 3;          // quadratic programs for each iteration asked for
constexpr std::size_t NEWCUTS = 150; // minima of a scan that become cuts, the deepest
constexpr double MARGIN = 1e-6;      // to which a cut is lifted, of the size of its terms
constexpr double MARGINGROWTH = 1.5; // from one iteration to the next
constexpr double MOSTMARGIN = 1e-3;
constexpr double SMALLH = 0.1;   // H below it is weighed as if it were as large
constexpr double BELOWBAND = 10; // a decade below the band H counts too
constexpr int POINTSBELOW = 15;
constexpr int PATIENCE = 4;
constexpr int MOSTIDLE = 4;

struct Cut {
  double f; // Hz
  Half half;
  Complexes x;
  int idle = 0; // programs in a row that it did not hold
};

struct YcTerms {
  Table<LineMatrix, MAXPOLES> residue;
  RealMatrix constant;
};

YcTerms& FITTEDYC = bigStore<YcTerms>(); // as it was fitted

// What the programs of one enforcement are made of.
struct Course {
  TiedBasis ofH, ofYc;
  bool freeYc = false;
  double margin = MARGIN;
  std::vector<Cut> cuts;   // of minima, all iterations
  std::vector<RankOneRow> rowsH, rowsYc;
  LeastVectorProgram program;
};

std::size_t at(int i) { return static_cast<std::size_t>(i); }

void keepFittedYc() {
  for (int m = 1; m <= ENFORCE.ENY; ++m)
    copyCorner(FITTEDYC.residue[m], ENFORCE.ERY[m], ENFORCE.NC);
  FITTEDYC.constant = ENFORCE.EDY;
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

// The frequencies at which a change counts, relative to H and Yc there: those of the fit and some
// below them.
void weighBases(Course& C) {
  static LineMatrix F;
  std::vector<double> f, ofH, ofYc;
  const FrequencyGrid& G = SOLVEDATA.grid;
  const double low = G.WFREQ[1] / TWOPI;
  for (int k = 0; k < POINTSBELOW; ++k)
    f.push_back(low * std::pow(BELOWBAND, static_cast<double>(k) / POINTSBELOW - 1));
  for (int k = 1; k <= G.NFUSE; ++k) f.push_back(G.WFREQ[k] / TWOPI);
  for (int k = 1; k <= POINTSBELOW; ++k)
    f.push_back(G.WFREQ[G.NFUSE] / TWOPI *
                std::pow(BELOWBAND, static_cast<double>(k) / POINTSBELOW));
  for (const double at : f) {
    const Complex s(0, TWOPI * at);
    propagationAt(ENFORCE.FORIG, s, F);
    ofH.push_back(std::pow(std::max(largestElement(F), SMALLH), -2));
    characteristicAt(s, false, F);
    ofYc.push_back(std::pow(largestElement(F), -2));
  }
  whiten(C.ofH, f, ofH);
  whiten(C.ofYc, f, ofYc);
}

// The vectors of the matrix of a condition at one frequency.
struct Condition {
  LineMatrix H, Yc, A, B; // A and B: I with H added and subtracted, in the order of the half
};

void formCondition(Condition& K, double f, Half half) {
  const Complex s(0, TWOPI * f);
  const double sign = half == AGAINST ? 1 : -1;
  propagationAt(ENFORCE.FRES, s, K.H);
  characteristicAt(s, false, K.Yc);
  for (int c = 1; c <= ENFORCE.NC; ++c) {
    for (int r = 1; r <= ENFORCE.NC; ++r) {
      K.A(r, c) = (r == c ? 1.0 : 0.0) + sign * K.H(r, c);
      K.B(r, c) = (r == c ? 1.0 : 0.0) - sign * K.H(r, c);
    }
  }
}

// A x, and A^H x.
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

// The vectors of A Yc B^H + B Yc^H A^H at a frequency whose eigenvalues are below so much of the
// size of its terms; the first one always.
void addCuts(std::vector<Cut>& cuts, double f, Half half, double below) {
  static Condition K;
  static LineMatrix M;
  static ModeReals W;
  const int n = ENFORCE.NC;
  formCondition(K, f, half);
  for (int c = 1; c <= n; ++c) {
    Complexes unit(at(n));
    unit[at(c - 1)] = 1;
    const Complexes first = times(K.A, times(K.Yc, adjointTimes(K.B, unit)));
    const Complexes second = times(K.B, adjointTimes(K.Yc, adjointTimes(K.A, unit)));
    for (int r = 1; r <= n; ++r) M(r, c) = first[at(r - 1)] + second[at(r - 1)];
  }
  ZHEEVECTORS(M, W.data(), n);
  for (int j = 1; j <= n; ++j) {
    const Complex* v = M.view().column(j);
    const Complexes x(v, v + n);
    const double size = 2 * length(adjointTimes(K.A, x)) * largestElement(K.Yc) *
                        length(adjointTimes(K.B, x));
    if (j > 1 && !(W[j] < below * size)) continue;
    cuts.push_back({f, half, x, 0});
  }
}

void addDeepestCuts(Course& C, std::vector<NegativeMinimum> minima) {
  std::stable_sort(minima.begin(), minima.end(),
                   [](const auto& a, const auto& b) { return a.value < b.value; });
  if (minima.size() > NEWCUTS) minima.resize(NEWCUTS);
  for (const NegativeMinimum& m : minima) addCuts(C.cuts, m.f, m.half, 0);
}

Complexes conjugated(Complexes a) {
  for (Complex& z : a) z = std::conj(z);
  return a;
}

// Re(l^T dF q)
double rowTimes(const RankOneRow& row, CConstView dF) {
  return product(conjugated(row.l), times(dF, row.q)).real();
}

// The change of H and of Yc so far at s.
void changeOfH(Complex s, CView dH) {
  static LineMatrix fitted;
  propagationAt(ENFORCE.FRES, s, dH);
  propagationAt(ENFORCE.FORIG, s, fitted);
  addTimes(dH, -1.0, fitted, ENFORCE.NC);
}

void changeOfYc(Complex s, CView dY) {
  const EnforcementStore& E = ENFORCE;
  for (int c = 1; c <= E.NC; ++c) {
    for (int r = 1; r <= E.NC; ++r) dY(r, c) = E.EDY(r, c) - FITTEDYC.constant(r, c);
  }
  for (int m = 1; m <= E.ENY; ++m) {
    addTimes(dY, poleTerm(s, E.EPY[m]), E.ERY[m], E.NC);
    addTimes(dY, -poleTerm(s, E.EPY[m]), FITTEDYC.residue[m], E.NC);
  }
}

// A cut as conditions on the whole change of H and Yc.
void addRow(Course& C, const Cut& cut) {
  static Condition K;
  static LineMatrix change;
  const Complex s(0, TWOPI * cut.f);
  formCondition(K, cut.f, cut.half);
  const Complexes a = adjointTimes(K.A, cut.x), b = adjointTimes(K.B, cut.x);
  const Complexes Yb = times(K.Yc, b), Ya = adjointTimes(K.Yc, a);
  const double sign = cut.half == AGAINST ? 2 : -2;
  RankOneRow ofH{conjugated(cut.x), Yb, basisAt(C.ofH, s)}, ofYc;
  for (std::size_t i = 0; i < Yb.size(); ++i) ofH.q[i] = sign * (Yb[i] - Ya[i]);
  changeOfH(s, change);
  double bound = rowTimes(ofH, change) - 2 * product(a, Yb).real();
  if (C.freeYc) {
    ofYc = {conjugated(a), b, basisAt(C.ofYc, s)};
    for (Complex& z : ofYc.q) z *= 2;
    changeOfYc(s, change);
    bound += rowTimes(ofYc, change);
  }
  const double size = 2 * length(a) * largestElement(K.Yc) * length(b);
  C.rowsH.push_back(ofH);
  C.rowsYc.push_back(ofYc);
  C.program.b.push_back(bound + C.margin * size);
}

// Elements at zero frequency that do not move.
void addFixedValues(Course& C) {
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

// The rows that held the last solution stay as they were: g is concave in H, so what is cut off by a
// linearisation around any model is cut off for good, and the programs do not go round in a circle.
void keepActiveRows(Course& C, const std::vector<double>& u) {
  std::size_t kept = 0;
  for (std::size_t i = 0; i < u.size(); ++i) {
    const bool fixed = static_cast<int>(i) < C.program.equalities;
    if (!fixed && !(u[i] > 0)) continue;
    C.rowsH[kept] = C.rowsH[i];
    C.rowsYc[kept] = C.rowsYc[i];
    C.program.b[kept++] = C.program.b[i];
  }
  C.rowsH.resize(kept);
  C.rowsYc.resize(kept);
  C.program.b.resize(kept);
}

// Cuts that have held nothing for some programs go; a later scan finds them again if they matter.
void dropIdleCuts(Course& C, const std::vector<double>& u) {
  const std::size_t first = u.size() - C.cuts.size();
  std::size_t kept = 0;
  for (std::size_t i = 0; i < C.cuts.size(); ++i) {
    Cut& cut = C.cuts[i];
    cut.idle = u[first + i] > 0 ? 0 : cut.idle + 1;
    if (cut.idle <= MOSTIDLE) std::swap(C.cuts[kept++], cut);
  }
  C.cuts.resize(kept);
}

void startRows(Course& C) {
  C.rowsH.clear();
  C.rowsYc.clear();
  C.program.b.clear();
  if (RUNDATA.fit.DCCORR > 0) addFixedValues(C);
  C.program.equalities = static_cast<int>(C.program.b.size());
}

void formProgram(Course& C) {
  for (const Cut& cut : C.cuts) addRow(C, cut);
  const std::size_t n = C.program.b.size();
  C.program.n = static_cast<int>(n);
  C.program.M.assign(n * n, 0);
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j <= i; ++j) {
      double& m = C.program.M[i * n + j];
      const bool both = !C.rowsH[i].l.empty() && !C.rowsH[j].l.empty();
      if (both) m += rowProduct(C.rowsH[i], C.rowsH[j], false);
      if (!C.rowsYc[i].l.empty() && !C.rowsYc[j].l.empty())
        m += rowProduct(C.rowsYc[i], C.rowsYc[j], true);
      C.program.M[j * n + i] = m;
    }
  }
}

void applyToH(const Course& C, const std::vector<double>& u) {
  EnforcementStore& E = ENFORCE;
  for (int c = 1; c <= E.NC; ++c) {
    for (int r = 1; r <= E.NC; ++r) {
      const std::vector<double> x = changeOf(C.ofH, C.rowsH, u, r, c, false);
      for (int m = 1; m <= E.TOTORD; ++m)
        E.FRES[m](r, c) = E.FORIG[m](r, c) + residueChange(C.ofH, x, at(m - 1));
    }
  }
}

void applyToYc(const Course& C, const std::vector<double>& u) {
  EnforcementStore& E = ENFORCE;
  for (int c = 1; c <= E.NC; ++c) {
    for (int r = 1; r <= c; ++r) {
      const std::vector<double> x = changeOf(C.ofYc, C.rowsYc, u, r, c, true);
      for (int m = 1; m <= E.ENY; ++m) {
        const Complex R = FITTEDYC.residue[m](r, c) + residueChange(C.ofYc, x, at(m - 1));
        E.ERY[m](r, c) = E.ERY[m](c, r) = R;
      }
      E.EDY(r, c) = E.EDY(c, r) = FITTEDYC.constant(r, c) + x.back();
    }
  }
}

void printScan(int n, const Spectrum& scan, const std::vector<NegativeMinimum>& minima) {
  if (minima.empty()) {
    console::print("    {:4}{:11}  none{}", n, 0, scan.resolved ? "" : ", not resolved");
    return;
  }
  const auto& worst = *std::min_element(minima.begin(), minima.end(),
                                        [](auto& a, auto& b) { return a.value < b.value; });
  console::print("    {:4}{:11}  {} S at {} Hz", n, minima.size(), pointedField(worst.value, 14, 7),
                 pointedField(worst.f, 14, 7));
}

// The model as it stands: a rough scan, and a full one when that finds nothing.
Spectrum scanModel() {
  Spectrum scan = scanSpectrum(ENFORCE.FRES, spectrumRange(), Scan::Rough);
  if (!negativeMinima(scan).empty()) return scan;
  return scanSpectrum(ENFORCE.FRES, spectrumRange(), Scan::Full);
}

// How far the model is from passive: the worst negative eigenvalue over the largest there.
double depthOf(const std::vector<NegativeMinimum>& minima) {
  double depth = 0;
  for (const NegativeMinimum& m : minima) depth = std::max(depth, -m.value / m.size);
  return depth;
}

// Iterations with the terms that are free, until the model is passive, so many are done or several
// in a row bring nothing; true when it is passive.
bool iterate(Course& C, int& n, int most) {
  double best = 0;
  int since = 0;
  startRows(C);
  for (int i = 0; i <= most; ++i) {
    const Spectrum scan = scanModel();
    const std::vector<NegativeMinimum> minima = negativeMinima(scan);
    printScan(n++, scan, minima);
    if (minima.empty()) return scan.resolved;
    const double depth = depthOf(minima);
    ++since;
    if (i == 0 || depth < best) {
      best = depth;
      since = 0;
    }
    if (i == most || (since > PATIENCE && !C.freeYc)) break;
    addDeepestCuts(C, minima);
    formProgram(C);
    const LeastVector found = leastVector(C.program);
    if (found.contradicted > 0 && !C.freeYc) break;
    applyToH(C, found.multiplier);
    if (C.freeYc) applyToYc(C, found.multiplier);
    dropIdleCuts(C, found.multiplier);
    keepActiveRows(C, found.multiplier);
    C.margin = std::min(C.margin * MARGINGROWTH, MOSTMARGIN);
  }
  return false;
}

void printHeading() {
  fitRule('=');
  console::line("                    Passivity Enforcement ");
  fitRule('=');
  console::line("  Least change of the residues, whole spectrum");
  console::print("  Number of ports                  {:12}", ENFORCE.NC);
  console::print("  Order of the transfer function   {:12}", ENFORCE.TOTORD);
  console::line();
  console::line("    Program  Negative  Smallest eigenvalue");
  console::line("             minima");
}

} // namespace

void improvedEnforcement() {
  const std::clock_t start = std::clock();
  PASSSETY();
  PASSSETH();
  keepFittedYc();
  printHeading();
  ENFORCE.NS = SOLVEDATA.grid.NFUSE;
  for (int k = 1; k <= ENFORCE.NS; ++k) ENFORCE.FFIT[k] = SOLVEDATA.grid.WFREQ[k] / TWOPI;
  Course C;
  C.ofH = propagationBasis();
  C.ofYc = admittanceBasis();
  weighBases(C);
  int n = 0;
  const int most = PROGRAMS * RUNDATA.passivity.PMAXIT;
  bool passive = iterate(C, n, most);
  if (!passive) {
    C.freeYc = true;
    C.margin = MARGIN;
    copyResidues(ENFORCE.FRES, ENFORCE.FORIG);
    console::line("    Yc as well");
    passive = iterate(C, n, most);
  }
  const double change = PASSERR();
  if (passive && change <= RUNDATA.passivity.PMAXERR) {
    console::line(" There are no passivity violations. Passivity is sucessfully enforced  ");
    PASSBACK();
    PASSBACKY();
  } else {
    takeFittedYc();
    console::line(" *WARNING*: Passivity is not enforced. The model stays as it was fitted.");
    warn();
  }
  console::print(" Time elapsed  {}  [sec]",
                 static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
}

void improvedPassivityCheck() {}

} // namespace lcp
