// A wave of current a arrives at an end, b leaves it: Yc V = a + b, and the current into the line
// is b - a. Ends of the conductance G reflect b = K a with
//
//   K = (I + G Yc^-1)^-1 (I - G Yc^-1)
//
// and once around the line a becomes M a, M = K H K H. What grows has det(I - M) = 0 at a Re s > 0.
// Where all eigenvalues of M lie within the unit circle the argument of the determinant is the sum
// of the principal ones of 1 - l; so it has to be followed step by step only where one lies
// outside.
#include "companions/shared/growth.h"

#include "base/constants.h"
#include "kernels/lapack.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace lcp::companions {

namespace {

constexpr double SHORTED = 1e-6; // ohm, of an end that is called shorted
constexpr double LOWEST = 1e-4;  // rad/s, and 1/s on the real axis
constexpr double PERDECADE = 60;
constexpr double FASTEST = 1e5;           // 1/s, on the real axis
constexpr double PERTURN = 16;            // points of a turn of the delay around the line
constexpr std::size_t MOSTPOINTS = 20000; // of a stretch that is followed
constexpr int NEWTONSTEPS = 40;

struct AxisPoint {
  double w; // rad/s
  PhaseFunctions F;
  Matrix Yinv;
};

struct Search {
  const ModelFile& file;
  double length;
  const std::vector<bool>& phase;
  Stepping how;
  double highest; // rad/s
  double around;  // s, the longest delay there and back
  std::vector<AxisPoint> axis;
};

AxisPoint pointAt(const Search& S, Complex s) {
  AxisPoint p{s.imag(), modelFunctions(S.file, s, S.length, S.how), {}};
  p.Yinv = inverse(p.F.Yc);
  return p;
}

double conductance(double R) { return R == OPENEND ? 0 : 1 / R; }

// M at a point.
Matrix loopOf(const Search& S, const AxisPoint& p, const Ends& ends) {
  const std::size_t n = p.F.Yc.rows;
  Matrix X(n, n);
  for (std::size_t i = 0; i < n; ++i) {
    const double G = conductance(S.phase[i] ? ends.phases : ends.others);
    for (std::size_t j = 0; j < n; ++j) X(i, j) = G * p.Yinv(i, j);
  }
  const Matrix I = identity(n);
  const Matrix K = product(inverse(combined(I, 1, X)), combined(I, -1, X));
  const Matrix half = product(K, p.F.H);
  return product(half, half);
}

std::vector<Complex> eigenvalues(Matrix A) {
  static ModeComplex W;
  const std::size_t n = A.rows;
  Matrix V(n, n);
  const int order = static_cast<int>(n);
  ZGEEV({A.elements.data(), order}, W, {V.elements.data(), order}, order,
        BackSubstitution::ByColumns);
  return {W.data(), W.data() + n};
}

// det(I - M), by the eigenvalues of M.
struct Loop {
  double largest = 0;   // magnitude of an eigenvalue
  double principal = 0; // sum of the principal arguments of 1 - l
  Complex determinant = 1;
};

Loop loopAt(const Search& S, const AxisPoint& p, const Ends& ends) {
  Loop L;
  for (const Complex& l : eigenvalues(loopOf(S, p, ends))) {
    L.largest = std::max(L.largest, std::abs(l));
    L.principal += std::arg(1.0 - l);
    L.determinant *= 1.0 - l;
  }
  return L;
}

Complex determinantAt(const Search& S, Complex s, const Ends& ends) {
  return loopAt(S, pointAt(S, s), ends).determinant;
}

// A logarithmic grid, and points about each resonance, which can be narrow.
std::vector<double> axisOf(const Search& S, double end) {
  std::vector<double> w;
  const auto count = static_cast<std::size_t>(PERDECADE * std::log10(end / LOWEST));
  for (std::size_t k = 0; k <= count; ++k)
    w.push_back(LOWEST *
                std::pow(end / LOWEST, static_cast<double>(k) / static_cast<double>(count)));
  for (const NamedFunction& f : functionsOf(S.file)) {
    for (const Complex& p : f.function->poles) {
      for (const double part : {-2.0, -1.0, -0.5, 0.0, 0.5, 1.0, 2.0}) {
        const double near = p.imag() + part * p.real();
        if (p.imag() > 0 && near > LOWEST && near < end) w.push_back(near);
      }
    }
  }
  std::sort(w.begin(), w.end());
  w.erase(std::unique(w.begin(), w.end()), w.end());
  return w;
}

void layAxis(Search& S) {
  const double end = S.how.step > 0 ? std::min(S.highest, PI / S.how.step) : S.highest;
  for (const double w : axisOf(S, end)) S.axis.push_back(pointAt(S, Complex(0, w)));
}

// By how much the argument turns from a to b, followed in steps small against the delay.
double followedTurn(const Search& S, const AxisPoint& a, const AxisPoint& b, const Ends& ends) {
  const double ratio = b.w / a.w;
  const auto turns = static_cast<std::size_t>((b.w - a.w) * S.around / TWOPI * PERTURN);
  const std::size_t steps = std::clamp<std::size_t>(turns, 8, MOSTPOINTS);
  double turn = 0;
  Complex before = loopAt(S, a, ends).determinant;
  for (std::size_t k = 1; k <= steps; ++k) {
    const double w = a.w * std::pow(ratio, static_cast<double>(k) / static_cast<double>(steps));
    const Complex at =
        k == steps ? loopAt(S, b, ends).determinant : determinantAt(S, Complex(0, w), ends);
    turn += std::arg(at / before);
    before = at;
  }
  return turn;
}

// Zeros in the right half plane, by the turn of det(I - M) from zero to the end of the axis, where
// it is real again.
int countZeros(const Search& S, const Ends& ends) {
  const std::vector<AxisPoint>& A = S.axis;
  double turn = 0;
  Loop before = loopAt(S, A[0], ends);
  // Near zero the determinant is real: 0 or pi, from which the count starts.
  double excess = before.largest < 1 ? 0 : -std::remainder(std::arg(before.determinant), PI);
  for (std::size_t k = 1; k < A.size(); ++k) {
    const Loop at = loopAt(S, A[k], ends);
    if (before.largest >= 1 || at.largest >= 1) turn += followedTurn(S, A[k - 1], A[k], ends);
    if (before.largest < 1 && at.largest < 1) turn += at.principal - before.principal;
    before = at;
  }
  return static_cast<int>(std::lround(-(turn + excess) / PI));
}

// The fastest zero on the real axis, 1/s; 0 for none.
double realZero(const Search& S, const Ends& ends) {
  const auto count = static_cast<int>(PERDECADE / 2 * std::log10(FASTEST / LOWEST));
  const auto at = [&](int k) { return LOWEST * std::pow(FASTEST / LOWEST, k / double(count)); };
  const auto sign = [&](double s) { return determinantAt(S, s, ends).real() > 0; };
  for (int k = count; k > 0; --k) {
    double a = at(k - 1), b = at(k);
    const bool high = sign(b);
    if (sign(a) == high) continue;
    while (b / a > 1 + 1e-6) {
      const double middle = std::sqrt(a * b);
      (sign(middle) == high ? b : a) = middle;
    }
    return b;
  }
  return 0;
}

// The zero that Newton's method finds from a place on the axis; NaN when it leads nowhere.
Complex zeroFrom(const Search& S, Complex s, const Ends& ends) {
  for (int k = 0; k < NEWTONSTEPS; ++k) {
    const Complex d = 1e-6 * std::abs(s);
    const Complex f = determinantAt(S, s, ends);
    const Complex slope = (determinantAt(S, s + d, ends) - f) / d;
    const Complex way = f / slope;
    s -= way;
    if (std::abs(way) < 1e-8 * std::abs(s)) return s;
    if (!(s.real() > -0.1 * std::abs(s)) || std::abs(s) > 2 * S.highest) break;
  }
  return std::numeric_limits<double>::quiet_NaN();
}

// The fastest growing pair of zeros near the axis.
Complex complexZero(const Search& S, const Ends& ends) {
  Complex best = 0;
  double least = std::numeric_limits<double>::infinity();
  for (const AxisPoint& p : S.axis) {
    const Loop L = loopAt(S, p, ends);
    if (L.largest < 1) {
      least = std::numeric_limits<double>::infinity();
      continue;
    }
    if (std::abs(L.determinant) >= least) continue;
    least = std::abs(L.determinant);
    const Complex s = zeroFrom(S, Complex(0, p.w), ends);
    if (s.real() > best.real()) best = s;
  }
  return best;
}

} // namespace

std::vector<Ends> usualEnds(const std::vector<bool>& phase) {
  std::vector<Ends> all = {{"all ends open", OPENEND, OPENEND},
                           {"all ends shorted", SHORTED, SHORTED},
                           {"all ends at 0.1 ohm", 0.1, 0.1},
                           {"all ends at 10 ohm", 10, 10}};
  if (std::all_of(phase.begin(), phase.end(), [](bool p) { return p; })) return all;
  all.push_back({"phases open, others shorted", OPENEND, SHORTED});
  all.push_back({"phases shorted, others open", SHORTED, OPENEND});
  all.push_back({"phases at 10 ohm, others at 0.1 ohm", 10, 0.1});
  return all;
}

std::vector<Growth> growthOf(const ModelFile& file, double length, const std::vector<bool>& phase,
                             const std::vector<Ends>& ends, double highest, Stepping how) {
  Search S{file, length, phase, how, TWOPI * highest, 0, {}};
  for (const double d : file.H.delays) S.around = std::max(S.around, 2 * d);
  for (const ModeFit& m : file.modes) S.around = std::max(S.around, 2 * MILLI * m.delay);
  if (S.around == 0) S.around = 4 * length / LIGHTSPEED;
  layAxis(S);
  std::vector<Growth> found;
  for (const Ends& e : ends) {
    Growth& g = found.emplace_back(Growth{e});
    g.zeros = countZeros(S, e);
    g.rate = realZero(S, e);
    if (g.zeros <= 0) continue;
    const Complex pair = complexZero(S, e);
    if (pair.real() > g.rate) {
      g.rate = pair.real();
      g.frequency = std::fabs(pair.imag()) / TWOPI;
    }
  }
  return found;
}

} // namespace lcp::companions
