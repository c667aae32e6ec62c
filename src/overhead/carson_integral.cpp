// Carson's integral by Simpson panels.
//
//   panel with centre c and half-width h, g(t) = f(t) cos(t sin theta):
//     S(c, h) = h / 3 [ g(c - h) + 4 g(c) + g(c + h) ]
//
//   geometric stage   from 0 to 0.05; the first panel is 0.05 |z| wide, each next one 2 % wider
//   closing panel     the rest up to 0.05
//   linear stage      panels 0.05 wide, until a panel is below 1e-10 of the sum
//
// The accuracy is that of the panels. For small |z| f falls as 1 / (2 t) just above t = 0.05, where
// a panel of the linear stage is as wide as its distance from 0. This adds up to 1.5e-3 to J, at
// most 3e-4 of J.
//
// The same sum is evaluated in two ways. The plain one follows the formulas for any z. The fast one
// uses the following, with s = -cos theta + j sin theta:
//
//   exp(-t cos theta) cos(t sin theta) = Re exp(t s)
//     geometric stage: t < 0.05, so a polynomial in t of degree 8 is accurate to 1e-17
//     linear stage: the grid t = 0.05 + 0.025 m is the same for every z; a block of 64 points is
//     one exponential at its start times 64 powers that depend only on theta
//   geometric stage: with t = |z| u the panels lie on one grid in u, and 1 / (t + W) is
//     1 / |z| / (u + sqrt(u^2 + (z / |z|)^2)), which depends only on the direction of z. The stage
//     is then the polynomial applied to moments that are summed once for each direction of z
//   linear stage: W by real square roots, in loops that the compiler vectorises; the exponentials
//     of an angle are kept and used at every frequency
#include "overhead/carson_integral.h"

#include "base/big_store.h"
#include "base/console.h"
#include "base/number_forms.h"
#include "base/register_widths.h"
#include "base/table.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace lcp {

namespace {

constexpr double HALFWIDTH = 0.025; // largest half-width of a panel
constexpr double STAGEEND = 0.05;   // where the growing panels end
constexpr double GROWTH = 1.02;
constexpr double SMALLPANEL = 1e-10; // relative to the sum: the integral has converged
constexpr int MAXGEOMETRIC = 10000;
constexpr int MAXLINEAR = 10000000;

struct Direction {
  double c; // cos theta
  double s; // sin theta

  explicit Direction(double theta) : c(std::cos(theta)), s(std::sin(theta)) {}
};

// The integrand f(t) cos(t sin theta), with W in a form that cannot overflow.
Complex integrand(double t, Complex z, const Direction& d) {
  Complex W;
  if (std::abs(z) <= std::fabs(t)) {
    W = t * std::sqrt(1.0 + (z / t) * (z / t));
  } else {
    W = z * std::sqrt(1.0 + (t / z) * (t / z));
  }
  return std::exp(-t * d.c) * std::cos(t * d.s) / (t + W);
}

Complex simpson(double c, double h, Complex z, const Direction& d) {
  return h / 3.0 * (integrand(c - h, z, d) + 4.0 * integrand(c, z, d) + integrand(c + h, z, d));
}

// A panel split into equal parts.
Complex cutPanel(double c, double h, Complex z, const Direction& d, int parts) {
  const double part = h / parts;
  Complex sum = 0.0;
  for (int k = 1 - parts; k < parts; k += 2) sum += simpson(c + k * part, part, z, d);
  return sum;
}

// Panels from 0 that grow with t. Returns the end of the last one.
double plainGeometricStage(Complex z, const Direction& d, int parts, CarsonSum& sum) {
  double h = std::min(HALFWIDTH * std::abs(z), HALFWIDTH);
  double lo = 0.0;
  double c = h;
  double top = 2.0 * h;
  while (!(std::fabs(top) >= STAGEEND)) {
    if (sum.geometric == MAXGEOMETRIC) {
      sum.geometricDone = false;
      break;
    }
    sum.A += 2.0 * cutPanel(c, h, z, d, parts);
    ++sum.geometric;
    lo = top;
    h = GROWTH * h;
    c = lo + h;
    top = lo + 2.0 * h;
  }
  return lo;
}

// Once the sum is NaN, further panels change nothing.
bool isNumber(Complex A) { return !std::isnan(A.real()) && !std::isnan(A.imag()); }

void plainLinearStage(double lo, Complex z, const Direction& d, int parts, CarsonSum& sum) {
  double h = (STAGEEND - lo) / 2.0;
  double c = lo + h;
  while (sum.linear < MAXLINEAR && isNumber(sum.A)) {
    const Complex P = cutPanel(c, h, z, d, parts);
    sum.A += 2.0 * P;
    ++sum.linear;
    if (sum.linear > 1 && std::abs(P) < SMALLPANEL * std::abs(sum.A)) {
      sum.linearDone = true;
      return;
    }
    // Computed as a product: adding steps would drift over thousands of panels.
    h = HALFWIDTH;
    c = STAGEEND + (2.0 * sum.linear - 1.0) * HALFWIDTH;
  }
}

// The geometric stage in units of |z|: the ends of the panels and, for the last direction of z, the
// sums over the first n panels of
//   2 h / 3 [ G(lo) lo^k + 4 G(c) c^k + G(hi) hi^k ],  G(u) = 1 / (u + sqrt(u^2 + (z / |z|)^2))
constexpr int MAXMOMENTPANELS = 1024; // reaches 0.05 for |z| down to 4e-11
constexpr int POWERS = 8;
constexpr double LEASTZ = 1e-10;
constexpr double LARGESTZ = 1e60;
constexpr double STEEPESTZ = 1e3; // Im z / Re z

struct GeometricMoments {
  double tangent;                             // Im z / Re z
  Complex square;                             // (z / |z|)^2
  double h;                                   // half-width of the next panel
  int panels;                                 // panels summed so far
  double END[MAXMOMENTPANELS + 1];            // END[n]: end of panel n
  Complex running[POWERS + 1];                // compensation terms of the sums
  Complex M[MAXMOMENTPANELS + 1][POWERS + 1]; // M[n][k]
};

GeometricMoments& MOMENTS = bigStore<GeometricMoments>();

// Restarts the moments when the direction of z changes. With constant soil it never does.
void turnTo(Complex z) {
  const double tangent = z.imag() / z.real();
  if (MOMENTS.panels > 0 && MOMENTS.tangent == tangent) return;
  MOMENTS.tangent = tangent;
  const double n = 1.0 + tangent * tangent;
  MOMENTS.square = {(1.0 - tangent) * (1.0 + tangent) / n, 2.0 * tangent / n};
  MOMENTS.h = HALFWIDTH;
  MOMENTS.panels = 0;
  for (Complex& r : MOMENTS.running) r = 0.0;
}

Complex kernelOfDirection(double u) { return 1.0 / (u + std::sqrt(u * u + MOMENTS.square)); }

void addMomentPanel() {
  GeometricMoments& T = MOMENTS;
  const int n = T.panels + 1;
  const double points[3] = {T.END[n - 1], T.END[n - 1] + T.h, T.END[n - 1] + 2.0 * T.h};
  const double weights[3] = {1.0, 4.0, 1.0};
  Complex panel[POWERS + 1] = {};
  for (int i = 0; i < 3; ++i) {
    Complex term = 2.0 * T.h / 3.0 * weights[i] * kernelOfDirection(points[i]);
    for (int k = 0; k <= POWERS; ++k) {
      panel[k] += term;
      term *= points[i];
    }
  }
  for (int k = 0; k <= POWERS; ++k) {
    // Compensated summation: the rounding error of a sum is carried to the next term.
    const Complex y = panel[k] - T.running[k];
    const Complex t = T.M[n - 1][k] + y;
    T.running[k] = (t - T.M[n - 1][k]) - y;
    T.M[n][k] = t;
  }
  T.END[n] = points[2];
  T.h = GROWTH * T.h;
  T.panels = n;
}

// Sums the panels that end below 0.05. Returns the end of the last one.
double momentGeometricStage(Complex z, const Direction& d, CarsonSum& sum) {
  const double r = std::abs(z);
  turnTo(z);
  while (MOMENTS.panels < MAXMOMENTPANELS && r * MOMENTS.END[MOMENTS.panels] < STAGEEND)
    addMomentPanel();
  const double* ends = MOMENTS.END + 1;
  const double* beyond = std::partition_point(ends, ends + MOMENTS.panels,
                                              [r](double end) { return r * end < STAGEEND; });
  sum.geometric = static_cast<int>(beyond - ends);
  Complex power = 1.0; // (|z| s)^k / k!
  for (int k = 0; k <= POWERS; ++k) {
    sum.A += power.real() * MOMENTS.M[sum.geometric][k];
    power *= Complex(-d.c, d.s) * r / (k + 1.0);
  }
  return r * MOMENTS.END[sum.geometric];
}

// Blocks of the linear stage: point m of a block is 0.025 m after its start.
constexpr int BLOCKPANELS = 32;
constexpr int BLOCKPOINTS = 2 * BLOCKPANELS;
constexpr int GROUP = 8; // powers are products of two exponentials, each computed directly

Complex exponential(double t, const Direction& d) {
  const double size = std::exp(-t * d.c);
  return {size * std::cos(t * d.s), size * std::sin(t * d.s)};
}

// exp(0.025 m s): the middle of panel i is 2 i + 1 half-widths after the start of its block, its
// end 2 i + 2.
struct Powers {
  double middleRe[BLOCKPANELS];
  double middleIm[BLOCKPANELS];
  double endRe[BLOCKPANELS];
  double endIm[BLOCKPANELS];
};

void formPowers(const Direction& d, Powers& E) {
  Complex low[GROUP];
  for (int m = 1; m <= GROUP; ++m) low[m - 1] = exponential(HALFWIDTH * m, d);
  for (int g = 0; g < BLOCKPOINTS; g += GROUP) {
    const Complex high = g == 0 ? 1.0 : exponential(HALFWIDTH * g, d);
    for (int m = 0; m < GROUP; m += 2) {
      const Complex middle = high * low[m], end = high * low[m + 1];
      const int i = (g + m) / 2;
      E.middleRe[i] = middle.real();
      E.middleIm[i] = middle.imag();
      E.endRe[i] = end.real();
      E.endIm[i] = end.imag();
    }
  }
}

double blockStart(int block) { return STAGEEND + HALFWIDTH * BLOCKPOINTS * block; }

// Exponentials depend only on the angle, so those of a conductor pair serve at all frequencies.
// They are stored in the order in which angles first occur and found by hashing the angle.
constexpr int HASHBITS = 14;
constexpr int PLACES = 1 << HASHBITS;
constexpr int MOSTANGLES = PLACES / 2;
constexpr int MOSTSTARTS = 64; // blocks whose start is stored

struct Exponentials {
  Powers E;
  int starts; // starts computed so far
  Complex START[MOSTSTARTS];
};

struct AngleStore {
  int angles; // angles stored so far
  Table<Exponentials, MOSTANGLES> of;
  double theta[PLACES];
  int number[PLACES]; // index of the angle, 0 at an empty place
};

AngleStore& ANGLES = bigStore<AngleStore>();

// Place of an angle, or the empty place where it belongs.
int placeOf(double theta) {
  constexpr std::uint64_t MIX = 0x9E3779B97F4A7C15; // 2^64 divided by the golden ratio
  const AngleStore& S = ANGLES;
  const std::uint64_t mixed = std::bit_cast<std::uint64_t>(theta) * MIX;
  int p = static_cast<int>(mixed >> (64 - HASHBITS));
  while (S.number[p] != 0 && S.theta[p] != theta) p = (p + 1) % PLACES;
  return p;
}

Exponentials& exponentialsOf(double theta, const Direction& d) {
  AngleStore& S = ANGLES;
  int p = placeOf(theta);
  if (S.number[p] != 0) return S.of[S.number[p]];
  if (S.angles == MOSTANGLES) { // full, mostly of other lines
    S.angles = 0;
    std::fill_n(S.number, PLACES, 0);
    p = placeOf(theta);
  }
  S.theta[p] = theta;
  S.number[p] = ++S.angles;
  Exponentials& X = S.of[S.angles];
  X.starts = 0;
  formPowers(d, X.E);
  return X;
}

Complex startOf(int block, Exponentials& X, const Direction& d) {
  if (block >= MOSTSTARTS) return exponential(blockStart(block), d);
  for (; X.starts <= block; ++X.starts) X.START[X.starts] = exponential(blockStart(X.starts), d);
  return X.START[block];
}

// The integrand at the panel ends of a block, including its start, and the contribution of each
// panel.
struct Block {
  double re[BLOCKPANELS + 1];
  double im[BLOCKPANELS + 1];
  double panelRe[BLOCKPANELS];
  double panelIm[BLOCKPANELS];
};

struct Integrand {
  double re, im;
};

// Start of a block: its t, the exponential there, and z^2 = a + j b.
struct BlockStart {
  double t, er, ei, a, b;
};

// The integrand n half-widths after the start of the block; its exponential is that of the start
// times re + j im. The root of x + j b is s + j b / (2 s) with s = sqrt((|x + j b| + x) / 2) for x
// >= 0, and the parts change roles for x < 0.
inline Integrand integrandAt(int n, const BlockStart& S, double re, double im) {
  const double t = S.t + HALFWIDTH * n;
  const double x = t * t + S.a;
  const double s = std::sqrt(0.5 * (std::sqrt(x * x + S.b * S.b) + std::fabs(x)));
  const double q = 0.5 * S.b / s;
  const double wr = x >= 0.0 ? s : std::fabs(q);
  const double wi = x >= 0.0 ? q : std::copysign(s, S.b);
  const double sr = t + wr;
  const double k = (S.er * re - S.ei * im) / (sr * sr + wi * wi);
  return {sr * k, -wi * k};
}

// The panels of a block. Roots and quotients side by side without fused operations: all register
// widths give the same bits.
LCP_WIDTHS("avx512f", "avx2") void fillBlock(const BlockStart& S, const Powers& E, Block& g) {
  double re[BLOCKPANELS], im[BLOCKPANELS];
  for (int i = 0; i < BLOCKPANELS; ++i) {
    const Integrand middle = integrandAt(2 * i + 1, S, E.middleRe[i], E.middleIm[i]);
    const Integrand end = integrandAt(2 * i + 2, S, E.endRe[i], E.endIm[i]);
    re[i] = middle.re;
    im[i] = middle.im;
    g.re[i + 1] = end.re;
    g.im[i + 1] = end.im;
  }
  for (int i = 0; i < BLOCKPANELS; ++i) {
    g.panelRe[i] = HALFWIDTH / 3.0 * (g.re[i] + 4.0 * re[i] + g.re[i + 1]);
    g.panelIm[i] = HALFWIDTH / 3.0 * (g.im[i] + 4.0 * im[i] + g.im[i + 1]);
  }
}

// The sum after each panel of a block.
struct RunningSums {
  double re[BLOCKPANELS];
  double im[BLOCKPANELS];
};

bool isSmall(const Block& g, const RunningSums& R, int i) {
  const double pr = g.panelRe[i], pi = g.panelIm[i];
  return pr * pr + pi * pi < SMALLPANEL * SMALLPANEL * (R.re[i] * R.re[i] + R.im[i] * R.im[i]);
}

LCP_WIDTHS("avx512f", "avx2") int addPanels(const Block& g, Complex A, RunningSums& R) {
  double re = A.real(), im = A.imag();
  for (int i = 0; i < BLOCKPANELS; ++i) {
    re += 2.0 * g.panelRe[i];
    im += 2.0 * g.panelIm[i];
    R.re[i] = re;
    R.im[i] = im;
  }
  int small = 0;
  for (int i = 0; i < BLOCKPANELS; ++i) small += isSmall(g, R, i) ? 1 : 0;
  return small;
}

// Adds the panels of a block in order. Returns true if one of them ends the integral.
bool addBlock(const Block& g, CarsonSum& sum) {
  RunningSums R;
  int last = std::min(BLOCKPANELS, MAXLINEAR - sum.linear) - 1;
  bool done = false;
  if (addPanels(g, sum.A, R) > 0) {
    int small = 0;
    while (small <= last && !isSmall(g, R, small)) ++small;
    done = small <= last;
    last = std::min(small, last);
  }
  sum.A = {R.re[last], R.im[last]};
  sum.linear += last + 1;
  return done;
}

void blockLinearStage(double lo, Complex z, double theta, const Direction& d, CarsonSum& sum) {
  const double h = (STAGEEND - lo) / 2.0;
  sum.A += 2.0 * simpson(lo + h, h, z, d);
  sum.linear = 1;
  BlockStart S{};
  S.a = (z.real() - z.imag()) * (z.real() + z.imag());
  S.b = 2.0 * z.real() * z.imag();
  Exponentials& X = exponentialsOf(theta, d);
  const Complex first = integrand(STAGEEND, z, d);
  Block g;
  g.re[0] = first.real();
  g.im[0] = first.imag();
  for (int block = 0; sum.linear < MAXLINEAR && isNumber(sum.A); ++block) {
    S.t = blockStart(block);
    const Complex start = startOf(block, X, d);
    S.er = start.real();
    S.ei = start.imag();
    fillBlock(S, X.E, g);
    sum.linearDone = addBlock(g, sum);
    if (sum.linearDone) return;
    g.re[0] = g.re[BLOCKPANELS];
    g.im[0] = g.im[BLOCKPANELS];
  }
}

} // namespace

void sayNotConverged(std::string_view stage, Complex z, int width, std::string_view behind) {
  console::print("{}{}{}{}", NOTCONVERGED, stage, pointedField(std::abs(z), width, 6), behind);
}

Complex CARSINT(Complex z, double theta) {
  const CarsonSum sum =
      carsonBlocksTake(z, theta) ? carsonBlocks(z, theta) : carsonPanels(z, theta);
  constexpr std::string_view GOINGON = "Exec. Continuing";
  if (!sum.geometricDone) sayNotConverged(" on hyperbolic step length for R=", z, 15, GOINGON);
  if (!sum.linearDone) sayNotConverged(" on linear step length for R=", z, 15, GOINGON);
  return sum.A;
}

CarsonSum carsonPanels(Complex z, double theta, int parts) {
  const Direction d(theta);
  CarsonSum sum;
  const double lo = plainGeometricStage(z, d, parts, sum);
  plainLinearStage(lo, z, d, parts, sum);
  return sum;
}

bool carsonBlocksTake(Complex z, double theta) {
  const double r = std::abs(z);
  const bool sector = z.real() > 0.0 && std::fabs(z.imag()) <= STEEPESTZ * z.real();
  return sector && r >= LEASTZ && r <= LARGESTZ && std::cos(theta) >= 0.0;
}

CarsonSum carsonBlocks(Complex z, double theta) {
  const Direction d(theta);
  CarsonSum sum;
  const double lo = momentGeometricStage(z, d, sum);
  blockLinearStage(lo, z, theta, d, sum);
  return sum;
}

} // namespace lcp
