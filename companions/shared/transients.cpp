// A response is the inverse transform along a shifted axis, s = c + j w,
//
//   v(t) = exp(c t) / pi Re integral of V(c + j w) exp(j w t) dw,
//
// as a sum over equal steps of w that a fast Fourier transform evaluates at equal steps of t, over
// twice the time that is wanted. The sum repeats itself after that time, damped by exp(-2 c t): c
// is chosen for 1e-8. What is cut off above pi / step is small, as a front along a cosine has a
// spectrum that falls with the cube of the frequency. Of a stepped model the same sum over one
// circle of z is complete.
#include "companions/shared/transients.h"

#include "base/constants.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace lcp::companions {

namespace {

constexpr double DAMPING = 18; // c times the period of the sum
constexpr double THIRD = 2 * PI / 3;

// In place, forward: X_m = sum x_k exp(-j 2 pi k m / N), N a power of 2.
void fourier(std::vector<Complex>& x) {
  const std::size_t N = x.size();
  for (std::size_t i = 1, j = 0; i < N; ++i) {
    std::size_t bit = N >> 1;
    for (; (j & bit) != 0; bit >>= 1) j ^= bit;
    j ^= bit;
    if (i < j) std::swap(x[i], x[j]);
  }
  for (std::size_t half = 1; half < N; half *= 2) {
    for (std::size_t m = 0; m < half; ++m) {
      const Complex turn =
          std::polar(1.0, -PI * static_cast<double>(m) / static_cast<double>(half));
      for (std::size_t k = m; k < N; k += 2 * half) {
        const Complex t = turn * x[k + half];
        x[k + half] = x[k] - t;
        x[k] += t;
      }
    }
  }
}

// ---- Sources

double front(double t, double rise) {
  if (t >= rise) return 1;
  return t <= 0 ? 0 : (1 - std::cos(PI * t / rise)) / 2;
}

// Angle of the source of a phase, of so many: groups of three, or all of them apart.
double angleOf(std::size_t phase, std::size_t count) {
  if (count % 3 == 0) return -THIRD * static_cast<double>(phase % 3);
  return -2 * PI * static_cast<double>(phase) / static_cast<double>(count);
}

bool alternating(TransientCase which) {
  return which != TransientCase::Step && which != TransientCase::Dc;
}

// Laplace transform of exp(j w t) front(t) (w = 0 for a step): with q = s - j w
//   [1/q - q / (q^2 + a^2)] (1 + exp(-q rise)) / 2,  a = pi / rise
Complex frontTransform(Complex q, double rise) {
  const double a = PI / rise;
  return (1.0 / q - q / (q * q + a * a)) * (1.0 + std::exp(-q * rise)) / 2.0;
}

struct Drive {
  TransientCase which;
  std::size_t phase, phases; // which of the phases
};

bool driven(const Drive& d) { return alternating(d.which) || d.phase == 0; }

double voltage(const Drive& d, const TransientSetup& setup, double t) {
  if (!driven(d)) return 0;
  const double wave = alternating(d.which)
                          ? std::cos(TWOPI * setup.frequency * t + angleOf(d.phase, d.phases))
                          : 1.0;
  return wave * front(t, setup.front);
}

Complex voltage(const Drive& d, const TransientSetup& setup, Complex s) {
  if (!driven(d)) return 0;
  if (!alternating(d.which)) return frontTransform(s, setup.front);
  const double w = TWOPI * setup.frequency;
  const Complex turn = std::polar(0.5, angleOf(d.phase, d.phases));
  return turn * frontTransform(s - Complex(0, w), setup.front) +
         std::conj(turn) * frontTransform(s + Complex(0, w), setup.front);
}

// ---- Circuits

// Whether the far end of a phase is open; else it is grounded.
bool openAtFarEnd(TransientCase which, bool first) {
  if (which == TransientCase::Short || which == TransientCase::Dc) return false;
  return which != TransientCase::Ground || !first;
}

// The unknown voltages are those of open ends at the far side: with Y11 = (Ya + Yb) / 2 and
// Y12 = (Ya - Yb) / 2 their currents are 0. Currents into the line at the sending end, at the far
// end those that leave it.
struct Circuit {
  TransientCase which;
  std::vector<std::size_t> open; // conductors
  std::vector<std::size_t> phases;
};

Circuit circuitOf(TransientCase which, const TransientSetup& setup) {
  Circuit C{which, {}, {}};
  for (std::size_t i = 0; i < setup.phase.size(); ++i) {
    if (!setup.phase[i]) continue;
    if (openAtFarEnd(which, C.phases.empty())) C.open.push_back(i);
    C.phases.push_back(i);
  }
  return C;
}

std::size_t quantities(const Circuit& C) {
  if (!C.open.empty()) return C.open.size();
  return C.which == TransientCase::Dc ? 1 : C.phases.size();
}

// The observed quantities for the sending end's voltages V, into to.
void observe(const Circuit& C, const NodalHalves& Y, const std::vector<Complex>& V,
             std::vector<Complex>& to) {
  const std::size_t m = C.open.size();
  const auto self = [&](std::size_t i, std::size_t j) {
    return 0.5 * (Y.alike(i, j) + Y.against(i, j));
  };
  const auto across = [&](std::size_t i, std::size_t j) {
    return 0.5 * (Y.alike(i, j) - Y.against(i, j));
  };
  to.clear();
  if (m == 0) {
    for (std::size_t q = 0; q < quantities(C); ++q) {
      Complex I;
      for (std::size_t p = 0; p < C.phases.size(); ++p)
        I -= across(C.phases[q], C.phases[p]) * V[p];
      to.push_back(I);
    }
    return;
  }
  Matrix A(m, m), b(m, 1);
  for (std::size_t i = 0; i < m; ++i) {
    for (std::size_t j = 0; j < m; ++j) A(i, j) = self(C.open[i], C.open[j]);
    for (std::size_t p = 0; p < C.phases.size(); ++p)
      b(i, 0) -= across(C.open[i], C.phases[p]) * V[p];
  }
  to = product(inverse(A), b).elements;
}

NodalHalves halvesOf(const TransientRequest& ask, Source of, Complex s) {
  if (of == Source::Line) {
    const PhaseFunctions F = lineFunctions(ask.line, s, ask.length);
    return nodalHalves(F.Yc, F.H);
  }
  return modelHalves(ask.model, s, ask.length, {of == Source::Stepped ? ask.setup.step : 0.0});
}

// Lines of the spectrum of a source's values at the steps, on a circle of z.
std::vector<Complex> steppedSpectrum(const Drive& d, const TransientSetup& setup, double dt,
                                     double c, std::size_t N) {
  std::vector<Complex> u(N);
  for (std::size_t k = 0; k < N; ++k) {
    const double t = dt * static_cast<double>(k);
    u[k] = voltage(d, setup, t) * std::exp(-c * t);
  }
  fourier(u);
  return u;
}

// The values at N steps of a spectrum with N / 2 + 1 lines, of which those above are the
// conjugates.
std::vector<double> valuesOf(const std::vector<Complex>& lines, double dt, double c, bool sum,
                             std::size_t kept) {
  const std::size_t N = 2 * (lines.size() - 1);
  std::vector<Complex> x(N);
  for (std::size_t m = 0; m <= N / 2; ++m) {
    // The inverse transform by the forward one of the conjugates.
    x[m] = std::conj(lines[m]);
    if (m > 0 && m < N / 2) x[N - m] = lines[m];
  }
  fourier(x);
  const double scale = sum ? 1.0 / static_cast<double>(N) : 1.0 / (static_cast<double>(N) * dt);
  std::vector<double> values(kept);
  for (std::size_t k = 0; k < kept; ++k)
    values[k] = x[k].real() * scale * std::exp(c * dt * static_cast<double>(k));
  return values;
}

} // namespace

std::vector<Response> transients(const TransientRequest& ask, Source of,
                                 const std::vector<TransientCase>& cases, std::size_t steps) {
  const bool stepped = of == Source::Stepped;
  const TransientSetup& setup = ask.setup;
  const double dt = stepped ? setup.step : setup.until / static_cast<double>(steps);
  const auto kept = static_cast<std::size_t>(std::floor(setup.until / dt + 1e-9)) + 1;
  std::size_t N = 2;
  while (N < 2 * kept) N *= 2;
  const double period = dt * static_cast<double>(N),
               c = DAMPING / period + (of == Source::Line ? 0 : setup.growth);
  std::vector<Circuit> circuits;
  std::vector<std::vector<std::vector<Complex>>> lines, drives; // by case, quantity, line
  for (const TransientCase which : cases) {
    circuits.push_back(circuitOf(which, setup));
    const Circuit& C = circuits.back();
    lines.emplace_back(quantities(C), std::vector<Complex>(N / 2 + 1));
    drives.emplace_back();
    for (std::size_t p = 0; p < C.phases.size() && stepped; ++p)
      drives.back().push_back(steppedSpectrum({which, p, C.phases.size()}, setup, dt, c, N));
  }
  std::vector<Complex> V, seen;
  for (std::size_t m = 0; m <= N / 2; ++m) {
    const Complex s(c, TWOPI * static_cast<double>(m) / period);
    const NodalHalves Y = halvesOf(ask, of, s);
    for (std::size_t k = 0; k < cases.size(); ++k) {
      const Circuit& C = circuits[k];
      V.clear();
      for (std::size_t p = 0; p < C.phases.size(); ++p)
        V.push_back(stepped ? drives[k][p][m] : voltage({cases[k], p, C.phases.size()}, setup, s));
      observe(C, Y, V, seen);
      for (std::size_t q = 0; q < seen.size(); ++q) lines[k][q][m] = seen[q];
    }
  }
  std::vector<Response> found;
  for (const auto& ofCase : lines) {
    Response& R = found.emplace_back();
    R.step = dt;
    for (const auto& spectrum : ofCase)
      R.values.push_back(valuesOf(spectrum, dt, c, stepped, kept));
  }
  return found;
}

} // namespace lcp::companions
