// The walk: between the frequencies of steps k - 1 and k a fraction x runs from 0 to 1, with
// decimal digits D(1) D(2) ... D(d). A failure goes one digit deeper (at most five); a success
// continues at the same depth up to the tenth digit, then goes one digit back up.
#include "modal/tracked_step.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/number_forms.h"
#include "kernels/inversion.h"
#include "kernels/matrix_kernels.h"
#include "modal/frequency_grid.h"
#include "modal/line_constants.h"
#include "modal/newton.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace lcp {

namespace {

constexpr int DEEPEST = 5;         // maximum number of decimal digits of the walk
constexpr int TOOMANYUPDATES = 10; // Newton updates above which a step was too long
constexpr int HYPHENS = 31;

bool failureInSolve = false; // the banner of the solve has been printed
bool failureInStep = false;  // the lines of the step have been printed
bool acceptedInStep = false; // the constant-transformation step has a solution of its own

double single(double x) { return static_cast<double>(static_cast<float>(x)); }

// --- Newton solution at the frequency of the current YMAT, ZMAT, PMAT

void explainFailure(int k) {
  if (!failureInSolve) {
    console::rule('*', 53);
    console::line(NEWTONTITLE);
    console::rule('*', 53);
  }
  if (!failureInStep) {
    console::line();
    console::line();
    console::print(STEPLINE, integerField(k, 3), scientificField(SOLVEDATA.grid.FREQ[k], 11, 4));
    console::rule('-', HYPHENS);
  }
  if (!failureInSolve) {
    console::line("NR proceedure required too many iterations while ");
    console::line("  solving eigenvalue/eigenvectors at this frequency ");
    console::line("  step.  Searching for a stable frequency to re-solve");
    console::line("  at before continuing.");
  }
  failureInSolve = failureInStep = true;
}

// Step whose solution is the start: the previous step, or while searching the solution last
// accepted at this step. For the constant-transformation step, the grid step next below its
// frequency.
int startingStep(int k, bool searching, double& scale) {
  FirstLoopStore& S = SOLVEDATA.first;
  scale = S.PSCALEST;
  if (isConstantTransformStep(k) && !acceptedInStep) {
    scale = S.PSCALECT;
    S.PIVOT = S.PIVOTC;
    return S.KCT;
  }
  return searching ? k : k - 1;
}

// Returns true if every mode was followed in a reasonable number of updates. A mode whose start is
// already exact keeps the values in EIG and TI: the last accepted solution, or the last attempt if
// that failed.
bool followModes(int k, bool searching) {
  static LineMatrix scaled;
  static LineMatrix XGUESS;
  static ModeComplex LGUESS;
  FirstLoopStore& S = SOLVEDATA.first;
  const int n = RUNDATA.line.NC;
  double scale = 1;
  const int r = startingStep(k, searching, scale);
  SOLVEDATA.at.MTI.load(r, XGUESS, n);
  for (int j = 1; j <= n; ++j) {
    LGUESS[j] = SOLVEDATA.at.MEIG(r, j) / scale;
  }
  copyCorner(scaled, S.PMAT, n);
  bool good = NREIG(S.EIG, S.TI, LGUESS, XGUESS, scaled, S.PSCALE, S.PIVOT, n);
  if (!good) explainFailure(k);
  for (int i = 1; i <= n; ++i) good = good && S.NRITER[i] < TOOMANYUPDATES;
  return good;
}

// --- the walk

struct Walk {
  int d = 0;              // depth
  bool searching = false; // a failure has occurred
  int (&D)[DEEPEST + 1] = SOLVEDATA.first.digits;

  double fraction() const {
    int digits = 0;
    for (int i = 1; i <= d; ++i) digits = 10 * digits + D[i];
    return single(single(digits) / single(std::pow(10.0, d)));
  }

  // Advances by one digit at the current depth, or goes back up. Returns false if the step is
  // finished.
  bool next() {
    if (++D[d] <= 10) return true;
    if (--d == 0) return false;
    ++D[d];
    return true;
  }

  bool goDeeper() {
    ++d;
    console::text("<");
    if (d > 1) --D[d - 1];
    D[d] = 0;
    return next();
  }

  // The deepest digit fails too: accepts the current solution and jumps ahead.
  bool giveUp(int k) {
    console::text(GIVENUP);
    acceptSolution(k);
    acceptedInStep = true;
    d = 1;
    D[1] += 2;
    return D[1] <= 10;
  }
};

// The way to a row of a table follows a logarithmic grid, which the rows need not match: it can
// lead beyond the two rows, but ends at the row itself.
double walkFrequency(int k, double x) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  if (RUNDATA.run.fromTable()) {
    return x == 1.0 ? G.FREQ[k] : std::pow(10.0, (k + 3 + x) * G.DLOGW + G.LOGW0) / TWOPI;
  }
  if (isConstantTransformStep(k)) {
    const double a = std::log10(TWOPI * G.FREQ[SOLVEDATA.first.KCT]);
    const double b = std::log10(TWOPI * RUNDATA.fit.FCT);
    return std::pow(10.0, a + x * (b - a)) / TWOPI;
  }
  return std::pow(10.0, (k - 2 + x) * G.DLOGW + G.LOGW0) / TWOPI;
}

// Continues the walk after a result. Returns false if the step is finished.
bool goOn(Walk& walk, int k, bool good) {
  if (!good) {
    walk.searching = true;
    return walk.d < DEEPEST ? walk.goDeeper() : walk.giveUp(k);
  }
  acceptSolution(k);
  acceptedInStep = true;
  if (!walk.searching) return false;
  console::text(">");
  return walk.next();
}

// A start that is already exact, e.g. if a grid point lies at the frequency of the constant
// transformation, leaves a mode with the values of the previous step, the end of the grid.
void warnOfKeptModes(int k, const ModeComplex& before) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  if (!RUNDATA.model.fitsModes() || SOLVEDATA.first.KCT == k - 1) return;
  std::string modes;
  for (int i = 1; i <= RUNDATA.line.NC; ++i) {
    if (SOLVEDATA.first.EIG[i] == before[i]) modes += fmt::format(" {}", i);
  }
  if (modes.empty()) return;
  console::warning(fmt::format("the constant transformation of {:.4g} Hz has vectors of {:.4g} Hz "
                               "for the modes{}; move its frequency off the grid, or set Improved "
                               "Modes : 1",
                               G.FREQ[k], G.FREQ[k - 1], modes));
}

} // namespace

void startTracking() { failureInSolve = false; }

void trackedStep(int k) {
  Walk walk;
  const ModeComplex before = SOLVEDATA.first.EIG;
  failureInStep = acceptedInStep = false;
  constantsAtStep(k, SOLVEDATA.grid.FREQ[k], Place::AtTheStep);
  while (goOn(walk, k, followModes(k, walk.searching))) {
    constantsAtStep(k, walkFrequency(k, walk.fraction()), Place::OnTheWay);
  }
  if (isConstantTransformStep(k)) warnOfKeptModes(k, before);
}

void acceptSolution(int k) {
  FirstLoopStore& S = SOLVEDATA.first;
  FrequencyStore& A = SOLVEDATA.at;
  const int n = RUNDATA.line.NC;
  PIVNORM(S.TI, S.TIINV, S.PIVOT, n);
  INVCJD(S.TIINV, S.TI, n);
  const int last = std::min(k + 1, MAXFREQ);
  for (int i = 1; i <= n; ++i) std::fill(&A.MEIG(k, i), &A.MEIG(last, i) + 1, S.EIG[i]);
  A.MTI.store(k, last, S.TI, n);
  A.YSTORE.store(k, last, S.YMAT, n);
  A.ZSTORE.store(k, last, S.ZMAT, n);
  S.PSCALEST = S.PSCALE;
}

} // namespace lcp
