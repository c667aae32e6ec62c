// K0 of a complex argument, in three ranges of |z|.
//
//   |z| <= 9      K0 = C + sum_k (z^2 / 4)^k / (k!)^2 (C + 1 + 1/2 + ... + 1/k)
//                 C = -log(z / 2) - Euler's constant
//   |z| <= 150    K0 = (I0 K0) / I0, with the large-argument series of the product
//                 I0 K0 = 1 / (2 z) (1 + sum_k b_k z^-2k), b_k = (1 3 .. 2k-1)^3 / (2 4 .. 2k) /
//                 4^k and I0 = sum_k (z^2 / 4)^k / (k!)^2 for |z| <= 18, above it I0 = exp(z) /
//                 sqrt(2 pi z) (1 + sum_k a_k z^-k), a_k = (1 3 .. 2k-1)^2 / k! / 8^k
//   above         K0 = sqrt(pi / (2 z)) exp(-z) (1 - 1 / (8 z))
//
// The two series in 1 / z assume positive real z: they omit a part of relative size exp(-2 z).
#include "cable/earth_functions.h"

#include "base/constants.h"

#include <cmath>
#include <span>

namespace lcp {

namespace {

constexpr double SERIESLIMIT = 0.1;
constexpr double HALFPI = 1.5707963267948966;
constexpr double EULER = 0.5772156649015329;
constexpr double INFINITE = 1e300; // value of K0 at 0
constexpr int MAXTERMS = 50;
constexpr double SMALLTERM = 1e-15;

// Coefficients of 1 / z^k in I0 and of 1 / z^2k in I0 K0.
constexpr double ICOEFFICIENTS[] = {0.125,
                                    0.0703125,
                                    0.0732421875,
                                    0.11215209960938,
                                    0.22710800170898,
                                    0.57250142097473,
                                    1.7277275025845,
                                    6.0740420012735,
                                    24.380529699556,
                                    110.01714026925,
                                    551.33589612202,
                                    3038.0905109224};
constexpr double PRODUCTCOEFFICIENTS[] = {
    0.125,           0.2109375,       1.0986328125,    11.775970458984, 214.61706161499,
    5951.1522710323, 233476.45606175, 12312234.987631, 840139034.6421,  72031420482.627};

// 1 + sum of c_k q^k.
Complex powerSum(std::span<const double> c, Complex q) {
  Complex sum = 1.0;
  Complex power = 1.0;
  for (const double ck : c) {
    power *= q;
    sum += ck * power;
  }
  return sum;
}

Complex kzeroSeries(Complex z) {
  const Complex CT = -std::log(0.5 * z) - EULER;
  const Complex z2 = z * z;
  Complex CR = 1.0;
  Complex CS = 0.0;
  double W0 = 0.0;
  for (int k = 1; k <= MAXTERMS; ++k) {
    W0 += 1.0 / k;
    CR *= 0.25 * z2 / static_cast<double>(k * k);
    const Complex before = CS;
    CS += CR * (W0 + CT);
    if (std::abs((CS - before) / CS) < SMALLTERM) break;
  }
  return CT + CS;
}

Complex izeroSeries(Complex z) {
  const Complex z2 = z * z;
  Complex CR = 1.0;
  Complex I = 1.0;
  for (int k = 1; k <= MAXTERMS; ++k) {
    CR *= 0.25 * z2 / static_cast<double>(k * k);
    I += CR;
    if (std::abs(CR / I) < SMALLTERM) break;
  }
  return I;
}

Complex izeroLarge(Complex z, double r) {
  std::size_t K = 12;
  if (r >= 50.0) {
    K = 7;
  } else if (r >= 35.0) {
    K = 9;
  }
  return std::exp(z) / std::sqrt(TWOPI * z) * powerSum(std::span(ICOEFFICIENTS).first(K), 1.0 / z);
}

} // namespace

Complex LOG1PS(Complex z) {
  if (std::abs(z) > SERIESLIMIT) return std::log(1.0 + z);
  return z * (1.0 - z * (1.0 / 2 - z * (1.0 / 3 - z * (1.0 / 4 - z * (1.0 / 5 - z / 6.0)))));
}

Complex KZERO(Complex z) {
  const double r = std::abs(z);
  if (r == 0.0) return INFINITE;
  if (r > 150.0) return std::sqrt(HALFPI / z) * std::exp(-z) * (1.0 - 0.125 / z);
  if (r <= 9.0) return kzeroSeries(z);
  const Complex I = r <= 18.0 ? izeroSeries(z) : izeroLarge(z, r);
  return 0.5 / z * powerSum(PRODUCTCOEFFICIENTS, 1.0 / (z * z)) / I;
}

} // namespace lcp
