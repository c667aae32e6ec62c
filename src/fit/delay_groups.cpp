// First delays follow from the gain-phase relation, mode by mode. A group is fitted to the mean of
// the propagation functions of its modes, with the delay removed. Its delay is searched again at
// each number of poles, starting from the last delay and within 20 percent of the delay at the
// start of the attempt; the first step is half the sum of the minimum-phase part and all steps so
// far.
#include "fit/delay_groups.h"

#include "base/big_store.h"
#include "base/constants.h"
#include "fit/bode_delay.h"
#include "fit/delay_search.h"
#include "fit/fit_store.h"
#include "fit/propagation_tables.h"
#include "store/rundata.h"

#include <algorithm>

namespace lcp {

namespace {

constexpr double THRESH = 0.01;       // magnitude at which the first delay of a mode is taken
constexpr double GROUPANGLE = 10.0;   // phase within which modes share a delay, degrees
constexpr double NOERROR = 1000000.0; // of a group or delay that was not fitted yet
constexpr double UPPER = 1.2;         // bounds of a search, relative to the delay at its start
constexpr double LOWER = 0.8;

// Data of the groups kept between attempts. The table of tried delays is never cleared.
struct GroupStore {
  CurveVector<Complex, NGMAX, MAXFREQ> H; // mean propagation function of group g
  GroupReals TSTEP;                       // base of the first step of the next search, s
  GroupReals ERRG;                        // largest deviation in its last fit
  DelayTable tried;
};

GroupStore& GROUPS = bigStore<GroupStore>();

void firstDelays(ModeDelays& D, int n) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  const SecondLoopStore& T = SOLVEDATA.second;
  for (int i = 1; i <= n; ++i) {
    const BodeDelay delay =
        BODEDLY(T.VELOC.curve(i), T.HMODE.curve(i), G.NFUSE, G.WFREQ, RUNDATA.run.LINELEN, THRESH);
    D.tau[i] = delay.TAU;
    D.corr[i] = delay.CORR;
    D.mode[i] = i;
  }
}

// Adds a mode to its group; the first mode sets the delay of the group.
void addMode(int g, int members, int i, const ModeDelays& D) {
  const int NS = SOLVEDATA.grid.NFUSE;
  const ComplexCurve& H = SOLVEDATA.second.HMODE.curve(D.mode[i]);
  ComplexCurve& sum = GROUPS.H.curve(g);
  if (members == 1) {
    std::copy_n(H.steps, NS, sum.steps);
    FITMODEL.TAU[g] = D.tau[i];
    GROUPS.TSTEP[g] = D.corr[i];
    GROUPS.ERRG[g] = NOERROR;
    FITMODEL.NH[g] = 0;
    return;
  }
  for (int k = 1; k <= NS; ++k) sum[k] += H[k];
}

void formMean(int g, int members) {
  for (int k = 1; k <= SOLVEDATA.grid.NFUSE; ++k) GROUPS.H(k, g) /= members;
}

struct Bounds {
  double low, up; // s
};

// Searches the delay of group g with its present number of poles and fits the poles; s0 determines
// the first step. Returns the largest deviation.
double fitGroup(int g, double s0, Bounds bounds) {
  static FunctionFit fit;
  const FrequencyGrid& G = SOLVEDATA.grid;
  const FitSamples samples{G.NFUSE,      1,          G.WFREQ, &GROUPS.H.curve(g), G.WFIT,
                           FLIPUNSTABLE, NOASYMPTOTE};
  DelaySearch search{FITMODEL.TAU[g], -0.5 * s0, NOERROR, bounds.up, bounds.low, GROUPS.TSTEP[g]};
  FitErrors errors{};
  startingPoles(FITMODEL.HPOLE[g], FITMODEL.NH[g], G.WFREQ[1], G.WFREQ[G.NFUSE]);
  SEARCHDELAY(search, GROUPS.tried, samples, FITMODEL.NH[g], FITMODEL.HPOLE[g], fit, errors);
  FITMODEL.TAU[g] = search.tau;
  GROUPS.TSTEP[g] = search.stepSum;
  takeDelayOut(GROUPS.H.curve(g), search.tau, G.WFREQ, G.NFUSE, FITTED.GROUP.curve(g));
  std::copy_n(fit.FIT.steps, G.NFUSE, FITTED.GROUPFIT.curve(g).steps);
  return errors.ERRMAX;
}

void growGroup(int g, double TARGET, int limit) {
  const double s0 = GROUPS.TSTEP[g];
  const Bounds bounds{LOWER * FITMODEL.TAU[g], UPPER * FITMODEL.TAU[g]};
  double error = NOERROR;
  do {
    ++FITMODEL.NH[g];
    error = fitGroup(g, s0, bounds);
  } while (!(error <= TARGET) && FITMODEL.NH[g] < limit);
  GROUPS.ERRG[g] = error;
}

} // namespace

void sortDelays(ModeDelays& D, int n) {
  for (int pass = 1; pass <= n; ++pass) {
    for (int i = 1; i < n; ++i) {
      if (!(D.tau[i + 1] < D.tau[i])) continue;
      std::swap(D.tau[i], D.tau[i + 1]);
      std::swap(D.corr[i], D.corr[i + 1]);
      std::swap(D.mode[i], D.mode[i + 1]);
    }
  }
}

int assignGroups(const ModeReals& tau, int n, double tol, ModeInts& group) {
  std::fill_n(group.data(), n, 0);
  int groups = 0;
  for (int i = 1; i <= n; ++i) {
    if (group[i] != 0) continue;
    group[i] = ++groups;
    for (int j = i + 1; j <= n; ++j) {
      if (group[j] == 0 && tau[j] - tau[i] <= tol) group[j] = groups;
    }
  }
  return groups;
}

void FORMGROUPS() {
  static ModeDelays D;
  static ModeInts group;
  const FrequencyGrid& G = SOLVEDATA.grid;
  const int n = FITMODEL.NC;
  firstDelays(D, n);
  sortDelays(D, n);
  const double tol = (GROUPANGLE * TWOPI) / (G.WFREQ[G.NFUSE] * 360);
  FITMODEL.NGROUP = assignGroups(D.tau, n, tol, group);
  FITMODEL.TAU.fill(0.0);
  for (int g = 1; g <= FITMODEL.NGROUP; ++g) {
    int members = 0;
    for (int i = 1; i <= n; ++i) {
      if (group[i] == g) addMode(g, ++members, i, D);
    }
    formMean(g, members);
    std::fill_n(FITTED.GROUPFIT.curve(g).steps, G.NFUSE, Complex());
    takeDelayOut(GROUPS.H.curve(g), FITMODEL.TAU[g], G.WFREQ, G.NFUSE, FITTED.GROUP.curve(g));
  }
}

const ComplexCurve& groupCurve(int g) { return GROUPS.H.curve(g); }

double groupCorrection(int g) { return GROUPS.TSTEP[g]; }

bool HMODEFIT(double TARGET, int limit) {
  bool changed = false;
  printModeHeading();
  for (int g = 1; g <= FITMODEL.NGROUP; ++g) {
    if (TARGET < GROUPS.ERRG[g] && FITMODEL.NH[g] < limit) {
      growGroup(g, TARGET, limit);
      changed = true;
    }
    printModeRow(g, GROUPS.ERRG[g], FITMODEL.NH[g], FITMODEL.TAU[g]);
  }
  return changed;
}

bool groupsCanGrow(int limit) {
  for (int g = 1; g <= FITMODEL.NGROUP; ++g) {
    if (FITMODEL.NH[g] < limit && GROUPS.ERRG[g] > 0) return true;
  }
  return false;
}

} // namespace lcp
