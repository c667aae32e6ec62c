// Modified Bessel functions of the second kind and integer order, beyond the range of a double.
#pragma once

#include "base/matrix.h"

#include <array>

namespace lcp {

// The number m 2^e. The larger part of m is in [0.5, 1) in magnitude.
struct Scaled {
  Complex m;
  int e;
};

constexpr int LASTORDER = 50;
using KSeries = std::array<Scaled, LASTORDER + 1>; // K_n at [n]

// K_0 to K_50 of x, Re x >= 0, each to 1e-14 of its magnitude. An x that is zero, denormal or
// no finite number gives NaN. Below 2^-1000000 exponents stay where they are.
void ZBESK(Complex x, KSeries& KSER);

// K_(n-1) / K_n for n = 1 to 50, as it comes out of numbers whose real and imaginary parts are no
// smaller than 1e-307: a part below that counts as +1e-307. So neighbours that have both sunk below
// it have the ratio 1. Nothing overflows: a K_n too large for a double gives its true ratio.
Complex KRATIO(const KSeries& KSER, int n);

} // namespace lcp
