// Phase functions are matrix functions of Y Z, so any full set of modes in any order will do. Modes
// are followed by Newton's method from the mean of the neighbours' eigenvalues and vectors. The
// eigenvalues are used in the normalised form -gamma^2 / (w^2 mu0 eps0), which hardly changes from
// one frequency to the next.
#include "improved/fits/between_points.h"

#include "base/constants.h"
#include "base/finite.h"
#include "improved/fits/smooth_constants.h"
#include "improved/modes/forward_waves.h"
#include "kernels/inversion.h"
#include "kernels/lapack.h"
#include "kernels/matrix_kernels.h"
#include "modal/first_loop.h"
#include "modal/line_constants.h"
#include "modal/modal_transform.h"
#include "modal/newton.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>

namespace lcp {

namespace {

constexpr double SEENTURN = PI / 6; // of modes against each other, from one frequency to the next
constexpr double LOSTMODES = 1e-4;  // deviation of H at a point that tells of them
constexpr int MOSTBELOW = 4;        // frequencies below the band
constexpr double DECADE = 0.1;
constexpr double SAMEVECTOR = 0.9; // least cosine between a mode and its neighbours' mean

LineMatrix product, vectors, inverse, phases, waves;
ModeComplex squares; // gamma^2, 1/m^2

// Constants half way to the next grid point; returns the angular frequency, rad/s.
double constantsBehind(int k) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  const double f = G.FREQ[k] * std::sqrt(G.FREQ[k + 1] / G.FREQ[k]);
  constantsAt(f);
  return TWOPI * f;
}

// How far the modes turn against each other up to the next point, rad. Those that do not arrive
// count as well: the fit of their group is as large as its error all the same, and turns like them.
double turnBehind(int k) {
  const SecondLoopStore& T = SOLVEDATA.second;
  double least = T.GAMLEN(k + 1, 1).imag() - T.GAMLEN(k, 1).imag(), most = least;
  for (int i = 2; i <= RUNDATA.line.NC; ++i) {
    const double turn = T.GAMLEN(k + 1, i).imag() - T.GAMLEN(k, i).imag();
    least = std::min(least, turn);
    most = std::max(most, turn);
  }
  return most - least;
}

// One frequency half way; more where H turns faster than that.
int frequenciesBehind(int k, int most) {
  return std::clamp(static_cast<int>(std::min(turnBehind(k) / SEENTURN, 1.0 * most)), 1, most);
}

// The most frequencies between two points that there is room for beside the points. Where many are
// wanted some of them show as well how far the sum of waves can swing.
int roomBehind() {
  const int NS = SOLVEDATA.grid.NFUSE, room = MAXFREQ - NS - MOSTBELOW;
  for (int most = room; most > 1; most = most * 4 / 5) {
    int all = 0;
    for (int k = 1; k < NS; ++k) all += frequenciesBehind(k, most);
    if (all <= room) return most;
  }
  return 1;
}

Complex decaying(Complex square) {
  return std::sqrt(square.imag() < 0.0 ? std::conj(square) : square);
}

// All modes of the current Y Z, in any order.
void anyModes(int n) {
  const FirstLoopStore& S = SOLVEDATA.first;
  CMATMUL(product, S.YMAT, S.ZMAT, n);
  if (S.IDEALT) {
    balancedTransformation(vectors, inverse, n);
    idealEigenvalues(squares, product, n);
    return;
  }
  double size = 0; // scaled to a size near 1
  for (int i = 1; i <= n; ++i) size += std::abs(product(i, i));
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) product(i, j) /= size;
  }
  ZGEEV(product, squares, vectors, n, BackSubstitution::ByColumns);
  for (int i = 1; i <= n; ++i) squares[i] *= size;
  INVCJD(inverse, vectors, n);
}

// H and Yc from the current modes.
void formPhases(LineMatrix& H, LineMatrix& YC, int n) {
  ModeComplex slowness, wave;
  for (int i = 1; i <= n; ++i) {
    const Complex gamma = decaying(squares[i]);
    slowness[i] = 1.0 / gamma;
    wave[i] = std::exp(-gamma * RUNDATA.run.LINELEN);
  }
  diagonalToPhases(H, vectors, wave, inverse, n);
  diagonalToPhases(phases, vectors, slowness, inverse, n);
  CMATMUL(YC, phases, SOLVEDATA.first.YMAT, n);
}

void storePhases(int b, int n) {
  formPhases(waves, product, n);
  BETWEEN.H.store(b, waves, n);
  BETWEEN.YC.store(b, product, n);
}

double largestDifference(const LineMatrix& A, const LineMatrix& B, int n) {
  double most = 0;
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) most = larger(most, std::abs(A(i, j) - B(i, j)));
  }
  return most;
}

void loadPoint(int k, int n) {
  SOLVEDATA.at.ZSTORE.load(k, SOLVEDATA.first.ZMAT, n);
  SOLVEDATA.at.YSTORE.load(k, SOLVEDATA.first.YMAT, n);
}

// Largest ratio of the change of a mode's propagation function to the relative change of its
// propagation constant.
double sensitivity(int n) {
  const SecondLoopStore& T = SOLVEDATA.second;
  double most = 0;
  for (int k = 1; k <= SOLVEDATA.grid.NFUSE; ++k) {
    for (int i = 1; i <= n; ++i) most = std::max(most, std::abs(T.GAMLEN(k, i)) * T.HMAG(k, i));
  }
  return most;
}

// Checks whether H at step k belongs to Y and Z. If not, modes were lost there: H and Yc are
// corrected, and true is returned.
bool mendedPoint(int k, int n) {
  static LineMatrix H;
  loadPoint(k, n);
  anyModes(n);
  formPhases(waves, product, n);
  SOLVEDATA.second.HST.load(k, H, n);
  if (largestDifference(waves, H, n) <= LOSTMODES) return false;
  SOLVEDATA.second.HST.store(k, waves, n);
  SOLVEDATA.second.YCST.store(k, product, n);
  return true;
}

// Scales column j so that its largest element is 1; returns the row of that element.
int pivotColumn(CView T, int j, int n) {
  int p = 1;
  for (int i = 2; i <= n; ++i) {
    if (std::abs(T(i, j)) > std::abs(T(p, j))) p = i;
  }
  const Complex largest = T(p, j);
  for (int i = 1; i <= n; ++i) T(i, j) /= largest;
  return p;
}

double cosine(CConstView A, CConstView B, int j, int n) {
  Complex dot;
  double a = 0, b = 0;
  for (int i = 1; i <= n; ++i) {
    dot += std::conj(A(i, j)) * B(i, j);
    a += std::norm(A(i, j));
    b += std::norm(B(i, j));
  }
  return std::abs(dot) / std::sqrt(a * b);
}

// Modes of the current constants at w between steps k and k + 1; returns false if one is not found.
bool followedModes(int k, double w, int n) {
  static LineMatrix guess;
  const FirstLoopStore& S = SOLVEDATA.first;
  const FrequencyGrid& G = SOLVEDATA.grid;
  const FrequencyStore& A = SOLVEDATA.at;
  const double unit = -w * w * MU0EPS0;
  ModeComplex start;
  ModeInts pivot;
  double scale = 0;
  CMATMUL(product, S.YMAT, S.ZMAT, n);
  A.MTI.load(k, guess, n);
  A.MTI.load(k + 1, vectors, n);
  COLNORM(guess, guess, n);
  COLNORM(vectors, vectors, n);
  add(guess, vectors, n);
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) product(i, j) /= unit;
    scale += std::abs(product(j, j)) / n;
  }
  for (int j = 1; j <= n; ++j) {
    pivot[j] = pivotColumn(guess, j, n);
    squares[j] = (A.MEIG(k, j) / (-G.WFREQ[k] * G.WFREQ[k] * MU0EPS0) +
                  A.MEIG(k + 1, j) / (-G.WFREQ[k + 1] * G.WFREQ[k + 1] * MU0EPS0)) /
                 2.0;
    start[j] = squares[j] / scale;
  }
  copyCorner(vectors, guess, n);
  bool good = NREIG(squares, vectors, start, guess, product, scale, pivot, n);
  for (int j = 1; j <= n; ++j) {
    good = good && cosine(guess, vectors, j, n) > SAMEVECTOR;
    squares[j] *= unit;
  }
  if (!good) return false;
  COLROT(vectors, S.PIVOT0, n);
  COLNORM(vectors, vectors, n);
  INVCJD(inverse, vectors, n);
  return true;
}

bool modesBetween(int k, double w, int n) {
  if (!SOLVEDATA.first.IDEALT) return followedModes(k, w, n);
  anyModes(n);
  return true;
}

// The decade below the fit range: the lowest points of the grid reach into it.
void samplePhasesBelow(int n) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  const double first = std::min(G.FREQ[1], G.FREQ[G.NFUSE]);
  const double last = DECADE * std::min(RUNDATA.fit.FSTART, RUNDATA.fit.FEND);
  for (int i = 1; i <= MOSTBELOW && BETWEEN.NB + i <= MAXFREQ && last < first; ++i) {
    const double f = first * std::pow(last / first, 1.0 * i / MOSTBELOW);
    constantsAt(f);
    anyModes(n);
    BETWEEN.BELOW = i;
    BETWEEN.WFREQ[BETWEEN.NB + i] = TWOPI * f;
    storePhases(BETWEEN.NB + i, n);
  }
}

// The root that has the sign of the one at the grid point below.
Complex likeNeighbour(Complex root, Complex below) {
  return (root * std::conj(below)).real() < 0.0 ? -root : root;
}

void storeModes(int b, int k, int n) {
  static LineMatrix YM, ZM;
  const SecondLoopStore& T = SOLVEDATA.second;
  const FirstLoopStore& S = SOLVEDATA.first;
  formModalMatrices(YM, ZM, S.YMAT, S.ZMAT, vectors, inverse, n);
  for (int i = 1; i <= n; ++i) {
    const Complex gamma = decaying(squares[i]);
    BETWEEN.ZSURGE(b, i) = RUNDATA.numerics.IMPROVEDMODES
                               ? forwardSurgeImpedance(YM(i, i), ZM(i, i), squares[i], gamma)
                               : likeNeighbour(surgeImpedance(YM(i, i), ZM(i, i)), T.ZSURGST(k, i));
    BETWEEN.HMODE(b, i) = std::exp(-gamma * RUNDATA.run.LINELEN);
  }
  BETWEEN.TI.store(b, vectors, n);
}

} // namespace

PhaseSampling samplePhasesBetween() {
  const int n = RUNDATA.line.NC;
  const FreqCurve& W = SOLVEDATA.grid.WFREQ;
  BETWEEN.NB = BETWEEN.BELOW = 0;
  BETWEEN.YC.map(n);
  BETWEEN.H.map(n);
  if (RUNDATA.run.fromTable()) return {};
  PhaseSampling found{laySmoothConstants()};
  found.moved = found.jumps.largest * sensitivity(n);
  for (int k = 1; k <= SOLVEDATA.grid.NFUSE; ++k) found.lost += mendedPoint(k, n) ? 1 : 0;
  const int most = roomBehind();
  for (int k = 1; k < SOLVEDATA.grid.NFUSE; ++k) {
    const int points = frequenciesBehind(k, most);
    for (int p = 1; p <= points; ++p) {
      const double part = p / (points + 1.0);
      const double w = W[k] * std::pow(W[k + 1] / W[k], part);
      BETWEEN.WFREQ[++BETWEEN.NB] = w;
      smoothConstantsAt(2 * (k + part) - 1, w);
      anyModes(n);
      storePhases(BETWEEN.NB, n);
    }
  }
  samplePhasesBelow(n);
  return found;
}

void sampleModesBetween() {
  const int n = RUNDATA.line.NC;
  BETWEEN.NB = BETWEEN.BELOW = 0;
  BETWEEN.TI.map(n);
  for (int k = 1; k < SOLVEDATA.grid.NFUSE && !RUNDATA.run.fromTable(); ++k) {
    const double w = constantsBehind(k);
    if (!modesBetween(k, w, n)) continue;
    BETWEEN.WFREQ[++BETWEEN.NB] = w;
    storeModes(BETWEEN.NB, k, n);
  }
}

void sampleSeriesBetween() {
  const int n = RUNDATA.line.NC;
  BETWEEN.NB = BETWEEN.BELOW = 0;
  BETWEEN.Z.map(n);
  for (int k = 1; k < SOLVEDATA.grid.NFUSE && !RUNDATA.run.fromTable(); ++k) {
    BETWEEN.WFREQ[++BETWEEN.NB] = constantsBehind(k);
    BETWEEN.Z.store(BETWEEN.NB, SOLVEDATA.first.ZMAT, n);
  }
}

} // namespace lcp
