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

// ---- KEXPINT and KEXPONE

constexpr int MAXPANELS = 10000;

struct Decay {
  Complex z;
  Complex z2;
  bool overW; // exp(z - W) / W, otherwise exp(z - W)
};

// At two places, which the processor can do side by side.
constexpr int PLACES = 2;

void roots(const double* t, Complex z2, Complex* W) {
  double x[PLACES];
  bool plain = isPlain(std::fabs(z2.imag()));
  for (int n = 0; n < PLACES; ++n) {
    x[n] = t[n] * t[n] + z2.real();
    plain = plain && isPlain(std::fabs(x[n]));
  }
  for (int n = 0; n < PLACES; ++n)
    W[n] = plain ? plainRoot({x[n], z2.imag()}) : ROOT({x[n], z2.imag()});
}

void valuesAt(const double* t, const Decay& k, Complex* f) {
  Complex W[PLACES];
  roots(t, k.z2, W);
  for (int n = 0; n < PLACES; ++n) f[n] = EXPONENTIAL(k.z - W[n]);
  for (int n = 0; k.overW && n < PLACES; ++n) f[n] = quotient(f[n], W[n]);
}

Complex valueAt(double t, const Decay& k) {
  const double twice[PLACES] = {t, t};
  Complex f[PLACES];
  valuesAt(twice, k, f);
  return f[0];
}

// Where the panels have come to, and the integrand there, which the next panel takes over.
struct Reached {
  double t;
  Complex f;
};

// Six times the panel from the place reached to hi, in equal parts.
Complex simpsonTo(double hi, const Decay& k, int parts, Reached& at) {
  const double lo = at.t;
  Complex sum = 0.0;
  for (int n = 1; n <= parts; ++n) {
    const double v = n == parts ? hi : lo + (hi - lo) * n / parts;
    const double t[PLACES] = {0.5 * (at.t + v), v};
    Complex f[PLACES];
    valuesAt(t, k, f);
    sum += (v - at.t) * (at.f + 4.0 * f[0] + f[1]);
    at = {v, f[1]};
  }
  return sum;
}

double gradedEnd(int i, double A) { return std::sqrt((i * GRADE + A) * i); }

// The panels that grow, as long as they end below X1.
void simpsonGrowing(double A, double X1, const Decay& k, int parts, Reached& at, PanelSum& sum) {
  double hh = A;
  double hi = A;
  while (hi < X1) {
    if (sum.growing == MAXPANELS || !isNumber(sum.S)) {
      sum.growingDone = false;
      return;
    }
    sum.S += simpsonTo(hi, k, parts, at);
    ++sum.growing;
    hi += GROWTH * hh;
    hh *= GROWTH;
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

// g(t); W in the form that cannot overflow.
Complex amplitude(double t, const Angled& k) {
  Complex W;
  if (k.r <= std::fabs(t)) {
    const Complex q = k.z / t;
    W = t * ROOT(1.0 + q * q);
  } else {
    const Complex q = t / k.z;
    W = k.z * ROOT(1.0 + q * q);
  }
  return quotient(EXPONENTIAL(k.c * (k.z - W)), t + W);
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

// The panel of half-width h from the place reached on, in equal parts.
Complex filonFrom(Reached& at, double h, const Angled& k, int parts) {
  const double lo = at.t;
  const double part = h / parts;
  Complex sum = 0.0;
  for (int n = 1; n <= parts; ++n) {
    const double x = lo + (2 * n - 1) * part;
    const Complex fp = amplitude(lo + 2 * n * part, k);
    sum += filon(x, part, at.f, amplitude(x, k), fp, k.s);
    at = {lo + 2 * n * part, fp};
  }
  return sum;
}

// No panel spans more than a number of waves, whatever its place asks.
double heldToPhase(double h, double s) { return h * s > LARGESTPHASE ? LARGESTPHASE / s : h; }

void filonGrowing(double A, double X1, const Angled& k, int parts, Reached& at, PanelSum& sum) {
  double h = std::min(0.5 * A, LARGESTFIRST);
  while (X1 > at.t + 2.0 * h) {
    if (sum.growing == MAXGROWING || !isNumber(sum.S)) {
      sum.growingDone = false;
      return;
    }
    sum.S += 2.0 * filonFrom(at, h, k, parts);
    ++sum.growing;
    h = heldToPhase(GROWTH * h, k.s);
  }
}

void filonGraded(double A, const Angled& k, int parts, Reached& at, PanelSum& sum) {
  const double c = std::fabs(k.c);
  while (sum.graded < MAXGRADED && isNumber(sum.S)) {
    const double i = ++sum.graded;
    const double X = std::sqrt((A + GRADE * i / c) * i / c);
    const Complex P = filonFrom(at, heldToPhase(0.5 * (X - at.t), k.s), k, parts);
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
  sum.S += simpsonTo(X1, k, parts, at);
  sum.graded = 1;
  while (!sum.gradedDone && sum.graded < MAXPANELS && isNumber(sum.S)) {
    ++sum.graded;
    const Complex P = simpsonTo(gradedEnd(sum.graded, A), k, parts, at);
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
  while (!sum.gradedDone && sum.graded < MAXPANELS && isNumber(sum.S)) {
    const Complex P = simpsonTo(gradedEnd(sum.graded + 1, A), k, parts, at);
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
  Reached at{0.0, amplitude(0.0, k)};
  filonGrowing(A, std::sqrt((GRADE / c + A) / c), k, parts, at, sum);
  filonGraded(A, k, parts, at, sum);
  return sum;
}

} // namespace lcp
