// The integrals of buried cables are computed by panels. With A = 0.05 |z|:
//
//   growing stage   from 0; the first panel is A wide, each next one 2 % wider
//                   (KEXPINT and CBMUT, whose integrands bend at t = |z|)
//   graded stage    panel ends at x_i^2 = 0.000625 i^2 + A i: 0.025 apart for small |z|, to suit
//                   exp(-t); at equal steps of t^2 for large |z|, to suit exp(-t^2 / 2 z). For
//                   CBMUT, whose decay is slower by c = cos theta:
//                   x_i^2 = (0.000625 i / c + A) i / c
//
// The integral ends at a panel below 1e-10 of the sum. KEXPONE leaves that panel out, the other two
// include it.
//
//   Simpson, KEXPINT and KEXPONE, panel from u to v:  (v - u) / 6 [f(u) + 4 f((u + v) / 2) + f(v)]
//
//   Filon, CBMUT, panel from x - h to x + h: the parabola f0 + A1 y + B y^2 through the three
//   values of g, y = t - x, times cos(e + s y), integrated exactly, e = s x, v = s h, s = sin
//   theta:
//     (2 / s) { cos v [2 B h / s cos e + h A1 sin e]
//             + sin v [cos e (f0 - 2 B / s^2 + h^2 B) - A1 / s sin e] }
//     and for small v, where this cancels,
//     2 h { f0 cos e + h^2 / 3 [B cos e - s^2 / 2 f0 cos e - s A1 sin e] },  Simpson when s = 0
//
// The accuracy is that of the panels: 4e-4 at small |z|, where the graded stage starts with panels
// as wide as their distance from 0.
#include "cable/earth_integrals.h"

#include "cable/complex_root.h"
#include "overhead/carson_integral.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace lcp {

namespace {

constexpr double GROWTH = 1.02;
constexpr double FIRSTPANEL = 0.05; // relative to |z|
constexpr double GRADE = 0.000625;  // 0.025^2
constexpr double SMALLPANEL = 1e-10;

// Once the sum is NaN, further panels change nothing.
bool isNumber(Complex S) { return !std::isnan(S.real()) && !std::isnan(S.imag()); }

// Squares are sufficient for most panels, which are far from the limit; close to it, and where
// squares overflow or underflow, the magnitudes decide.
bool isSmall(Complex P, Complex S) {
  constexpr double FAR = 1.01 * SMALLPANEL * SMALLPANEL;
  if (std::norm(P) > FAR * std::norm(S)) return false;
  return std::abs(P) < SMALLPANEL * std::abs(S);
}

// ---- Panels

// End of the panels so far, and the integrand there, which the next panel reuses.
struct Reached {
  double t;
  Complex f;
};

// Panels computed ahead of their summation, a group with one panel per lane: start, half-width,
// middle and end, and the integrand there.
constexpr int GROUPS = 2;
constexpr int AHEAD = GROUPS * LANES;
constexpr int SWEEPS = 2 * GROUPS; // over the places: middles and ends of each group in turn

struct PanelsAhead {
  Lanes start[GROUPS];
  Lanes half[GROUPS];
  Lanes places[SWEEPS];
  ComplexLanes atStart[GROUPS];
  ComplexLanes atPlaces[SWEEPS];
  ComplexLanes sums[GROUPS];
};

// The panels of a stage in order, each split into equal parts. A Division gives the places of the
// panels, the integrand there and the sums of the panels.
template <class Division> class Panels {
public:
  Panels(const Division& d, Reached& from, int cuts)
      : division(d), reached(from), parts(cuts), cut(cuts), at(from) {}

  // End of the next panel.
  double end() {
    if (next == AHEAD) lookAhead();
    return whole[next];
  }
  // Sum of the next panel; moves `reached` to its end.
  Complex take() {
    Complex sum = 0.0;
    for (int n = 1; n <= parts; ++n, ++next) {
      if (next == AHEAD) lookAhead();
      sum += ahead.sums[next / LANES].lane(next % LANES);
    }
    const int g = (next - 1) / LANES, c = (next - 1) % LANES;
    reached = {ahead.places[2 * g + 1][c], ahead.atPlaces[2 * g + 1].lane(c)};
    return sum;
  }

private:
  void lookAhead() {
    double from = at.t;
    for (int p = 0; p < AHEAD; ++p) {
      const int g = p / LANES, c = p % LANES;
      if (cut == parts) {
        division.turnTo(from, parts);
        cut = 0;
      }
      ++cut;
      whole[p] = division.end();
      ahead.start[g][c] = from;
      ahead.half[g][c] = division.half();
      ahead.places[2 * g][c] = division.middle(cut, parts, from);
      from = ahead.places[2 * g + 1][c] = division.partEnd(cut, parts);
    }
    valuesAt(ahead.atPlaces, ahead.places, SWEEPS, division.integrand);
    for (int g = 0; g < GROUPS; ++g) passOn(ahead.atStart[g], ahead.atPlaces[2 * g + 1]);
    at.t = from;
    sumUp(ahead, division.integrand);
    next = 0;
  }

  // Each panel starts with the value at the end of the one before.
  void passOn(ComplexLanes& atStart, const ComplexLanes& atEnd) {
    atStart.set(0, at.f);
    for (int c = 1; c < LANES; ++c) atStart.set(c, atEnd.lane(c - 1));
    at.f = atEnd.lane(LANES - 1);
  }

  Division division;
  Reached& reached;
  int parts, cut;
  Reached at; // end of the panels computed ahead
  int next = AHEAD;
  double whole[AHEAD];
  PanelsAhead ahead;
};

template <class Integrand> Complex valueAt(double t, const Integrand& k) {
  ComplexLanes f;
  const Lanes same = t - Lanes{};
  valuesAt(&f, &same, 1, k);
  return f.lane(0);
}

// ---- KEXPINT and KEXPONE

constexpr int MAXPANELS = 10000;

struct Decay {
  Complex z;
  Complex z2;
  bool overW; // true: exp(z - W) / W; false: exp(z - W)
};

LCP_WIDTHS("avx2")
void valuesAt(ComplexLanes* f, const Lanes* t, int sweeps, const Decay& k) {
  ComplexLanes W[SWEEPS];
  for (int g = 0; g < sweeps; ++g) {
    W[g] = {t[g] * t[g] + k.z2.real(), k.z2.imag() - Lanes{}};
    takeRoot(W[g]);
    f[g] = {k.z.real() - W[g].re, k.z.imag() - W[g].im};
  }
  for (int g = 0; g < sweeps; ++g) takeExponential(f[g]);
  for (int g = 0; k.overW && g < sweeps; ++g) f[g] = f[g] / W[g];
}

// Six times the contributions of the panels.
LCP_WIDTHS("avx2") void sumUp(PanelsAhead& P, const Decay&) {
  for (int g = 0; g < GROUPS; ++g) {
    const ComplexLanes *middle = P.atPlaces + 2 * g, *end = middle + 1;
    P.sums[g] = (P.places[2 * g + 1] - P.start[g]) * (P.atStart[g] + 4.0 * *middle + *end);
  }
}

double gradedEnd(int i, double A) { return std::sqrt((i * GRADE + A) * i); }

// Panel ends of both stages.
struct GrowingEnds {
  double hh, hi;
  explicit GrowingEnds(double A) : hh(A), hi(A) {}
  double next() {
    const double end = hi;
    hi += GROWTH * hh;
    hh *= GROWTH;
    return end;
  }
};
struct GradedEnds {
  double A;
  int i = 0;
  double next() { return gradedEnd(++i, A); }
};

template <class Ends> struct Simpson {
  Ends ends;
  const Decay& integrand;
  double lo = 0, hi = 0;

  void turnTo(double at, int) {
    lo = at;
    hi = ends.next();
  }
  double end() const { return hi; }
  double half() const { return 0.0; } // not used
  double partEnd(int n, int parts) const { return n == parts ? hi : lo + (hi - lo) * n / parts; }
  double middle(int n, int parts, double at) const { return 0.5 * (at + partEnd(n, parts)); }
};

using GrowingSimpson = Panels<Simpson<GrowingEnds>>;
using GradedSimpson = Panels<Simpson<GradedEnds>>;

// The growing panels, as long as they end below X1.
void simpsonGrowing(double A, double X1, const Decay& k, int parts, Reached& at, PanelSum& sum) {
  GrowingSimpson panels({GrowingEnds(A), k}, at, parts);
  while (panels.end() < X1) {
    if (sum.growing == MAXPANELS || !isNumber(sum.S)) {
      sum.growingDone = false;
      return;
    }
    sum.S += panels.take();
    ++sum.growing;
  }
}

// ---- CBMUT

constexpr double LARGESTFIRST = 0.05;  // half-width of the first panel
constexpr double LARGESTPHASE = 100.0; // largest phase s h of a panel
constexpr double SMALLPHASE = 1e-06;
constexpr int MAXGROWING = 1000000;
constexpr int MAXGRADED = 10000000;

struct Angled {
  Complex z;
  double r;         // |z|
  double c;         // cos theta
  double s;         // sin theta
  ComplexLanes all; // z in every lane

  Angled(Complex z0, double theta)
      : z(z0), r(std::abs(z0)), c(std::cos(theta)), s(std::sin(theta)) {
    all.fill(z0);
  }
};

// W in a form that cannot overflow, t >= 0.
void setW(ComplexLanes& W, const Lanes& t, const Angled& k) {
  const Lanes zero{};
  const LaneChoice beyond = k.r <= t;
  const ComplexLanes q = chosen(beyond, k.all / t, ComplexLanes{t, zero} / k.all);
  ComplexLanes root = q * q;
  root.re = 1.0 + root.re;
  takeRoot(root);
  W = chosen(beyond, t * root, k.all * root);
}

// The function g(t).
LCP_WIDTHS("avx2")
void valuesAt(ComplexLanes* f, const Lanes* t, int sweeps, const Angled& k) {
  ComplexLanes W[SWEEPS];
  for (int g = 0; g < sweeps; ++g) {
    setW(W[g], t[g], k);
    f[g] = k.c * (k.all - W[g]);
  }
  for (int g = 0; g < sweeps; ++g) takeExponential(f[g]);
  for (int g = 0; g < sweeps; ++g) f[g] = f[g] / ComplexLanes{t[g] + W[g].re, W[g].im};
}

void setTurn(Lanes& cosine, Lanes& sine, const Lanes& angle) {
  for (int c = 0; c < LANES; ++c) {
    cosine[c] = std::cos(angle[c]);
    sine[c] = std::sin(angle[c]);
  }
}

void filon(ComplexLanes& P, const Lanes& x, const Lanes& h, const ComplexLanes& fm,
           const ComplexLanes& f0, const ComplexLanes& fp, double s) {
  const ComplexLanes A1 = (fp - fm) / (2.0 * h);
  const ComplexLanes B = (fm - 2.0 * f0 + fp) / (2.0 * h * h);
  const Lanes e = s * x, v = s * h;
  Lanes ce, se, cv, sv;
  setTurn(ce, se, e);
  setTurn(cv, sv, v);
  const ComplexLanes even = ce * (f0 - 2.0 * B / (s * s) + h * h * B) - se * (A1 / s);
  const ComplexLanes odd = ce * (h * (2.0 * B) / s) + se * (h * A1);
  const ComplexLanes flat = ce * B - ce * (0.5 * s * s * f0) - se * (s * A1);
  P = chosen(v >= SMALLPHASE, 2.0 / s * (cv * odd + sv * even),
             2.0 * h * (ce * f0 + h * h / 3.0 * flat));
}

LCP_WIDTHS("avx2") void sumUp(PanelsAhead& P, const Angled& k) {
  for (int g = 0; g < GROUPS; ++g) {
    const ComplexLanes *middle = P.atPlaces + 2 * g, *end = middle + 1;
    filon(P.sums[g], P.places[2 * g], P.half[g], P.atStart[g], *middle, *end, k.s);
  }
}

// Limits the half-width so that no panel spans too many waves.
double heldToPhase(double h, double s) { return h * s > LARGESTPHASE ? LARGESTPHASE / s : h; }

// Half-widths of the panels of both stages.
struct GrowingHalves {
  double h, s;
  GrowingHalves(double A, double sine) : h(std::min(0.5 * A, LARGESTFIRST)), s(sine) {}
  double next(double) {
    const double half = h;
    h = heldToPhase(GROWTH * h, s);
    return half;
  }
};
struct GradedHalves {
  double A, c, s;
  int i = 0;
  double next(double at) {
    const double p = ++i;
    const double X = std::sqrt((A + GRADE * p / c) * p / c);
    return heldToPhase(0.5 * (X - at), s);
  }
};

template <class Halves> struct Filon {
  Halves halves;
  const Angled& integrand;
  double lo = 0, h = 0, part = 0;

  void turnTo(double at, int parts) {
    lo = at;
    h = halves.next(at);
    part = h / parts;
  }
  double end() const { return lo + 2.0 * h; }
  double half() const { return part; }
  double partEnd(int n, int) const { return lo + 2 * n * part; }
  double middle(int n, int, double) const { return lo + (2 * n - 1) * part; }
};

using GrowingFilon = Panels<Filon<GrowingHalves>>;
using GradedFilon = Panels<Filon<GradedHalves>>;

void filonGrowing(double A, double X1, const Angled& k, int parts, Reached& at, PanelSum& sum) {
  GrowingFilon panels({GrowingHalves(A, k.s), k}, at, parts);
  while (X1 > panels.end()) {
    if (sum.growing == MAXGROWING || !isNumber(sum.S)) {
      sum.growingDone = false;
      return;
    }
    sum.S += 2.0 * panels.take();
    ++sum.growing;
  }
}

void filonGraded(double A, const Angled& k, int parts, Reached& at, PanelSum& sum) {
  GradedFilon panels({{A, std::fabs(k.c), k.s}, k}, at, parts);
  while (sum.graded < MAXGRADED && isNumber(sum.S)) {
    ++sum.graded;
    const Complex P = panels.take();
    sum.S += 2.0 * P;
    sum.gradedDone = isSmall(P, sum.S);
    if (sum.gradedDone) return;
  }
}

} // namespace

// The quotation marks and slashes are part of the messages.
Complex KEXPINT(Complex z) {
  constexpr std::string_view TEXT = " for R=";
  const PanelSum sum = kexpintPanels(z);
  if (!sum.growingDone) {
    sayNotConverged(TEXT, z, 15, R"(in hyper-b region"// " Exec. Continuing)");
  }
  if (!sum.gradedDone) {
    sayNotConverged(TEXT, z, 15, R"(in constant region"//" Exec. Continuing)");
  }
  return sum.S;
}

Complex KEXPONE(Complex z) {
  const PanelSum sum = kexponePanels(z);
  if (!sum.gradedDone) {
    sayNotConverged(", Carson R Magnitude =", z, 16, "Execution continuing");
  }
  return sum.S;
}

Complex CBMUT(Complex z, double theta) {
  constexpr std::string_view GOINGON = " CBMUT Execution Continuing";
  const PanelSum sum = cbmutPanels(z, theta);
  if (!sum.growingDone) {
    sayNotConverged(" on hyperbolic step loop for R= ", z, 15, GOINGON);
  }
  if (!sum.gradedDone) {
    sayNotConverged(" on exponential step loopfor R= ", z, 15, GOINGON);
  }
  return sum.S;
}

PanelSum kexpintPanels(Complex z, int parts) {
  const Decay k{z, z * z, true};
  const double A = FIRSTPANEL * std::abs(z);
  const double X1 = gradedEnd(1, A);
  PanelSum sum;
  Reached at{0.0, valueAt(0.0, k)};
  simpsonGrowing(A, X1, k, parts, at, sum);
  GradedSimpson panels({{A}, k}, at, parts);
  sum.S += panels.take();
  sum.graded = 1;
  while (!sum.gradedDone && sum.graded < MAXPANELS && isNumber(sum.S)) {
    ++sum.graded;
    const Complex P = panels.take();
    sum.S += P;
    sum.gradedDone = isSmall(P, sum.S);
  }
  sum.S /= 6.0;
  return sum;
}

PanelSum kexponePanels(Complex z, int parts) {
  const Decay k{z, z * z, false};
  const double A = FIRSTPANEL * std::abs(z);
  PanelSum sum;
  Reached at{0.0, valueAt(0.0, k)};
  GradedSimpson panels({{A}, k}, at, parts);
  while (!sum.gradedDone && sum.graded < MAXPANELS && isNumber(sum.S)) {
    const Complex P = panels.take();
    sum.gradedDone = isSmall(P, sum.S);
    if (sum.gradedDone) break;
    sum.S += P;
    ++sum.graded;
  }
  sum.S /= 6.0;
  return sum;
}

PanelSum cbmutPanels(Complex z, double theta, int parts) {
  const Angled k(z, theta);
  const double A = FIRSTPANEL * k.r;
  const double c = std::fabs(k.c);
  PanelSum sum;
  Reached at{0.0, valueAt(0.0, k)};
  filonGrowing(A, std::sqrt((GRADE / c + A) / c), k, parts, at, sum);
  filonGraded(A, k, parts, at, sum);
  return sum;
}

} // namespace lcp
