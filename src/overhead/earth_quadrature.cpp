// Gauss-Legendre panels that are straight in the plane of v = e^eta. On a panel from v_a to
// v_a (1 + k), with v = v_a (1 + k t) and r = 1 / (1 + k t):
//
//   E - E_a = P v_a k t - Q / v_a k t r,  d eta = k r dt,  e^-eta = r / v_a
//
// A node costs one exponential, and its exponent keeps all digits however large E is. Where E
// hardly changes, a panel covers v_a to 64 v_a at the fixed places v_a 64^t.
//
// Every panel must end where Re E has grown. For a given |v|, Re E is greatest on the crest,
// arg v = -arg(P |v| + conj(Q) / |v|), and it grows along the crest. The next panel
//
//   - heads for the crest, up to four times as far from 0, where E changes little
//   - otherwise follows the line on which E grows by a real number T, to the outer root of
//     P v'^2 - (E_a + T) v' + Q = 0
//   - otherwise, where that line leads to smaller |v|, turns round 0 towards the crest
//
// The error of a panel is estimated from the decay of its Legendre coefficients. The nodes show 16
// of them and integrate 32 exactly; the remainder is extrapolated from the decay over the last
// four, and from that over all, and the smaller one counts.
#include "overhead/earth_quadrature.h"

#include "base/constants.h"
#include "base/register_widths.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

namespace lcp {

namespace {

constexpr int NODES = 16;
using NodeValues = std::array<double, NODES>;

constexpr double SPENT = 38.0;        // growth of Re E after which the integral ends
constexpr double LARGESTCHANGE = 8.0; // of E over the first panels
constexpr double LARGESTTURN = 1.05;  // of the direction of v, radians
constexpr double LARGESTGROWTH = 4.0; // of |v|
constexpr double FLATGROWTH = 64.0;   // ... where E hardly changes
constexpr int MOSTPANELS = 50000;

// ---- Rule

// Sums over the nodes: the integral and four Legendre coefficients, the last two and the ones four
// degrees lower.
enum Column { INTEGRAL, LAST, SECOND, LASTLOW, SECONDLOW, COLUMNS = 8 };

struct Rule {
  NodeValues t;      // nodes in (0, 1)
  NodeValues growth; // 64^t
  double weights[NODES][COLUMNS];
};

struct Legendre {
  double p, before, slope;
};

Legendre legendre(int n, double x) {
  double p = 1.0, before = 0.0;
  for (int k = 1; k <= n; ++k) {
    const double next = ((2.0 * k - 1.0) * x * p - (k - 1.0) * before) / k;
    before = p;
    p = next;
  }
  return {p, before, n * (x * p - before) / (x * x - 1.0)};
}

Rule gaussRule() {
  Rule R{};
  for (std::size_t i = 0; i < NODES; ++i) {
    double x = -std::cos(PI * (static_cast<double>(i) + 0.75) / (NODES + 0.5));
    for (int step = 0; step < 8; ++step) {
      const Legendre at = legendre(NODES, x);
      x -= at.p / at.slope;
    }
    const double slope = legendre(NODES, x).slope;
    R.t[i] = 0.5 * (1.0 + x);
    double(&w)[COLUMNS] = R.weights[i];
    w[INTEGRAL] = 1.0 / ((1.0 - x * x) * slope * slope);
    for (int k = 0; k < 2; ++k) {
      const int high = NODES - 1 - k, low = high - 4;
      w[LAST + k] = (2 * high + 1) * w[INTEGRAL] * legendre(high, x).p;
      w[LASTLOW + k] = (2 * low + 1) * w[INTEGRAL] * legendre(low, x).p;
    }
    R.growth[i] = std::pow(FLATGROWTH, R.t[i]);
  }
  return R;
}

const Rule& rule() {
  static const Rule R = gaussRule();
  return R;
}

// ---- Exponential for loops that the compiler vectorises

constexpr double TOINTEGER = 0x1.8p52; // adding and subtracting it rounds to an integer
constexpr double LEASTEXPONENT = -700.0;

// exp(x), x from -700 to 700.
inline double exponential(double x) {
  constexpr double LOG2HIGH = 0x1.62e42feep-1, LOG2LOW = 0x1.a39ef35793c76p-33;
  const double shifted = x * 1.4426950408889634 + TOINTEGER;
  const double n = shifted - TOINTEGER;
  const double r = (x - n * LOG2HIGH) - n * LOG2LOW;
  double p = 1.0 / 6227020800;
  for (const double c : {1.0 / 479001600, 1.0 / 39916800, 1.0 / 3628800, 1.0 / 362880, 1.0 / 40320,
                         1.0 / 5040, 1.0 / 720, 1.0 / 120, 1.0 / 24, 1.0 / 6, 0.5, 1.0, 1.0})
    p = p * r + c;
  const std::uint64_t power = (std::bit_cast<std::uint64_t>(shifted) + 1023) << 52;
  return p * std::bit_cast<double>(power);
}

// cos(x) and sin(x), |x| up to 1e5.
inline void turn(double x, double& cosine, double& sine) {
  constexpr double HIGH = 0x1.921fb544p0, MIDDLE = 0x1.0b4611a6p-34, LOW = 0x1.3198a2e037073p-69;
  const double shifted = x * 0.6366197723675814 + TOINTEGER;
  const double n = shifted - TOINTEGER;
  const double r = ((x - n * HIGH) - n * MIDDLE) - n * LOW;
  const double r2 = r * r;
  double s = 1.0 / 355687428096000.0;
  for (const double c : {-1.0 / 1307674368000, 1.0 / 6227020800, -1.0 / 39916800, 1.0 / 362880,
                         -1.0 / 5040, 1.0 / 120, -1.0 / 6})
    s = s * r2 + c;
  s = r + r * r2 * s;
  double k = 1.0 / 20922789888000;
  for (const double c : {-1.0 / 87178291200, 1.0 / 479001600, -1.0 / 3628800, 1.0 / 40320,
                         -1.0 / 720, 1.0 / 24, -0.5})
    k = k * r2 + c;
  k = 1.0 + r2 * k;
  const std::uint64_t quarter = std::bit_cast<std::uint64_t>(shifted);
  const bool odd = (quarter & 1) != 0;
  const double c = odd ? s : k, o = odd ? k : s;
  // The sign bits: of the cosine in quarters 1 and 2, of the sine in 2 and 3.
  const std::uint64_t flipCosine = ((quarter + 1) & 2) << 62, flipSine = (quarter & 2) << 62;
  cosine = std::bit_cast<double>(std::bit_cast<std::uint64_t>(c) ^ flipCosine);
  sine = std::bit_cast<double>(std::bit_cast<std::uint64_t>(o) ^ flipSine);
}

// ---- A panel

struct Parts {
  double re, im;
};

inline Parts product(Parts x, Parts y) {
  return {x.re * y.re - x.im * y.im, x.re * y.im + x.im * y.re};
}
inline Parts plus(Parts x, Parts y) { return {x.re + y.re, x.im + y.im}; }
inline Parts times(double x, Parts y) { return {x * y.re, x * y.im}; }
inline Parts parts(Complex z) { return {z.real(), z.imag()}; }

// Constants of a panel; those of the weight are scaled with v_a.
struct Panel {
  Parts k;    // v_end / v_a - 1
  Parts P, Q; // P v_a and Q / v_a
  Parts n, a, b, c;
};

struct PanelSums {
  Parts value;
  double high, low; // Legendre coefficients
  double size;      // of the integrand
};

// The integrand where v = v_a (1 + kt), r = 1 / (1 + kt) and d eta = d dt.
inline Parts integrand(const Panel& at, Parts kt, Parts r, Parts d) {
  const Parts e = product(at.P, kt), f = product(product(at.Q, kt), r);
  double cosine = 0, sine = 0;
  turn(f.im - e.im, cosine, sine);
  const double size = exponential(std::max(f.re - e.re, LEASTEXPONENT));
  const Parts r2 = product(r, r);
  const Parts over = plus(at.a, plus(product(at.b, r), product(at.c, r2)));
  const double scale = size / (over.re * over.re + over.im * over.im);
  const Parts w = product(plus({1.0, 0.0}, product(at.n, r2)), {over.re, -over.im});
  return times(scale, product(product(w, d), {cosine, sine}));
}

// All columns at once.
inline void sumUp(const Rule& R, const NodeValues& re, const NodeValues& im, PanelSums& S) {
  double sumRe[COLUMNS] = {}, sumIm[COLUMNS] = {}, size = 0.0;
  for (std::size_t i = 0; i < NODES; ++i) {
    for (int c = 0; c < COLUMNS; ++c) sumRe[c] += R.weights[i][c] * re[i];
    for (int c = 0; c < COLUMNS; ++c) sumIm[c] += R.weights[i][c] * im[i];
    size += R.weights[i][INTEGRAL] * (std::fabs(re[i]) + std::fabs(im[i]));
  }
  const auto of = [&](int c) { return std::fabs(sumRe[c]) + std::fabs(sumIm[c]); };
  S = {{sumRe[INTEGRAL], sumIm[INTEGRAL]},
       std::max(of(LAST), of(SECOND)),
       std::max(of(LASTLOW), of(SECONDLOW)),
       size};
}

LCP_WIDTHS("avx512f", "avx2") void straightPanel(const Panel& at, const Rule& R, PanelSums& S) {
  NodeValues re, im;
  for (std::size_t i = 0; i < NODES; ++i) {
    const Parts kt = times(R.t[i], at.k);
    const double x = 1.0 + kt.re;
    const Parts r = times(1.0 / (x * x + kt.im * kt.im), {x, -kt.im});
    const Parts f = integrand(at, kt, r, product(at.k, r));
    re[i] = f.re;
    im[i] = f.im;
  }
  sumUp(R, re, im, S);
}

LCP_WIDTHS("avx512f", "avx2") void flatPanel(const Panel& at, const Rule& R, PanelSums& S) {
  NodeValues re, im;
  const double d = std::log(FLATGROWTH);
  for (std::size_t i = 0; i < NODES; ++i) {
    const double g = R.growth[i];
    const Parts f = integrand(at, {g - 1.0, 0.0}, {1.0 / g, 0.0}, {d, 0.0});
    re[i] = f.re;
    im[i] = f.im;
  }
  sumUp(R, re, im, S);
}

// ---- The path

struct Place {
  Complex P, Q; // P v and Q / v
  Complex v;
  const PathWeight& w;
  bool ends;           // Re E reaches SPENT before the saddle: any descent will do
  double gained = 0.0; // growth of Re E since the start

  Complex E() const { return P + Q; }
};

double sizeOf(Complex z) { return std::sqrt(std::norm(z)); }

// Change of E from v to v (1 + k).
Complex changeOf(const Place& at, Complex k) { return at.P * k - at.Q * k / (1.0 + k); }

// Whether a singularity at v = p is outside an ellipse with its foci at the ends of the panel. With
// wider = 1 its half axes sum to three times half the panel, which leaves 1e-15 with 16 nodes. The
// essential singularity at 0 needs a wider one, the more so the larger Q / v is.
bool farFrom(const Place& at, Complex k, Complex p, double wider) {
  return sizeOf(p - at.v * (1.0 + k)) + sizeOf(p - at.v) >= 5.0 / 3.0 * wider * sizeOf(k * at.v);
}

bool clear(const Place& at, Complex k) {
  constexpr double PERQ = 0.15, MOSTWIDER = 2.0;
  if (!farFrom(at, k, 0.0, std::min(1.0 + PERQ * sizeOf(at.Q), MOSTWIDER))) return false;
  for (const Complex p : at.w.pole) {
    if (p != 0.0 && !farFrom(at, k, p, 1.0)) return false;
  }
  return true;
}

bool fits(const Place& at, Complex k, double largest) {
  constexpr double RISE =
      -1.0; // least change of Re E over a panel, and of its growth since the start
  constexpr double BEND = 0.25;
  const Complex middle = changeOf(at, 0.5 * k), end = changeOf(at, k);
  const double least = std::max(RISE, RISE - at.gained);
  return sizeOf(end) <= largest && sizeOf(middle - 0.5 * end) <= BEND * largest &&
         middle.real() >= least && end.real() >= least && clear(at, k);
}

// Angle from v to the crest where |v| has grown by a factor.
double angleToCrest(const Place& at, double growth, double most) {
  const double angle = -std::arg(at.P * growth + std::conj(at.Q) / growth);
  return std::clamp(angle, -most, most);
}

bool flat(const Place& at) {
  constexpr double LITTLE = 1.0 / FLATGROWTH;
  if (sizeOf(at.P) > LITTLE || sizeOf(at.Q) > LITTLE) return false;
  for (const Complex p : at.w.pole) {
    if (sizeOf(at.v) < 4.0 * sizeOf(p)) return false;
  }
  return true;
}

// A panel towards the crest and away from 0.
bool alongCrest(const Place& at, double largest, Complex& k) {
  constexpr int HALVINGS = 15;
  double excess = LARGESTGROWTH - 1.0;
  for (int n = 0; n <= HALVINGS; ++n, excess *= 0.5) {
    const double growth = 1.0 + excess;
    k = std::polar(growth, angleToCrest(at, growth, std::min(LARGESTTURN, excess))) - 1.0;
    if (fits(at, k, largest)) return true;
  }
  return false;
}

// A panel along which E grows by T: P k^2 + S k - T = 0.
bool alongDescent(const Place& at, double T, Complex& k) {
  const Complex slope = at.P - at.Q, S = slope - T;
  Complex R = std::sqrt(slope * slope + 2.0 * T * at.E() + T * T);
  if (S.real() * R.real() + S.imag() * R.imag() < 0.0) R = -R;
  const Complex near = 2.0 * T / (S + R), far = -0.5 * (S + R) / at.P;
  const bool nearer = at.ends || std::norm(1.0 + near) >= std::norm(1.0 + far);
  k = nearer ? near : far;
  return (at.ends || std::norm(1.0 + k) >= 1.0) && fits(at, k, 1.01 * T);
}

// A short panel along the gradient of Re E, or round 0 towards the crest if that leads to smaller
// |v|.
bool stepAside(const Place& at, double largest, Complex& k) {
  constexpr int HALVINGS = 4;
  constexpr double REACHED = 0.02; // radians from the crest
  const Complex slope = at.P - at.Q;
  const double steep = sizeOf(slope);
  const Complex downhill = std::conj(slope) / steep;
  const bool out = downhill.real() > 0.0;
  if (!out && std::fabs(angleToCrest(at, 1.0, 1.0)) < REACHED) return false;
  double size = std::min(largest / steep, 0.5);
  for (int n = 0; n <= HALVINGS; ++n, size *= 0.5) {
    k = out ? size * downhill : std::polar(1.0, angleToCrest(at, 1.0, size)) - 1.0;
    if (fits(at, k, 1.2 * largest)) return true;
  }
  return false;
}

Complex nextStep(const Place& at) {
  const double largest = LARGESTCHANGE + 0.4 * std::max(0.0, at.gained);
  const bool little = (LARGESTGROWTH - 1.0) * sizeOf(at.P) < largest;
  Complex k;
  if (little && alongCrest(at, largest, k)) return k;
  for (const double T : {1.0, 0.5, 0.25}) {
    if (alongDescent(at, T * largest, k)) return k;
  }
  if (stepAside(at, largest, k)) return k;
  alongCrest(at, largest, k);
  return k;
}

void addPanel(const Place& at, bool isFlat, Complex k, Complex factor, PathIntegral& I) {
  constexpr double ROUNDING = 1e-15;
  constexpr double LEASTSIZE = 1e-300;
  const Complex z = 1.0 / at.v;
  const PathWeight& w = at.w;
  const Panel panel{parts(k),   parts(at.P),    parts(at.Q),         parts(w.n * z * z),
                    parts(w.a), parts(w.b * z), parts(w.c * (z * z))};
  PanelSums S;
  isFlat ? flatPanel(panel, rule(), S) : straightPanel(panel, rule(), S);
  const double fall = std::min(1.0, S.high / std::max(S.low, LEASTSIZE));
  const double rest = std::min(fall * fall * fall * fall, S.high / std::max(S.size, LEASTSIZE));
  I.value += factor * Complex(S.value.re, S.value.im);
  I.error += sizeOf(factor) * (S.high * rest + ROUNDING * S.size);
  ++I.panels;
}

// Whether the integrand has vanished before the saddle, and the poles of the weight lie beyond the
// reach of the path.
bool endsEarly(Complex P, Complex Q, const PathWeight& w) {
  constexpr double SAFE = 4.0;
  if (!((2.0 * std::sqrt(P * Q) - P - Q).real() > SPENT)) return false;
  const double reach = SAFE * SPENT / sizeOf(P - Q);
  return sizeOf(1.0 - w.pole[0]) > reach && sizeOf(1.0 - w.pole[1]) > reach;
}

} // namespace

PathIntegral PATHINTEGRAL(Complex P, Complex Q, const PathWeight& w) {
  Place at{P, Q, 1.0, w, endsEarly(P, Q, w)};
  Complex spent = 0.0; // change of E since the start
  PathIntegral I{0.0, 0.0, 0};
  while (spent.real() < SPENT && I.panels < MOSTPANELS) {
    const bool isFlat = flat(at);
    const Complex k = isFlat ? FLATGROWTH - 1.0 : nextStep(at);
    addPanel(at, isFlat, k, std::exp(-spent), I);
    spent += changeOf(at, k);
    at.v *= 1.0 + k;
    at.P = P * at.v;
    at.Q = Q / at.v;
    at.gained = spent.real();
  }
  return I;
}

PathWeight weightOfRatio(Complex ratio) {
  const Complex p = std::sqrt((ratio - 1.0) / (ratio + 1.0));
  return {1.0, 1.0 + ratio, 0.0, 1.0 - ratio, {p, -p}};
}

PathWeight weightBeside(Complex k) {
  const Complex R = std::sqrt(k * k - 1.0);
  return {1.0, 1.0, 2.0 * k, 1.0, {-k + R, -k - R}};
}

} // namespace lcp
