// Z / w and Y / w are smooth functions of the logarithm of the frequency. On places h = 0.07 apart,
// as on a usual grid, interpolation between six neighbours is accurate to 1e-8, so a value that
// differs by much more is an error. The largest difference is corrected first, since it affects
// those of its neighbours.
#include "improved/fits/smooth_constants.h"

#include "base/big_store.h"
#include "base/constants.h"
#include "modal/line_constants.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <algorithm>
#include <cmath>

namespace lcp {

namespace {

constexpr int MOSTPLACES = 2 * MAXFREQ;
constexpr int SPREAD = 3;                              // neighbours on each side
constexpr double WEIGHTS[SPREAD] = {0.75, -0.3, 0.05}; // of the neighbours, by distance
constexpr double LEASTJUMP = 2e-6; // of Z, relative to its largest self impedance
constexpr int MOSTJUMPS = 20;      // one in this many places

struct SmoothStore {
  int places;
  CurveMatrix<Complex, MOSTPLACES> Z, Y; // over w
  Table<double, MOSTPLACES> off;         // deviation of Z from its neighbours
};
SmoothStore& STORE = bigStore<SmoothStore>();

double frequencyOf(int place) {
  const FreqCurve& F = SOLVEDATA.grid.FREQ;
  const int k = (place + 1) / 2;
  return place % 2 == 1 ? F[k] : F[k] * std::sqrt(F[k + 1] / F[k]);
}

void storePlace(int place, int n) {
  const FirstLoopStore& S = SOLVEDATA.first;
  const double w = TWOPI * frequencyOf(place);
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) {
      STORE.Z(place, i, j) = S.ZMAT(i, j) / w;
      STORE.Y(place, i, j) = S.YMAT(i, j) / w;
    }
  }
}

void computePlace(int place, int n) {
  FirstLoopStore& S = SOLVEDATA.first;
  if (place % 2 == 1) {
    SOLVEDATA.at.ZSTORE.load((place + 1) / 2, S.ZMAT, n);
    SOLVEDATA.at.YSTORE.load((place + 1) / 2, S.YMAT, n);
  } else {
    constantsAt(frequencyOf(place));
  }
  storePlace(place, n);
}

Complex byNeighbours(const Curve<Complex, MOSTPLACES>& F, int place) {
  Complex sum = 0;
  for (int d = 1; d <= SPREAD; ++d) sum += WEIGHTS[d - 1] * (F[place - d] + F[place + d]);
  return sum;
}

void measure(int place, int n) {
  double most = 0, size = 0;
  for (int j = 1; j <= n; ++j) {
    size = std::max(size, std::abs(STORE.Z(place, j, j)));
    for (int i = j; i <= n; ++i) {
      const auto& F = STORE.Z.curve(i, j);
      most = std::max(most, std::abs(F[place] - byNeighbours(F, place)));
    }
  }
  STORE.off[place] = most / size;
}

void mend(int place, int n) {
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) {
      auto& F = STORE.Z.curve(i, j);
      F[place] = byNeighbours(F, place);
    }
  }
}

} // namespace

JumpsOfZ laySmoothConstants() {
  const int n = RUNDATA.line.NC;
  JumpsOfZ jumps;
  STORE.Z.map(n);
  STORE.Y.map(n);
  STORE.places = 2 * SOLVEDATA.grid.NFUSE - 1;
  for (int place = 1; place <= STORE.places; ++place) computePlace(place, n);
  const int first = 1 + SPREAD, last = STORE.places - SPREAD;
  for (int place = first; place <= last; ++place) measure(place, n);
  while (jumps.count * MOSTJUMPS < STORE.places) {
    const double* most = std::max_element(STORE.off.data() + first - 1, STORE.off.data() + last);
    if (!(*most > LEASTJUMP)) break;
    const int place = static_cast<int>(most - STORE.off.data()) + 1;
    if (jumps.count++ == 0) {
      jumps.f = frequencyOf(place);
      jumps.largest = *most;
    }
    mend(place, n);
    for (int p = std::max(first, place - SPREAD); p <= std::min(last, place + SPREAD); ++p)
      measure(p, n);
  }
  return jumps;
}

void smoothConstantsAt(double place, double w) {
  constexpr int POINTS = 2 * SPREAD;
  const int n = RUNDATA.line.NC;
  FirstLoopStore& S = SOLVEDATA.first;
  const int below = static_cast<int>(place) - SPREAD;
  const int first = std::clamp(below + 1, 1, STORE.places - POINTS + 1);
  double L[POINTS]; // Lagrange coefficients
  for (int a = 0; a < POINTS; ++a) {
    L[a] = w;
    for (int b = 0; b < POINTS; ++b) {
      if (b != a) L[a] *= (place - (first + b)) / (a - b);
    }
  }
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) {
      Complex z = 0, y = 0;
      for (int a = 0; a < POINTS; ++a) {
        z += L[a] * STORE.Z(first + a, i, j);
        y += L[a] * STORE.Y(first + a, i, j);
      }
      S.ZMAT(i, j) = z;
      S.YMAT(i, j) = y;
    }
  }
}

} // namespace lcp
