// Power series, q = w^2 / 4, psi the digamma function of an integer:
//
//   g = w/3 - w^3 / 45 + ...                               from the Struve function
//     + sum_k (-q)^k / (k! (k+1)!) [(psi(k+1) + psi(k+2)) / 4 - log(w/2) / 2]
//
// Each term of the first sum is the previous one times -w^2 / ((2k+1) (2k+3)). For |w| below 5
// cancellation costs two digits at most.
//
// Asymptotic series, from the expansion of the root in powers of v:
//
//   g = 1/w - 1/w^2 + 1/w^3 - 3/w^5 + ...,  each term from the third on the previous one times
//                                    -(2k-1) (2k-3) / w^2
//
// It omits a part exp(+-j w), which appears beyond |arg w| = pi / 2 and decays with |Im w|.
#include "overhead/struve_form.h"

#include <cmath>

namespace lcp {

namespace {

constexpr double EULER = 0.5772156649015329;
constexpr double SMALL = 5.0;
constexpr double LARGE = 38.0; // exp(-38) is below rounding
constexpr int TERMS = 30;

Complex powerSeries(Complex w) {
  const Complex w2 = w * w, q = 0.25 * w2, logarithm = -0.5 * std::log(0.5 * w);
  Complex odd = w / 3.0, even = 1.0, sum = 0.0;
  double psi = -EULER; // psi(k + 1)
  for (int k = 0; k < TERMS; ++k) {
    const double next = psi + 1.0 / (k + 1.0);
    const Complex term = odd + even * (logarithm + 0.25 * (psi + next));
    sum += term;
    if (std::norm(odd) + std::norm(even) < 1e-36 * std::norm(sum)) break;
    odd *= -w2 / ((2.0 * k + 3.0) * (2.0 * k + 5.0));
    even *= -q / ((k + 1.0) * (k + 2.0));
    psi = next;
  }
  return sum;
}

Complex largeArgument(Complex w) {
  const Complex inverse = 1.0 / w, q = -(inverse * inverse);
  Complex term = inverse, sum = inverse + q;
  for (int k = 1; k < TERMS; ++k) {
    term *= (2.0 * k - 1.0) * (2.0 * k - 3.0) * q;
    sum += term;
    if (std::norm(term) < 1e-36 * std::norm(sum)) break;
  }
  return sum;
}

} // namespace

StruveForm STRUVE(Complex w) {
  const double size = std::abs(w);
  if (size < SMALL) return {powerSeries(w), true};
  if (size < LARGE || (w.real() < 0.0 && std::fabs(w.imag()) < LARGE)) return {0.0, false};
  return {largeArgument(w), true};
}

} // namespace lcp
