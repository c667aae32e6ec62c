// Iterates scan and least change, first with H alone and, if that is not enough, with Yc as well.
// The scanned residues are written to the file unchanged, and its 17 digits reproduce the same
// numbers: the last scan applies to exactly what is written.
#include "improved/passivity/spectrum_enforcement.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/number_forms.h"
#include "fit/fit_console.h"
#include "fit/fit_store.h"
#include "improved/passivity/least_change.h"
#include "passivity/enforcement.h"
#include "passivity/nodal_admittance.h"
#include "passivity/passivity_check.h"
#include "passivity/violation_scan.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <algorithm>
#include <ctime>
#include <limits>
#include <string>

namespace lcp {

namespace {

constexpr int PROGRAMS = 3; // quadratic programs per requested iteration
constexpr int FROMFIT = 4;  // programs that look for the least change from the fit itself
constexpr int PATIENCE = 4; // programs with H alone that may bring no improvement

enum class Result { Passive, Negative, Unresolved };

struct Outcome {
  Result result;
  double changeOfYc; // percent
};

void printScan(int n, const Spectrum& scan, const std::vector<NegativePoint>& points) {
  if (points.empty()) {
    console::print("    {:4}{:11}  none{}", n, 0, scan.resolved ? "" : ", not resolved");
    return;
  }
  const auto& worst = *std::min_element(
      points.begin(), points.end(), [](const auto& a, const auto& b) { return a.depth < b.depth; });
  console::print("    {:4}{:11}  {} S at {} Hz", n, points.size(),
                 pointedField(smallestEigenvalueAt(worst.f), 14, 7), pointedField(worst.f, 14, 7));
}

// Scans the current model: a rough scan, then a full one if that finds nothing.
Spectrum scanModel() {
  Spectrum scan = scanSpectrum(spectrumRange(), Scan::Rough);
  if (!scan.negative.empty()) return scan;
  return scanSpectrum(spectrumRange(), Scan::Full);
}

// How far the model is from passive.
double depthOf(const std::vector<NegativePoint>& points) {
  double depth = 0;
  for (const NegativePoint& m : points) depth = std::max(depth, -m.depth);
  return depth;
}

// Iterates until the model is passive, `most` programs are solved, or H alone brings no
// improvement; n counts the scans.
Result iterate(LeastChange& C, int& n, int most) {
  double best = std::numeric_limits<double>::infinity();
  int since = 0;
  for (int i = 0; i <= most; ++i) {
    const Spectrum scan = scanModel();
    const std::vector<NegativePoint> points = negativeMinima(scan);
    printScan(n++, scan, points);
    if (points.empty()) return scan.resolved ? Result::Passive : Result::Unresolved;
    const double depth = depthOf(points);
    since = depth < best ? 0 : since + 1;
    best = std::min(depth, best);
    if (i == most || (since > PATIENCE && !C.freeYc)) break;
    if (i >= FROMFIT) rebaseLeastChange(C);
    addCuts(C, points);
    if (!solveLeastChange(C) && !C.freeYc) break;
  }
  return Result::Negative;
}

void printHeading() {
  fitRule('=');
  console::line("                    Passivity Enforcement ");
  fitRule('=');
  console::line("  Least change of the residues, whole spectrum");
  console::print("  Number of ports                  {:12}", ENFORCE.NC);
  console::print("  Order of the transfer function   {:12}", ENFORCE.TOTORD);
  console::line();
  console::line("    Program   Negative  Smallest eigenvalue");
  console::line("    before      points");
}

Outcome enforce() {
  const int most = PROGRAMS * std::max(RUNDATA.passivity.PMAXIT, 0);
  const FrequencyGrid& G = SOLVEDATA.grid;
  int n = 0;
  LeastChange C = startLeastChange();
  const Result result = iterate(C, n, most);
  if (result != Result::Negative || most == 0) return {result, 0};
  console::line("    H alone is not enough: Yc as well");
  restartLeastChange(C, true);
  const Result further = iterate(C, n, most);
  const double change = INPERCENT * changeOfAdmittance(G.WFREQ, G.NFUSE);
  console::print("  Maximum change of Yc  {} %", change);
  return {further, change};
}

void keepFit(std::string_view why) {
  warnInLine(fmt::format(NOTENFORCED, why));
  console::line("            The model stays as it was fitted.");
}

// Updates the curves of the fit to the residues that go to the file.
void renewFittedCurves() {
  static LineMatrix Yc, H;
  const FrequencyGrid& G = SOLVEDATA.grid;
  for (int k = 1; k <= G.NFUSE; ++k) {
    const Complex s(0, G.WFREQ[k]);
    characteristicAt(s, false, Yc);
    propagationAt(ENFORCE.FRES, s, H);
    FITTED.YC.store(k, Yc, ENFORCE.NC);
    FITTED.H.store(k, H, ENFORCE.NC);
  }
}

void takeModel() {
  PASSBACK();
  PASSBACKY();
  if (RUNDATA.fit.WDETAIL) renewFittedCurves();
}

// Decides whether the model in the store is used.
void decide(const Outcome& outcome) {
  const double change = PASSERR();
  const double allowed = RUNDATA.passivity.PMAXERR;
  if (outcome.result == Result::Unresolved) {
    keepFit("a scan did not resolve every minimum");
  } else if (outcome.result == Result::Negative) {
    keepFit("negative eigenvalues are left");
  } else if (!(change <= allowed && outcome.changeOfYc <= allowed)) {
    keepFit("H or Yc moved by more than the error allowed");
  } else {
    if (change > 0) takeModel();
    console::line(ENFORCEDLINE);
  }
}

// Returns false, with a message, for a model that exceeds the enforcement store.
bool fillStore() {
  PASSSETY();
  PASSSETH();
  if (ENFORCE.TOTORD <= MAXORDER) return true;
  console::print(" Improved Passivity takes transfer functions of order {} at most.", MAXORDER);
  return false;
}

std::string frequency(double f) { return scientificField(f, 10, 3); }

} // namespace

void enforcePassivityImproved() {
  const std::clock_t start = std::clock();
  if (!fillStore()) {
    keepFit("the order is too high");
    return;
  }
  ENFORCE.NS = SOLVEDATA.grid.NFUSE;
  for (int k = 1; k <= ENFORCE.NS; ++k) ENFORCE.FFIT[k] = SOLVEDATA.grid.WFREQ[k] / SINGLETWOPI;
  printHeading();
  decide(enforce());
  console::print(" Time elapsed  {}  [sec]",
                 static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
}

void checkPassivityImproved() {
  if (!fillStore()) return;
  const SpectrumRange range = spectrumRange();
  const Spectrum scan = scanSpectrum(range, Scan::Full);
  const std::vector<NegativeBand> bands = negativeBands(scan);
  console::print(" Checking for Passivity Violations Between 0 Hz and {} Hz",
                 frequency(range.high));
  fitRule('=');
  console::line(" Frequency range                              smallest eigenvalue");
  for (const NegativeBand& b : bands) {
    console::print(" From {} Hz to {} Hz {:8}{}", frequency(b.from), frequency(b.to), "",
                   scientificField(b.worst, 10, 3));
  }
  if (!scan.resolved) console::line(" The scan did not resolve every minimum.");
  console::line(bands.empty() ? PASSIVELINE : VIOLATEDLINE);
}

} // namespace lcp
