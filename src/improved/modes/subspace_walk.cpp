// The way from one step to the next runs over the logarithm of the frequency, x from 0 to 1. A part
// of it that does not lead to a clear assignment is halved, and so is one that is long: over
// decades two modes can turn into each other, and what looks clear is the exchange. At the least
// way the best assignment is taken: there two modes exchange their vectors within less than 1 % of
// the frequency, and each goes on as the one it was before.
#include "improved/modes/subspace_walk.h"

#include "base/big_store.h"
#include "improved/modes/subspace_modes.h"
#include "kernels/matrix_kernels.h"
#include "modal/first_loop.h"
#include "modal/frequency_grid.h"
#include "modal/line_constants.h"
#include "modal/report_modes.h"
#include "store/rundata.h"
#include "store/solvedata.h"
#include "store/yz_table.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace lcp {

namespace {

constexpr double LEASTWAY = 0.004; // decades of the frequency, 0.9 %
constexpr double MOSTWAY = 0.125;  // decades that are gone at once: a decade in eight parts
constexpr double SAMESIZE = 1e-9;  // elements that differ by less are equally large
constexpr double LARGEENOUGH = 0.5;

constexpr double STRAIGHT = 0.1; // decades up to which line constants are interpolated linearly
constexpr int MOSTSTATIONS = 20; // more than halving all decades can give

ModeFrame frame; // last accepted frequency

void storeStep(int k, int n) {
  const FirstLoopStore& S = SOLVEDATA.first;
  FrequencyStore& A = SOLVEDATA.at;
  for (int i = 1; i <= n; ++i) A.MEIG(k, i) = S.EIG[i];
  A.MTI.store(k, S.TI, n);
  A.YSTORE.store(k, S.YMAT, n);
  A.ZSTORE.store(k, S.ZMAT, n);
}

void loadFrame(int k, int n) {
  SOLVEDATA.at.MTI.load(k, frame.X, n);
  invertFrame(frame, n);
}

int stepBefore(int k) {
  return isConstantTransformStep(k) && !RUNDATA.run.fromTable() ? SOLVEDATA.first.KCT : k - 1;
}

// The interval between two frequencies, given by their logarithms.
struct Way {
  double a, b;

  double decades(double part) const { return part * std::fabs(b - a); }
  double frequency(double x) const { return std::pow(10.0, a + x * (b - a)); }
};

// A point on the way: x, the line constants and the modes there.
struct Station {
  double x;
  LineMatrix Y, Z, P;
  ModeSet modes;
};

struct Stations {
  Station behind;                  // last accepted point
  Station ahead[MOSTSTATIONS + 1]; // the target, preceded by the points on the way to it
};

Stations& WAY = bigStore<Stations>();

void noteStation(Station& s, double x, int n) {
  const FirstLoopStore& S = SOLVEDATA.first;
  s.x = x;
  copyCorner(s.Y, S.YMAT, n);
  copyCorner(s.Z, S.ZMAT, n);
  copyCorner(s.P, S.PMAT, n);
}

void standAt(const Station& s, int n) {
  FirstLoopStore& S = SOLVEDATA.first;
  copyCorner(S.YMAT, s.Y, n);
  copyCorner(S.ZMAT, s.Z, n);
  copyCorner(S.PMAT, s.P, n);
}

// The point half way between two. If they are close, Y and Z are interpolated linearly per unit of
// frequency: they only decide which mode is which, and computing line constants is expensive.
void halfWay(Station& s, const Station& a, const Station& b, int k, const Way& way, int n) {
  const double x = (a.x + b.x) / 2, f = way.frequency(x);
  if (way.decades(b.x - a.x) > STRAIGHT) {
    constantsAtStep(k, f, Place::OnTheWay);
    noteStation(s, x, n);
    return;
  }
  const double wa = 0.5 * f / way.frequency(a.x), wb = 0.5 * f / way.frequency(b.x);
  s.x = x;
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) {
      s.Y(i, j) = wa * a.Y(i, j) + wb * b.Y(i, j);
      s.Z(i, j) = wa * a.Z(i, j) + wb * b.Z(i, j);
      s.P(i, j) = (a.P(i, j) + b.P(i, j)) / 2.0;
    }
  }
  standAt(s, n);
}

// Walks from the frequency of the current constants to step k.
void walkTo(int k, const Way& way, int n) {
  noteStation(WAY.behind, 0, n);
  constantsAtStep(k, SOLVEDATA.grid.FREQ[k], Place::AtTheStep);
  noteStation(WAY.ahead[1], 1, n);
  findModes(WAY.ahead[1].modes, n);
  for (int left = 1; left > 0;) {
    const Station& next = WAY.ahead[left];
    standAt(next, n);
    const bool clearly = followSubspaces(frame, next.modes, n);
    if (way.decades(next.x - WAY.behind.x) > (clearly ? MOSTWAY : LEASTWAY)) {
      Station& middle = WAY.ahead[++left];
      halfWay(middle, WAY.behind, next, k, way, n);
      findModes(middle.modes, n);
      continue;
    }
    takeFrame(frame, n);
    noteStation(WAY.behind, next.x, n);
    --left;
  }
}

// Minimum over the steps that count of the size of element (i,j) relative to the length of its
// vector, and of the cosine of the angle of the surge impedance if the vector is rotated by this
// element.
struct TurningRows {
  RealMatrix part;
  RealMatrix cosine;
};

Complex propagationDirection(Complex eigenvalue) {
  const bool plain = RUNDATA.run.ISCABLE == FOURWIRECABLE;
  const Complex gamma = std::sqrt(plain ? eigenvalue : -eigenvalue);
  return gamma.imag() < 0.0 ? std::conj(gamma) : gamma;
}

// Rotating a vector by an angle rotates its surge impedance ZM / gamma by twice that angle.
void noteRows(TurningRows& R, int k, int n) {
  static LineMatrix TI, Z, product;
  SOLVEDATA.at.MTI.load(k, TI, n);
  SOLVEDATA.at.ZSTORE.load(k, Z, n);
  CMATMUL(product, Z, TI, n);
  for (int j = 1; j <= n; ++j) {
    Complex ZM;
    for (int i = 1; i <= n; ++i) ZM += TI(i, j) * product(i, j);
    const Complex Zs = ZM / propagationDirection(SOLVEDATA.at.MEIG(k, j));
    for (int i = 1; i <= n; ++i) {
      const Complex turned = Zs * std::conj(TI(i, j)) * std::conj(TI(i, j));
      R.part(i, j) = std::min(R.part(i, j), std::abs(TI(i, j)));
      R.cosine(i, j) = std::min(R.cosine(i, j), turned.real() / std::abs(turned));
    }
  }
}

int largestPart(const TurningRows& R, int j, int n) {
  int best = 1;
  for (int i = 2; i <= n; ++i) {
    if (R.part(i, j) > R.part(best, j) + SAMESIZE) best = i;
  }
  return best;
}

// A vector is rotated by an element that is large at all steps, so that its angle never jumps.
// Among those at least half as large as the largest, the one that keeps the surge impedance nearest
// to the positive real axis is chosen. For Bergeron, whose file contains the vectors of the last
// step, it is the largest there.
void chooseTurningRows(int n) {
  static TurningRows R;
  const bool bergeron = RUNDATA.model.atTwoFrequencies();
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) R.part(i, j) = R.cosine(i, j) = 1;
  }
  for (int k = bergeron ? SOLVEDATA.grid.NFREQ : 1; k <= SOLVEDATA.grid.NFREQ; ++k) {
    noteRows(R, k, n);
  }
  for (int j = 1; j <= n; ++j) {
    int best = largestPart(R, j, n);
    const double enough = LARGEENOUGH * R.part(best, j);
    for (int i = 1; i <= n && !bergeron; ++i) {
      if (R.part(i, j) >= enough && R.cosine(i, j) > R.cosine(best, j) + SAMESIZE) best = i;
    }
    SOLVEDATA.first.PIVOT0[j] = best;
  }
}

int nearestStep(double f) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  const auto away = [&](int k) { return std::fabs(G.LOGF[k] - std::log10(f)); };
  int best = G.NFREQ;
  for (int k = G.NFREQ - 1; k >= 1; --k) {
    if (away(k) < away(best)) best = k;
  }
  return best;
}

// Rows of a table stand at frequencies of their own, whatever those of a Bergeron line are.
Way wayTo(int k, int from) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  const auto& F = YZTABLE.FTABLE;
  if (!RUNDATA.run.fromTable() || !(F[from] > 0 && F[k] > 0)) return {G.LOGF[from], G.LOGF[k]};
  return {std::log10(F[from]), std::log10(F[k])};
}

void takeStep(int k) {
  beginStep(k);
  const int& n = RUNDATA.line.NC; // set with the constants of the first step
  if (k == 1) {
    constantsAtStep(k, SOLVEDATA.grid.FREQ[k], Place::AtTheStep);
    startSubspaces(n);
    takeFrame(frame, n);
  } else {
    const int from = stepBefore(k);
    if (from != k - 1) {
      loadFrame(from, n);
      constantsAtStep(from, SOLVEDATA.grid.FREQ[from], Place::AtTheStep);
    }
    walkTo(k, wayTo(k, from), n);
  }
  storeStep(k, n);
  if (k == SOLVEDATA.grid.NFREQ) chooseTurningRows(n);
}

// EIG, TI and TIINV of PMAT at f, Hz.
void reportAt(double f) {
  FirstLoopStore& S = SOLVEDATA.first;
  const int n = RUNDATA.line.NC;
  if (!RUNDATA.model.needsModes()) {
    startSubspaces(n);
    COLROT(S.TI, S.PIVOT, n);
    return;
  }
  if (S.IDEALT) {
    copyCorner(frame.X, S.TI, n);
    invertFrame(frame, n);
  } else {
    loadFrame(nearestStep(f), n);
  }
  // the modes are stored even if their order is ambiguous
  findModes(WAY.behind.modes, n);
  std::ignore = followSubspaces(frame, WAY.behind.modes, n);
  COLROT(S.TI, S.IDEALT ? S.PIVOT : S.PIVOT0, n);
}

} // namespace

void firstFrequencyLoopImproved() {
  beginFirstLoop();
  for (int k = 1; k <= SOLVEDATA.grid.NFREQ; ++k) takeStep(k);
}

void formReportModesImproved() {
  reportAt(RUNDATA.display.DISPFREQ);
  finishReportModes();
}

} // namespace lcp
