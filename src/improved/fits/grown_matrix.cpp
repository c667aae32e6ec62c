// Each number of poles starts from complex poles and, where those do not lead to the target, from
// real ones. Near the target the weights of the frequencies follow their deviations: the largest
// deviation becomes less than with least squares alone (after Lawson).
#include "improved/fits/grown_matrix.h"

#include "base/big_store.h"
#include "base/finite.h"
#include "fit/vector_fit.h"
#include "improved/fits/between_points.h"
#include "improved/fits/moved_poles.h"
#include "improved/fits/relaxed_fit.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>

namespace lcp {

namespace {

constexpr int PASSES = 4;           // of relaxed vector fitting
constexpr int STEPS = 15;           // of the poles
constexpr int FLATTENINGS = 4;      // of the deviations
constexpr int FLATSTEPS = 3;        // of the poles after each
constexpr double WITHINREACH = 1.6; // error over the target that flattening may mend
constexpr double LEASTPART = 0.25;  // of the mean deviation that counts
constexpr double BELOWWEIGHT = 8;   // of the frequencies below the band

struct Store {
  PoleTargets targets, batch;
  PoleSet set;
  int NS; // points, and frequencies below them
  FreqCurve W, WEIGHT;
};
Store& STORE = bigStore<Store>();

struct BestFit {
  MatrixFitResult fit{};
  PoleTable poles;
  FreqCurve WEIGHT;
};

double peakOf(const MatrixSamples& F, int NS) {
  LargestModulus peak;
  for (int j = 1; j <= RUNDATA.line.NC; ++j) {
    for (int i = 1; i <= RUNDATA.line.NC; ++i) {
      for (int k = 1; k <= NS; ++k) peak.take(F(k, i, j));
    }
  }
  return peak;
}

// Largest deviation between the points, over the largest magnitude at them.
double errorBetween(const MatrixFit& Q, const MatrixSamples& F, int N) {
  static ComplexCurve model;
  static PoleCurves u;
  poleCurves(Q.P, N, BETWEEN.WFREQ, BETWEEN.NB, u);
  LargestModulus most;
  for (int j = 1; j <= RUNDATA.line.NC; ++j) {
    for (int i = 1; i <= RUNDATA.line.NC; ++i) {
      const double E = Q.E == nullptr ? 0.0 : (*Q.E)(i, j);
      partialFractionCurve(u, Q.R(i, j), N, Q.D(i, j), E, BETWEEN.WFREQ, BETWEEN.NB, model);
      for (int k = 1; k <= BETWEEN.NB; ++k) most.take(model[k] - F(k, i, j));
    }
  }
  const double peak = peakOf(Q.F, SOLVEDATA.grid.NFUSE);
  return peak > 0 ? most / peak : most;
}

PoleFrame frameOf(const MatrixFit& Q) { return {true, Q.E != nullptr, Q.DC != nullptr, false}; }

// Points of the fit with their weights, and after them the frequencies below.
void laySamples() {
  const FrequencyGrid& G = SOLVEDATA.grid;
  const int below = std::min(BETWEEN.BELOW, MAXFREQ - G.NFUSE);
  STORE.NS = G.NFUSE;
  std::copy_n(G.WFREQ.steps, G.NFUSE, STORE.W.steps);
  std::copy_n(G.WFIT.steps, G.NFUSE, STORE.WEIGHT.steps);
  for (int b = 1; b <= below; ++b) {
    STORE.W[++STORE.NS] = BETWEEN.WFREQ[BETWEEN.NB + b];
    STORE.WEIGHT[STORE.NS] = BELOWWEIGHT * G.WFIT[1];
  }
}

void takeElement(const MatrixFit& Q, const MatrixSamples& between, PoleTargets& T, int number,
                 int r, int c) {
  static ComplexCurve F;
  const int NS = SOLVEDATA.grid.NFUSE;
  std::copy_n(Q.F.curve(r, c).steps, NS, F.steps);
  for (int k = NS + 1; k <= STORE.NS; ++k) F[k] = between(BETWEEN.NB + k - NS, r, c);
  addTarget(T, number, F.steps, Q.DC == nullptr ? 0.0 : (*Q.DC)(r, c));
}

// What the poles are found for: the elements that count.
void takeTargets(const MatrixFit& Q, const MatrixSamples& between) {
  const int n = RUNDATA.line.NC;
  int element = 0;
  beginTargets(STORE.targets, STORE.NS, STORE.W, STORE.WEIGHT, n * (n + 1) / 2);
  for (int c = 1; c <= n; ++c) {
    for (int r = c; r <= n; ++r) takeElement(Q, between, STORE.targets, ++element, r, c);
  }
}

// Residues of the elements of a batch, whose numbers among all are those from first on.
void takeBatch(const MatrixFit& Q, int N, int first) {
  static PoleClasses CINDEX;
  const RView X = FINDRESIDUES(STORE.batch, frameOf(Q), STORE.set);
  classifyPoles(Q.P, N, CINDEX);
  int element = 0;
  for (int c = 1; c <= RUNDATA.line.NC; ++c) {
    for (int r = c; r <= RUNDATA.line.NC; ++r) {
      const int i = ++element - first + 1;
      if (i < 1 || i > STORE.batch.count) continue;
      residuesOf(CINDEX, N, X, i, Q.R(r, c));
      Q.D(r, c) = Q.DC == nullptr ? X(N + 1, i) : (*Q.DC)(r, c) + ratioSum(Q.P, Q.R(r, c), N);
      if (Q.E != nullptr) (*Q.E)(r, c) = X(N + 2, i);
    }
  }
}

// Residues over N given poles, those of the set; the error.
double fitElements(const MatrixFit& Q, const MatrixSamples& between, int N) {
  const int n = RUNDATA.line.NC, all = n * (n + 1) / 2;
  for (int first = 1; first <= all; first += MOSTTARGETS) {
    int element = 0;
    const int count = std::min(MOSTTARGETS, all - first + 1);
    beginTargets(STORE.batch, STORE.NS, STORE.W, STORE.WEIGHT, count);
    for (int c = 1; c <= n; ++c) {
      for (int r = c; r <= n; ++r) {
        const int i = ++element - first + 1;
        if (i >= 1 && i <= count) takeElement(Q, between, STORE.batch, i, r, c);
      }
    }
    takeBatch(Q, N, first);
  }
  mirrorLower(Q, N);
  return wholeError(Q, between, N);
}

// Fits the elements over the N poles of the set and keeps them when they are better.
double tryPoles(const MatrixFit& Q, const MatrixSamples& between, int N, BestFit& best) {
  std::copy_n(STORE.set.HPOLE[1].data(), N, Q.P.data());
  const double ERR = fitElements(Q, between, N);
  if (best.fit.N != 0 && !(ERR < best.fit.ERR)) return ERR;
  best.fit = {N, ERR};
  std::copy_n(Q.P.data(), N, best.poles.data());
  best.WEIGHT = STORE.WEIGHT;
  return ERR;
}

// N poles for all elements together, from poles spread over the logarithm.
void findPoles(const MatrixFit& Q, int N, bool complexStart) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  PoleSet& S = STORE.set;
  S.groups = 1;
  S.NH[1] = N;
  S.TAU[1] = 0;
  if (complexStart) {
    spreadPoles(S.HPOLE[1], N, G.WFREQ[1], G.WFREQ[G.NFUSE]);
  } else {
    startingPoles(S.HPOLE[1], N, G.WFREQ[1], G.WFREQ[G.NFUSE]);
  }
  for (int pass = 1; pass <= PASSES; ++pass)
    RELOCATERELAXED(STORE.targets, frameOf(Q), 0, N, S.HPOLE[1]);
  MOVEPOLES(STORE.targets, frameOf(Q), STEPS, S);
}

// Weights by the deviations of the model at hand at the points.
void weighDeviations(const MatrixFit& Q) {
  static FreqCurve e;
  const int NS = SOLVEDATA.grid.NFUSE, n = RUNDATA.line.NC;
  double mean = 0;
  for (int k = 1; k <= NS; ++k) {
    e[k] = 0;
    for (int c = 1; c <= n; ++c) {
      for (int r = c; r <= n; ++r) e[k] = std::max(e[k], std::abs(Q.FIT(k, r, c) - Q.F(k, r, c)));
    }
    mean += e[k] / NS;
  }
  for (int k = 1; k <= NS; ++k)
    STORE.WEIGHT[k] *= mean > 0 ? std::sqrt(std::max(e[k] / mean, LEASTPART)) : 1;
}

void flatten(const MatrixFit& Q, const MatrixSamples& between, int N, double TARGET,
             BestFit& best) {
  for (int turn = 1; turn <= FLATTENINGS && best.fit.ERR > TARGET; ++turn) {
    weighDeviations(Q);
    takeTargets(Q, between);
    MOVEPOLES(STORE.targets, frameOf(Q), FLATSTEPS, STORE.set);
    tryPoles(Q, between, N, best);
  }
  laySamples();
  takeTargets(Q, between);
}

} // namespace

double wholeError(const MatrixFit& Q, const MatrixSamples& between, int N) {
  return larger(modelError(Q, N), errorBetween(Q, between, N));
}

void mirrorLower(const MatrixFit& Q, int N) {
  for (int c = 1; c <= RUNDATA.line.NC; ++c) {
    for (int r = c + 1; r <= RUNDATA.line.NC; ++r) {
      std::copy_n(Q.R(r, c).data(), N, Q.R(c, r).data());
      Q.D(c, r) = Q.D(r, c);
      if (Q.E != nullptr) (*Q.E)(c, r) = (*Q.E)(r, c);
    }
  }
}

MatrixFitResult GROWMATRIX(const MatrixFit& Q, const MatrixSamples& between, int limit,
                           double TARGET) {
  static BestFit best;
  laySamples();
  takeTargets(Q, between);
  best.fit = {};
  for (int N = 1; best.fit.N == 0 || (best.fit.ERR > TARGET && N <= limit); ++N) {
    for (const bool complexStart : {true, false}) {
      findPoles(Q, N, complexStart);
      const double ERR = tryPoles(Q, between, N, best);
      if (best.fit.ERR <= TARGET) break;
      if (ERR <= WITHINREACH * TARGET) flatten(Q, between, N, TARGET, best);
      if (best.fit.ERR <= TARGET) break;
    }
  }
  STORE.WEIGHT = best.WEIGHT;
  STORE.set.NH[1] = best.fit.N;
  std::copy_n(best.poles.data(), best.fit.N, STORE.set.HPOLE[1].data());
  std::copy_n(best.poles.data(), best.fit.N, Q.P.data());
  best.fit.ERR = fitElements(Q, between, best.fit.N);
  return best.fit;
}

} // namespace lcp
