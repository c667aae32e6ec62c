// The walk: between the frequencies of the steps k - 1 and k runs a fraction x from 0 to 1, read
// off decimal digits D(1) D(2) ... D(d). A failure goes one digit deeper (at most five), a success
// goes on at the same depth until the tenth digit, then one digit back up.
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

namespace lcp {

namespace {

constexpr int DEEPEST = 5;         // decimal digits of the walk
constexpr int TOOMANYUPDATES = 10; // Newton updates of a step that was too long
constexpr double MERGED =
    1e-7; // relative, above Newton's tolerance; modes that differ by less are one
constexpr int HYPHENS = 31;

bool failureInSolve = false; // the banner of the solve was printed
bool failureInStep = false;  // the lines of the step were printed
bool acceptedInStep = false; // the constant transform step has a solution of its own

double single(double x) { return static_cast<double>(static_cast<float>(x)); }

// --- Newton solution at the frequency that YMAT, ZMAT, PMAT stand for

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

// Sets up the start: the step before, or while searching the last solution accepted at this step;
// at the constant transform step the grid step that lies next below its frequency.
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

// The step was so long that a mode ended on the eigenvalue and the vector of another one. Equal
// eigenvalues alone are no fault: modes of a balanced line have them, with vectors of their own.
bool sameMode(int a, int b, int n) {
  const FirstLoopStore& S = SOLVEDATA.first;
  if (std::abs(S.EIG[a] - S.EIG[b]) > MERGED * std::abs(S.EIG[a])) return false;
  Complex dot;
  double aa = 0, bb = 0;
  for (int i = 1; i <= n; ++i) {
    dot += std::conj(S.TI(i, a)) * S.TI(i, b);
    aa += std::norm(S.TI(i, a));
    bb += std::norm(S.TI(i, b));
  }
  return std::norm(dot) > (1 - MERGED) * aa * bb;
}

bool anyModesMerged(int n) {
  for (int a = 1; a <= n; ++a) {
    for (int b = a + 1; b <= n; ++b) {
      if (sameMode(a, b, n)) return true;
    }
  }
  return false;
}

// True when every mode was followed, in a reasonable number of updates and to a solution of its
// own. A mode whose start is already exact keeps it, so the outputs are set to the start
// beforehand.
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
    S.EIG[j] = SOLVEDATA.at.MEIG(r, j);
    LGUESS[j] = S.EIG[j] / scale;
  }
  copyCorner(S.TI, XGUESS, n);
  copyCorner(scaled, S.PMAT, n);
  bool good = NREIG(S.EIG, S.TI, LGUESS, XGUESS, scaled, S.PSCALE, S.PIVOT, n);
  if (!good) explainFailure(k);
  for (int i = 1; i <= n; ++i) good = good && S.NRITER[i] < TOOMANYUPDATES;
  return good && !anyModesMerged(n);
}

// --- the walk

struct Walk {
  int d = 0;              // depth
  bool searching = false; // a first failure was met
  int (&D)[DEEPEST + 1] = SOLVEDATA.first.digits;

  double fraction() const {
    int digits = 0;
    for (int i = 1; i <= d; ++i) digits = 10 * digits + D[i];
    return single(single(digits) / single(std::pow(10.0, d)));
  }

  // One further at the present depth, or back up. False when the step is finished.
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

  // The deepest digit does not help: what stands is taken, and the walk jumps ahead.
  bool giveUp(int k) {
    console::text(GIVENUP);
    acceptSolution(k);
    acceptedInStep = true;
    d = 1;
    D[1] += 2;
    return D[1] <= 10;
  }
};

double walkFrequency(int k, double x) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  if (RUNDATA.run.fromTable()) {
    // the rows of a table need not stand at equal steps
    return x == 1.0 ? G.FREQ[k] : std::pow(10.0, G.LOGF[k - 1] + x * (G.LOGF[k] - G.LOGF[k - 1]));
  }
  if (isConstantTransformStep(k)) {
    const double a = std::log10(TWOPI * G.FREQ[SOLVEDATA.first.KCT]);
    const double b = std::log10(TWOPI * RUNDATA.fit.FCT);
    return std::pow(10.0, a + x * (b - a)) / TWOPI;
  }
  return std::pow(10.0, (k - 2 + x) * G.DLOGW + G.LOGW0) / TWOPI;
}

// What a result means for the walk. False when the step is finished.
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

} // namespace

void startTracking() { failureInSolve = false; }

void trackedStep(int k) {
  Walk walk;
  failureInStep = acceptedInStep = false;
  double f = SOLVEDATA.grid.FREQ[k];
  for (;;) {
    constantsAtStep(k, f, walk.searching ? Place::OnTheWay : Place::AtTheStep);
    if (!goOn(walk, k, followModes(k, walk.searching))) return;
    f = walkFrequency(k, walk.fraction());
  }
}

void acceptSolution(int k) {
  FirstLoopStore& S = SOLVEDATA.first;
  FrequencyStore& A = SOLVEDATA.at;
  const int n = RUNDATA.line.NC;
  PIVNORM(S.TI, S.TIINV, S.PIVOT, n);
  INVCJD(S.TIINV, S.TI, n);
  for (int step = k; step <= std::min(k + 1, MAXFREQ); ++step) {
    for (int i = 1; i <= n; ++i) A.MEIG(step, i) = S.EIG[i];
    A.MTI.store(step, S.TI, n);
    A.YSTORE.store(step, S.YMAT, n);
    A.ZSTORE.store(step, S.ZMAT, n);
  }
  S.PSCALEST = S.PSCALE;
}

} // namespace lcp
