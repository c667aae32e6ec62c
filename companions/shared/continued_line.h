// The line at complex frequencies: Y and Z continued from the imaginary axis into the right half
// plane, where inverse transforms and zeros are looked for.
#pragma once

#include "companions/shared/direct_line.h"

#include <vector>

namespace lcp::companions {

// Barycentric interpolants of real functions, with supports at +-j w and conjugate weights:
//
//   F(s) = sum a_i F_i / (s - j w_i) + conj, over the same sum without the F_i
//
// Y and Z share supports and weights. Both are analytic in the right half plane and real on the
// positive real axis, so that a deviation there is no larger than the largest on the imaginary
// axis.
struct ContinuedLine {
  std::size_t n = 0;
  std::vector<double> w; // supports, rad/s
  std::vector<Complex> weights;
  std::vector<LinePoint> values; // at the supports
  double error = 0;              // largest relative deviation at frequencies between the samples

  // Y and Z at s, Re s >= 0.
  LinePoint at(Complex s) const;
};

// From direct computations at angular frequencies from low to high, rad/s; relative to the largest
// element of each matrix at its frequency (AAA algorithm, greedy supports). Constants that are no
// analytic functions, as integrals that end their sum early, show in the error.
ContinuedLine continueLine(double low, double high);

} // namespace lcp::companions
