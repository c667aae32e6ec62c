// A scan over the grid finds where eigenvalues of the nodal admittance are negative; the worst
// frequencies become constraint frequencies. With x the changes of the free eigenvalues of the
// residue matrices, S the sensitivity of H at a fit frequency, and D the sensitivity of the
// eigenvalues lambda at a constraint frequency:
//
//   min 1/2 x^T G x    G = sum over the fit frequencies of S^T S, the change of H
//   lambda + D x >= margin, for each lambda below the margin
//
// A scan of the changed model adds frequencies, and the program is solved again. After three such
// inner iterations the changed residues become the base of the next main iteration.
#include "passivity/enforcement.h"

#include "base/console.h"
#include "fit/fit_console.h"
#include "kernels/lapack.h"
#include "kernels/matrix_kernels.h"
#include "passivity/nodal_admittance.h"
#include "passivity/quadratic_program.h"
#include "passivity/residue_model.h"
#include "passivity/residue_sensitivity.h"
#include "passivity/violation_scan.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <string>

namespace lcp {

namespace {

constexpr int NINNER = 3;             // inner iterations per main iteration
constexpr double MARGINFACTOR = 10.0; // margin of the constraints over the tolerance of the scan

enum class Outcome { Passive, Violated, Failed };

void hyphens() { console::print("  {} ", std::string(68, '-')); }

void blanks() { console::line("  "); }

void printHeading() {
  fitRule('=');
  for (int i = 1; i <= 3; ++i) console::line("   ");
  console::line("                    Passivity Enforcement ");
  fitRule('=');
  console::line("  Optimization via Spectral Residue Pertubation            ");
  console::line("  of propagation matrix            ");
  console::print("  Number of ports                  {:12}", ENFORCE.NC);
  console::print("  Order of the transfer function   {:12}", ENFORCE.TOTORD);
  console::line("      ");
}

void printSuccess() {
  console::line(ENFORCEDLINE);
  hyphens();
}

// Forms G, with a small diagonal term that keeps it positive definite.
void formNormalMatrix() {
  EnforcementStore& E = ENFORCE;
  const int rows = 2 * E.NC * E.NC;
  const RView S(E.SENS, rows);
  const RView G = E.G;
  for (int j = 1; j <= E.NVAR; ++j) std::fill_n(G.column(j), E.NVAR, 0.0);
  for (int k = 1; k <= E.NS; ++k) {
    RESSENS(E.FFIT[k], S);
    addNormalMatrix(G, S, rows, E.NVAR);
  }
  for (int j = 1; j <= E.NVAR; ++j) {
    G(j, j) += SMALLSINGLE;
    for (int i = 1; i < j; ++i) G(j, i) = G(i, j);
  }
}

RView constraints() { return {ENFORCE.CMATRIX, MAXCONSTRAINTS}; }

// Adds the eigenvalues below the margin at frequency f as constraints.
void addConstraints(double f, double margin) {
  static double derivatives[static_cast<std::size_t>(LDNODAL) * MAXVARIABLES];
  static NodalReals lambda;
  EnforcementStore& E = ENFORCE;
  const RView D(derivatives, LDNODAL);
  EIGSENS(f, D, lambda);
  for (int q = 1; q <= 2 * E.NC; ++q) {
    if (!(lambda[q] < margin)) continue;
    E.CBOUND[++E.NCON] = lambda[q] - margin;
    for (int k = 1; k <= E.NVAR; ++k) constraints()(E.NCON, k) = -D(q, k);
  }
}

void formConstraints(double margin) {
  ENFORCE.NCON = 0;
  for (int i = 1; i <= ENFORCE.NCFREQ; ++i) addConstraints(ENFORCE.CFREQ[i], margin);
}

// Whether the residues are finite: a solution can overflow.
bool isFiniteModel(const ResidueList& RES) {
  for (int m = 1; m <= ENFORCE.TOTORD; ++m) {
    if (!allFinite(RES[m], ENFORCE.NC)) return false;
  }
  return true;
}

// Returns false if there is no solution. Without variables there is one only if there are no
// constraints.
bool solveProgram() {
  static Table<double, MAXVARIABLES> g;
  EnforcementStore& E = ENFORCE;
  if (E.NVAR == 0) return E.NCON == 0;
  return QPDUAL(E.NVAR, E.NCON, E.G, g.data(), constraints(), E.CBOUND.data(), E.X.data());
}

} // namespace

bool QPRUN() {
  if (solveProgram()) {
    RESAPPLY(ENFORCE.X);
    if (isFiniteModel(ENFORCE.FPERT)) return true;
  }
  console::line(NOSOLUTIONLINE);
  return false;
}

namespace {

Outcome innerIteration(int i, double PEIGTOL) {
  blanks();
  console::print("    Inner Iteration  #{:3}", i);
  formConstraints(MARGINFACTOR * PEIGTOL);
  if (!QPRUN()) return Outcome::Failed;
  PASSVIOL(PEIGTOL, Residues::Changed);
  PASSLIST();
  if (ENFORCE.VPOINT.count == 0) {
    blanks();
    printSuccess();
    return Outcome::Passive;
  }
  PASSTAB();
  return Outcome::Violated;
}

// Scans at the start of a main iteration; returns true if there is nothing to do.
bool passiveAtStart(int n, double PEIGTOL) {
  ENFORCE.NCFREQ = 0;
  hyphens();
  console::print("   Main Iteration  # {:3}", n);
  hyphens();
  PASSVIOL(PEIGTOL, Residues::Base);
  PASSLIST();
  if (ENFORCE.VPOINT.count == 0) {
    blanks();
    if (n > 1) printSuccess();
    if (n == 1) console::line(NOVIOLATIONLINE);
    return true;
  }
  if (n == 1) {
    console::line(INITIALLINE);
    PASSTAB();
  }
  return false;
}

Outcome mainIteration(int n, double PEIGTOL) {
  if (passiveAtStart(n, PEIGTOL)) return Outcome::Passive;
  decomposeResidues();
  RESMASK();
  formNormalMatrix();
  Outcome outcome = Outcome::Violated;
  for (int i = 1; i <= NINNER && outcome == Outcome::Violated; ++i)
    outcome = innerIteration(i, PEIGTOL);
  if (outcome != Outcome::Failed) copyResidues(ENFORCE.FRES, ENFORCE.FPERT);
  return outcome;
}

// Returns true if the model is passive on the grid.
bool iterate(const PassivityOptions& P) {
  RESCLASS();
  PASSGRID(P.PFLO, P.PFHI, P.NPFINC, P.PFDIST, ENFORCE.EGRID);
  Outcome outcome = Outcome::Violated;
  for (int n = 1; n <= P.PMAXIT && outcome == Outcome::Violated; ++n)
    outcome = mainIteration(n, P.PEIGTOL);
  return outcome == Outcome::Passive;
}

bool orderFits() {
  if (ENFORCE.TOTORD <= MAXORDER) return true;
  console::print(" The passivity enforcement takes transfer functions of order {} at most.",
                 MAXORDER);
  console::line(" The model stays as it was fitted.");
  return false;
}

} // namespace

bool PASSENF(const PassivityOptions& P, const FreqCurve& WFREQ, int NS) {
  const std::clock_t start = std::clock();
  ENFORCE.NS = NS;
  for (int k = 1; k <= NS; ++k) ENFORCE.FFIT[k] = WFREQ[k] / SINGLETWOPI;
  printHeading();
  // A NaN error does not pass this test.
  const bool improved = orderFits() && iterate(P) && PASSERR() <= P.PMAXERR;
  console::print(" Time elapsed  {}  [sec]",
                 static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
  return improved;
}

void enforcePassivity() {
  PASSSETY();
  PASSSETH();
  if (PASSENF(RUNDATA.passivity, SOLVEDATA.grid.WFREQ, SOLVEDATA.grid.NFUSE)) PASSBACK();
}

} // namespace lcp
