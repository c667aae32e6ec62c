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
#include "improved/passivity/reserve_poles.h"
#include "passivity/enforcement.h"
#include "passivity/nodal_admittance.h"
#include "passivity/passivity_check.h"
#include "passivity/violation_scan.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <algorithm>
#include <ctime>
#include <iterator>
#include <limits>
#include <string>

namespace lcp {

namespace {

constexpr int PROGRAMS = 3;    // quadratic programs per requested iteration
constexpr int FROMFIT = 4;     // programs that look for the least change from the fit itself
constexpr int PATIENCE = 4;    // programs with H alone that may bring nothing
constexpr double LOST = 4;     // times the wish: an error that ends an attempt before the last
constexpr double FARLOST = 40; // ... with many conductors
constexpr double LITTLE = 1.1; // times the error of a fit above its wish that a change may leave
constexpr double LIGHT = 0.01; // weight of changes outside the band, where those inside cost much
constexpr double NOLIMIT = std::numeric_limits<double>::infinity();
constexpr double LEASTWISH = 1e-6; // per cent
constexpr int MANY = 12;           // conductors beyond which the first passive model is taken

enum class Result { Passive, Negative, Unresolved, Lost };

// What an attempt may change.
struct Attempt {
  std::string_view heading;
  bool freeYc;
  Reserve reserve;
  double outside; // weight of changes outside the band
};

constexpr Attempt attempts[] = {
    {"", false, {0, 0}, 1},
    {"    H alone is not enough: Yc as well", true, {0, 0}, 1},
    {"    Changes outside the band count less", true, {0, 0}, LIGHT},
    {"    One more pole of Yc and each group of H above the band", true, {0, 1}, 1},
};

// The same with values at zero frequency that stay.
constexpr Attempt heldAttempts[] = {
    {"", false, {0, 0}, 1},
    {"    One more pole of Yc and H below the band, for the values at 0 Hz", true, {1, 0}, 1},
    {"    Changes outside the band count less", true, {1, 0}, LIGHT},
    {"    One more pole of Yc and each group of H above the band as well", true, {1, 1}, 1},
};

// The passive model that exceeds the wish least.
struct Best {
  bool found = false;
  double excess = 0;
  PoleCounts counts;
  KeptModel model;
};

double largestDifference(CConstView a, CConstView b) {
  double largest = 0;
  for (int c = 1; c <= ENFORCE.NC; ++c) {
    for (int r = 1; r <= ENFORCE.NC; ++r) largest = std::max(largest, std::abs(a(r, c) - b(r, c)));
  }
  return largest;
}

double largestElement(CConstView a) {
  static const LineMatrix zero{};
  return largestDifference(a, zero);
}

// Errors of the model at hand against the line, as fractions.
struct LineErrors {
  double H = 0, Yc = 0; // Yc: of its largest magnitude
};

LineErrors errorsOfModel() {
  static LineMatrix model, line;
  const FrequencyGrid& G = SOLVEDATA.grid;
  LineErrors err;
  double peak = 0;
  for (int k = 1; k <= G.NFUSE; ++k) {
    const Complex s(0, G.WFREQ[k]);
    propagationAt(ENFORCE.FRES, s, model);
    SOLVEDATA.second.HST.load(k, line, ENFORCE.NC);
    err.H = std::max(err.H, largestDifference(model, line));
    characteristicAt(s, false, model);
    SOLVEDATA.second.YCST.load(k, line, ENFORCE.NC);
    err.Yc = std::max(err.Yc, largestDifference(model, line));
    peak = std::max(peak, largestElement(line));
  }
  if (peak > 0) err.Yc /= peak;
  return err;
}

double wishOfH() { return std::max(RUNDATA.fit.ERRA, LEASTWISH) * PERCENT; }
double wishOfYc() { return std::max(RUNDATA.fit.ERRY, LEASTWISH) * PERCENT; }

// How far errors exceed their wishes: 1 where they just meet them.
double excess(const LineErrors& err) { return std::max(err.H / wishOfH(), err.Yc / wishOfYc()); }

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

// Until the model is passive, so many programs are solved, H alone brings nothing, or the errors
// exceed their wishes by more than allowed; n counts the scans.
Result iterate(LeastChange& C, int& n, int most, double allowed) {
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
    if (i > 0 && excess(errorsOfModel()) > allowed) return Result::Lost;
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

// The store from FITMODEL; false, with a message, for a model that it does not take.
bool fillStore() {
  PASSSETY();
  PASSSETH();
  if (ENFORCE.TOTORD <= MAXORDER) return true;
  console::print(" Improved Passivity takes transfer functions of order {} at most.", MAXORDER);
  return false;
}

void note(Best& best, double reached) {
  if (best.found && !(reached < best.excess)) return;
  best = {true, reached, countPoles(), keepModel()};
}

// One attempt from the model as fitted.
Result attempt(const Attempt& A, const PoleCounts& fitted, int& n, int most, double allowed) {
  setPoleCounts(fitted);
  addReserve(A.reserve);
  if (!fillStore()) return Result::Negative;
  if (!A.heading.empty()) console::line(A.heading);
  LeastChange C = startLeastChange(A.outside);
  restartLeastChange(C, A.freeYc);
  return iterate(C, n, most, allowed);
}

// Attempts until one is passive and holds the wishes, with many conductors until one is passive;
// else the best one. FITMODEL has the poles of
// the one that is taken, and the store its residues.
Result enforce() {
  const int most = PROGRAMS * std::max(RUNDATA.passivity.PMAXIT, 0);
  const PoleCounts fitted = countPoles();
  const double target = std::max(1.0, LITTLE * excess(errorsOfModel()));
  const bool held = RUNDATA.fit.DCCORR > 0, many = ENFORCE.NC > MANY;
  Best best;
  Result last = Result::Negative;
  int n = 0, tried = 0;
  for (const Attempt& A : held ? heldAttempts : attempts) {
    const bool final = ++tried == std::ssize(attempts);
    if (tried > 2 && many) break;
    last = attempt(A, fitted, n, most, many ? FARLOST * target : final ? NOLIMIT : LOST * target);
    const double reached = excess(errorsOfModel());
    if (last == Result::Passive) note(best, reached);
    if ((last == Result::Passive && (many || reached <= target)) || most == 0) break;
  }
  if (!best.found) {
    setPoleCounts(fitted);
    return last;
  }
  setPoleCounts(best.counts);
  (void)fillStore();
  putBack(best.model);
  return Result::Passive;
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

// A change must not cost what the fit met.
void reportErrors() {
  const LineErrors err = errorsOfModel();
  console::print("  Error of the written model  {:.4g} % of H, {:.4g} % of Yc", INPERCENT * err.H,
                 INPERCENT * err.Yc);
  warnOfMiss("H as written", err.H, wishOfH());
  warnOfMiss("Yc as written", err.Yc, wishOfYc());
}

// What becomes of the model in the store.
void decide(Result result, const PoleCounts& fitted) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  const double allowed = RUNDATA.passivity.PMAXERR;
  const double ofH = PASSERR();
  const double ofYc = INPERCENT * changeOfAdmittance(G.WFREQ, G.NFUSE);
  if (ofYc > 0) console::print("  Maximum change of Yc  {} %", ofYc);
  const bool passive = result == Result::Passive;
  if (passive && ofH <= allowed && ofYc <= allowed) {
    if (ofH > 0 || ofYc > 0) takeModel();
    console::line(ENFORCEDLINE);
    reportErrors();
    return;
  }
  setPoleCounts(fitted);
  if (passive) {
    keepFit("H or Yc moved by more than the error allowed");
  } else {
    keepFit(result == Result::Unresolved ? "a scan did not resolve every minimum"
                                         : "negative eigenvalues are left");
  }
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
  const PoleCounts fitted = countPoles();
  decide(enforce(), fitted);
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
