// Grids and sampled functions for tests of the fits.
#pragma once

#include "fit/partial_fractions.h"

#include <cmath>
#include <vector>

namespace lcp::test {

// NS frequencies, evenly spaced in the logarithm, and a weight of 1 at each.
struct SampleGrid {
  int NS = 0;
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

// A rational function with a delay: poles and residues, conjugates side by side.
struct Rational {
  std::vector<Complex> poles, residues;
  double D = 0, E = 0, delay = 0;

  int N() const { return static_cast<int>(poles.size()); }
  Complex operator()(Complex s) const {
    Complex sum = D + s * E;
    for (std::size_t m = 0; m < poles.size(); ++m) sum += residues[m] / (s - poles[m]);
    return sum * std::exp(-s * delay);
  }
};

} // namespace lcp::test
