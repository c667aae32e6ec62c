// Grids and sampled functions for tests of the fits.
#pragma once

#include "fit/partial_fractions.h"

#include <cmath>
#include <vector>

namespace lcp::test {

// NS frequencies, evenly spaced in the logarithm, and a weight of 1 at each.
struct SampleGrid {
  int NS;
  FreqCurve w;
  FreqCurve weight;

  SampleGrid(double low, double high, int steps) : NS(steps) {
    for (int k = 1; k <= NS; ++k) {
      w[k] = low * std::pow(high / low, (k - 1.0) / (NS - 1.0));
      weight[k] = 1;
    }
  }
};

// Samples of a function of s = j w.
template <class Function> ComplexCurve sampled(const SampleGrid& grid, Function f) {
  ComplexCurve F;
  for (int k = 1; k <= grid.NS; ++k) F[k] = f(Complex(0, grid.w[k]));
  return F;
}

// A rational function, and its delayed form, as a line's propagation looks: poles over the range
// in which it falls, no constant term.
struct Rational {
  std::vector<Complex> poles, residues;
  double delay = 0;

  Complex operator()(Complex s) const {
    Complex sum = 0;
    for (std::size_t m = 0; m < poles.size(); ++m) sum += residues[m] / (s - poles[m]);
    return sum * std::exp(-s * delay);
  }
};

} // namespace lcp::test
