// Ball arithmetic gives K_0 and K_1, scaled by exp(x). The higher orders follow from the upward
// recurrence
//
//   K_(n+1) = K_(n-1) + (2 n / x) K_n
//
// which is stable, since K_n is the growing solution. All numbers carry a binary exponent: on the
// 45 degree ray K_50 overflows a double below |x| = 3e-5, and all K_n underflow from |x| = 1000.
#include "kernels/bessel_k.h"

#include "base/solve_error.h"
#include "kernels/bessel_module.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace lcp {

namespace {

constexpr double LOG2HIGH = 0x1.62e42feep-1; // log 2 in two parts, the high one with trailing zeros
constexpr double LOG2LOW = 0x1.a39ef35793c76p-33;
constexpr double MOSTEXPONENT = 1e6;

constexpr double SMALLESTPART = 1e-307;

// exp(x) K_n(x); NaN if no working precision is sufficient.
Complex startValue(int n, Complex x) {
  const BesselBall ball = besselRoutine()(n, x.real(), x.imag(), stopWithoutMemory);
  if (!ball.good) return std::numeric_limits<double>::quiet_NaN();
  return {ball.real, ball.imag};
}

double largerPart(Complex z) { return std::max(std::fabs(z.real()), std::fabs(z.imag())); }

Complex timesPower(Complex z, int e) { return {std::ldexp(z.real(), e), std::ldexp(z.imag(), e)}; }

Scaled normalised(Complex m, int e) {
  int shift = 0;
  std::frexp(largerPart(m), &shift);
  return {timesPower(m, -shift), e + shift};
}

Scaled product(const Scaled& a, const Scaled& b) { return normalised(a.m * b.m, a.e + b.e); }

Scaled sum(const Scaled& a, const Scaled& b) {
  const int e = std::max(a.e, b.e);
  return normalised(timesPower(a.m, a.e - e) + timesPower(b.m, b.e - e), e);
}

// exp(-x). The power of 2 is split off, which leaves an exponent between 0 and log 2.
Scaled decay(Complex x) {
  const double power = std::clamp(std::floor(-x.real() / LOG2HIGH), -MOSTEXPONENT, MOSTEXPONENT);
  const double rest = std::clamp((-x.real() - power * LOG2HIGH) - power * LOG2LOW, -1.0, 1.0);
  return normalised(std::exp(Complex(rest, -x.imag())), static_cast<int>(power));
}

double lifted(double part, double smallest) { return std::fabs(part) < smallest ? smallest : part; }

Complex lifted(const Scaled& k, int shift, double smallest) {
  const Complex value = timesPower(k.m, k.e + shift);
  return {lifted(value.real(), smallest), lifted(value.imag(), smallest)};
}

} // namespace

void ZBESK(Complex x, KSeries& KSER) {
  if (!std::isnormal(std::abs(x))) {
    KSER.fill({std::numeric_limits<double>::quiet_NaN(), 0});
    return;
  }
  const Scaled factor = decay(x);
  for (const int n : {0, 1}) {
    KSER[static_cast<std::size_t>(n)] = product(normalised(startValue(n, x), 0), factor);
  }
  const Scaled slope = normalised(2.0 / x, 0);
  for (std::size_t n = 1; n < LASTORDER; ++n) {
    const Scaled step = {static_cast<double>(n) * slope.m, slope.e};
    KSER[n + 1] = sum(KSER[n - 1], product(step, KSER[n]));
  }
}

Complex KRATIO(const KSeries& KSER, int n) {
  const Scaled& below = KSER[static_cast<std::size_t>(n - 1)];
  const Scaled& above = KSER[static_cast<std::size_t>(n)];
  // Both neighbours are multiplied by one power of 2 that keeps their parts and the threshold away
  // from the ends of the range. For a large K_n the threshold becomes 0 and has no effect.
  const int shift = std::min(512, 1000 - above.e);
  const double smallest = std::ldexp(SMALLESTPART, shift);
  return lifted(below, shift, smallest) / lifted(above, shift, smallest);
}

} // namespace lcp
