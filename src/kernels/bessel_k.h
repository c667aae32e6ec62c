// Modified Bessel functions of the second kind and integer order, with extended exponent range.
#pragma once

#include "base/matrix.h"

#include <array>

namespace lcp {

// The number m 2^e; the larger part of m has a magnitude in [0.5, 1).
struct Scaled {
  Complex m;
  int e;
};

constexpr int LASTORDER = 50;
using KSeries = std::array<Scaled, LASTORDER + 1>; // element n is K_n

// K_0 to K_50 of x, Re x >= 0, each to 1e-14 of its magnitude. An x that is zero, denormal or not
// finite gives NaN. Exponents are limited to -1000000.
void ZBESK(Complex x, KSeries& KSER);

// K_(n-1) / K_n for n = 1 to 50. Real and imaginary parts smaller than 1e-307 in magnitude count as
// +1e-307, so two neighbours that are both below it have the ratio 1. Nothing overflows: a K_n too
// large for a double still gives the true ratio.
Complex KRATIO(const KSeries& KSER, int n);

} // namespace lcp
