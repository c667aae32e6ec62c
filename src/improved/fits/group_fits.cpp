#include "improved/fits/group_fits.h"

#include "base/big_store.h"
#include "fit/delay_groups.h"
#include "fit/delay_search.h"
#include "fit/fit_store.h"
#include "improved/fits/settled_fit.h"

#include <algorithm>
#include <cmath>

namespace lcp {

namespace {

struct GroupFit {
  double tau, error; // s, largest deviation
  PoleTable P;
};

struct GroupFits {
  int made; // number of fits made, with 1 to `made` poles
  DelayRange range;
  Table<GroupFit, NPMAX> fits;
};

using GroupFitTable = Table<GroupFits, NGMAX>;
GroupFitTable& HISTORY = bigStore<GroupFitTable>();

constinit SettledFit settled{};

FitSamples samplesOf(int g) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  return {G.NFUSE, 1, G.WFREQ, &groupCurve(g), G.WFIT, FLIPUNSTABLE, NOASYMPTOTE};
}

BetweenCurve noMiddles() { return {0, SOLVEDATA.grid.WFREQ, nullptr}; }

// Fits with one more pole, starting from the delay of the previous fit.
void addFit(int g) {
  GroupFits& H = HISTORY[g];
  const int N = ++H.made;
  GroupFit& fit = H.fits[N];
  fit.tau = N > 1 ? H.fits[N - 1].tau : FITMODEL.TAU[g];
  fit.error = SETTLEDELAY(samplesOf(g), noMiddles(), N, 0.0, H.range, fit.tau, fit.P, settled);
}

// The smallest number of poles, from n on, that meets TARGET, or else the best number.
int countFor(int g, double TARGET, int limit, int n) {
  GroupFits& H = HISTORY[g];
  int best = std::max(n, 1);
  for (int N = best; N <= limit; ++N) {
    if (N > H.made) addFit(g);
    if (H.fits[N].error < H.fits[best].error) best = N;
    if (H.fits[N].error <= TARGET) return N;
  }
  return best;
}

} // namespace

void startGroupFits() {
  for (int g = 1; g <= FITMODEL.NGROUP; ++g) {
    HISTORY[g].made = 0;
    HISTORY[g].range = delayRange(FITMODEL.TAU[g]);
  }
}

bool growGroups(double TARGET, int limit, GroupInts& NH) {
  bool changed = false;
  for (int g = 1; g <= FITMODEL.NGROUP; ++g) {
    const int N = countFor(g, TARGET, limit, NH[g]);
    changed = changed || N != NH[g];
    NH[g] = N;
  }
  return changed;
}

void takeGroupFits(const GroupInts& NH, PoleSet& S) {
  for (int g = 1; g <= FITMODEL.NGROUP; ++g) {
    const GroupFit& fit = HISTORY[g].fits[NH[g]];
    S.groups = FITMODEL.NGROUP;
    S.NH[g] = NH[g];
    S.TAU[g] = fit.tau;
    std::copy_n(fit.P.data(), NH[g], S.HPOLE[g].data());
  }
}

double groupError(int g, const PoleSet& S) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  ComplexCurve& bare = FITTED.GROUP.curve(g);
  PoleTable poles = S.HPOLE[g];
  takeDelayOut(groupCurve(g), S.TAU[g], G.WFREQ, G.NFUSE, bare);
  FitSamples Q = samplesOf(g);
  Q.F = &bare;
  VFITPASSES(0, Q, S.NH[g], poles, &settled.model, settled.errors);
  std::copy_n(settled.model.FIT.steps, G.NFUSE, FITTED.GROUPFIT.curve(g).steps);
  return settled.errors.ERRMAX;
}

} // namespace lcp
