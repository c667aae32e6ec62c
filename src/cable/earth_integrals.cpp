// The integrals of buried cables by panels. With A = 0.05 |z|:
//
//   growing stage   from 0 on, first panel A wide, each 2 % wider than the one before
//                   (KEXPINT and CBMUT, whose integrands bend at t = |z|)
//   graded stage    ends of the panels at x_i^2 = 0.000625 i^2 + A i: for small |z| 0.025 apart, as
//                   exp(-t) asks; for large |z| at equal steps of t^2, as exp(-t^2 / 2 z) asks.
//                   CBMUT, whose decay is slower by c = cos theta: x_i^2 = (0.000625 i / c + A) i /
//                   c
//
// The integral ends at a panel below 1e-10 of the sum. KEXPONE leaves that panel out, the other two
// take it in.
//
//   Simpson, KEXPINT and KEXPONE, a panel from u to v:  (v - u) / 6 [f(u) + 4 f((u + v) / 2) +
//   f(v)]
//
//   Filon, CBMUT, a panel from x - h to x + h: g is the parabola f0 + A1 y + B y^2 through its
//   three values, y = t - x, times cos(e + s y) without error, e = s x, v = s h, s = sin theta:
//     (2 / s) { cos v [2 B h / s cos e + h A1 sin e]
//             + sin v [cos e (f0 - 2 B / s^2 + h^2 B) - A1 / s sin e] }
//     and for small v, where that cancels,
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
constexpr double FIRSTPANEL = 0.05; // of |z|
constexpr double GRADE = 0.000625;  // 0.025^2
constexpr double SMALLPANEL = 1e-10;

// A sum that is no number stays none, so that the remaining panels change nothing.
bool isNumber(Complex S) { return !std::isnan(S.real()) && !std::isnan(S.imag()); }

// Most panels are far from it, and the squares tell; near it, and where the squares leave the range
// of numbers, the magnitudes do.
bool isSmall(Complex P, Complex S) {
  constexpr double FAR = 1.01 * SMALLPANEL * SMALLPANEL;
  if (std::norm(P) > FAR * std::norm(S)) return false;
  return std::abs(P) < SMALLPANEL * std::abs(S);
}

// ---- Panels

// Where the panels have come to, and the integrand there, which the next panel takes over.
struct Reached {
  double t;
  Complex f;
};

// A part of a panel: its half-width, its middle and end with the integrand there, and the end of
// the whole panel.
struct Part {
  double half;
  double middle;
  double end;
  double whole;
  Complex atMiddle;
  Complex atEnd;
};

// The panels of a stage in their order. The integrand is found for some parts ahead of the sum,
// side by side.
template <class Division, class Integrand> class Panels {
public:
  Panels(const Division& d, const Integrand& k, const Reached& from, int parts)
      : division(d), integrand(k), n(parts), cuts(parts), at(from.t) {}

  const Part& front() {
    if (next == AHEAD) lookAhead();
    return ahead[next];
  }
  const Part& take() {
    const Part& part = front();
    ++next;
    return part;
  }

private:
  static constexpr int AHEAD = LANES / 2;

  void lookAhead() {
    Lanes t;
    ComplexLanes f;
    for (int p = 0; p < AHEAD; ++p) {
      if (n == cuts) {
        division.turnTo(at, cuts);
        n = 0;
      }
      division.cut(++n, cuts, at, ahead[p]);
      at = ahead[p].end;
      t[2 * p] = ahead[p].middle;
      t[2 * p + 1] = ahead[p].end;
    }
    valuesAt(f, t, integrand);
    for (int p = 0; p < AHEAD; ++p) {
      ahead[p].atMiddle = f.lane(2 * p);
      ahead[p].atEnd = f.lane(2 * p + 1);
    }
    next = 0;
  }

  Division division;
  const Integrand& integrand;
  int n, cuts;
  double at;
  int next = AHEAD;
  Part ahead[AHEAD];
};

template <class Integrand> Complex valueAt(double t, const Integrand& k) {
  ComplexLanes f;
  valuesAt(f, t - Lanes{}, k);
  return f.lane(0);
}

// ---- KEXPINT and KEXPONE

constexpr int MAXPANELS = 10000;

struct Decay {
  Complex z;
  Complex z2;
  bool overW; // exp(z - W) / W, otherwise exp(z - W)
};

LCP_WIDTHS("avx2") void valuesAt(ComplexLanes& f, const Lanes& t, const Decay& k) {
  ComplexLanes W = {t * t + k.z2.real(), k.z2.imag() - Lanes{}};
  takeRoot(W);
  f = {k.z.real() - W.re, k.z.imag() - W.im};
  takeExponential(f);
  if (k.overW) f = f / W;
}

double gradedEnd(int i, double A) { return std::sqrt((i * GRADE + A) * i); }

// Ends of the panels of both stages.
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
  double lo = 0, hi = 0;

  void turnTo(double at, int) {
    lo = at;
    hi = ends.next();
  }
  void cut(int n, int parts, double at, Part& part) const {
    part.whole = hi;
    part.end = n == parts ? hi : lo + (hi - lo) * n / parts;
    part.middle = 0.5 * (at + part.end);
  }
};

template <class Ends> using SimpsonPanels = Panels<Simpson<Ends>, Decay>;

// Six times the next panel.
template <class Ends> Complex simpson(SimpsonPanels<Ends>& panels, int parts, Reached& at) {
  Complex sum = 0.0;
  for (int n = 1; n <= parts; ++n) {
    const Part& p = panels.take();
    sum += (p.end - at.t) * (at.f + 4.0 * p.atMiddle + p.atEnd);
    at = {p.end, p.atEnd};
  }
  return sum;
}

// The panels that grow, as long as they end below X1.
void simpsonGrowing(double A, double X1, const Decay& k, int parts, Reached& at, PanelSum& sum) {
  SimpsonPanels<GrowingEnds> panels({GrowingEnds(A)}, k, at, parts);
  while (panels.front().whole < X1) {
    if (sum.growing == MAXPANELS || !isNumber(sum.S)) {
      sum.growingDone = false;
      return;
    }
    sum.S += simpson(panels, parts, at);
    ++sum.growing;
  }
}

// ---- CBMUT

constexpr double LARGESTFIRST = 0.05;  // half-width of the first panel
constexpr double LARGESTPHASE = 100.0; // of a panel, s h
constexpr double SMALLPHASE = 1e-06;
constexpr int MAXGROWING = 1000000;
constexpr int MAXGRADED = 10000000;

struct Angled {
  Complex z;
  double r; // |z|
  double c; // cos theta
  double s; // sin theta

  Angled(Complex z0, double theta)
      : z(z0), r(std::abs(z0)), c(std::cos(theta)), s(std::sin(theta)) {}
};

// g(t), t >= 0; W in the form that cannot overflow.
LCP_WIDTHS("avx2") void valuesAt(ComplexLanes& f, const Lanes& t, const Angled& k) {
  const Lanes zero{};
  const LaneChoice beyond = k.r <= t;
  const ComplexLanes z = {k.z.real() - zero, k.z.imag() - zero};
  const ComplexLanes over = ComplexLanes{t, zero} / z;
  const ComplexLanes q = {beyond ? z.re / t : over.re, beyond ? z.im / t : over.im};
  ComplexLanes root = q * q;
  root.re = 1.0 + root.re;
  takeRoot(root);
  const ComplexLanes product = z * root;
  const ComplexLanes W = {beyond ? t * root.re : product.re, beyond ? t * root.im : product.im};
  f = {k.c * (z.re - W.re), k.c * (z.im - W.im)};
  takeExponential(f);
  f = f / ComplexLanes{t + W.re, W.im};
}

Complex filon(double x, double h, Complex fm, Complex f0, Complex fp, double s) {
  const Complex A1 = (fp - fm) / (2.0 * h);
  const Complex B = (fm - 2.0 * f0 + fp) / (2.0 * h * h);
  const double ce = std::cos(s * x);
  const double se = std::sin(s * x);
  const double v = s * h;
  if (v >= SMALLPHASE) {
    const Complex even = ce * (f0 - 2.0 * B / (s * s) + h * h * B) - A1 / s * se;
    return 2.0 / s * (std::cos(v) * (2.0 * B * h / s * ce + h * A1 * se) + std::sin(v) * even);
  }
  return 2.0 * h * (f0 * ce + h * h / 3.0 * (B * ce - 0.5 * s * s * f0 * ce - s * A1 * se));
}

// No panel spans more than a number of waves, whatever its place asks.
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
  double lo = 0, h = 0, half = 0;

  void turnTo(double at, int parts) {
    lo = at;
    h = halves.next(at);
    half = h / parts;
  }
  void cut(int n, int, double, Part& part) const {
    part.half = half;
    part.whole = lo + 2.0 * h;
    part.middle = lo + (2 * n - 1) * half;
    part.end = lo + 2 * n * half;
  }
};

template <class Halves> using FilonPanels = Panels<Filon<Halves>, Angled>;

// The next panel.
template <class Halves>
Complex filon(FilonPanels<Halves>& panels, int parts, double s, Reached& at) {
  Complex sum = 0.0;
  for (int n = 1; n <= parts; ++n) {
    const Part& p = panels.take();
    sum += filon(p.middle, p.half, at.f, p.atMiddle, p.atEnd, s);
    at = {p.end, p.atEnd};
  }
  return sum;
}

void filonGrowing(double A, double X1, const Angled& k, int parts, Reached& at, PanelSum& sum) {
  FilonPanels<GrowingHalves> panels({GrowingHalves(A, k.s)}, k, at, parts);
  while (X1 > panels.front().whole) {
    if (sum.growing == MAXGROWING || !isNumber(sum.S)) {
      sum.growingDone = false;
      return;
    }
    sum.S += 2.0 * filon(panels, parts, k.s, at);
    ++sum.growing;
  }
}

void filonGraded(double A, const Angled& k, int parts, Reached& at, PanelSum& sum) {
  FilonPanels<GradedHalves> panels({{A, std::fabs(k.c), k.s}}, k, at, parts);
  while (sum.graded < MAXGRADED && isNumber(sum.S)) {
    ++sum.graded;
    const Complex P = filon(panels, parts, k.s, at);
    sum.S += 2.0 * P;
    sum.gradedDone = isSmall(P, sum.S);
    if (sum.gradedDone) return;
  }
}

} // namespace

// The marks of quotation and the strokes belong to the texts.
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
  SimpsonPanels<GradedEnds> panels({{A}}, k, at, parts);
  sum.S += simpson(panels, parts, at);
  sum.graded = 1;
  while (!sum.gradedDone && sum.graded < MAXPANELS && isNumber(sum.S)) {
    ++sum.graded;
    const Complex P = simpson(panels, parts, at);
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
  SimpsonPanels<GradedEnds> panels({{A}}, k, at, parts);
  while (!sum.gradedDone && sum.graded < MAXPANELS && isNumber(sum.S)) {
    const Complex P = simpson(panels, parts, at);
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
