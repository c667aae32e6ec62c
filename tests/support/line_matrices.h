// Matrices for tests and benchmarks of the modal kernels: random ones, and Yn Zn of adjacent
// towers.
#pragma once

#include "base/constants.h"
#include "dense_functions.h"
#include "kernels/inversion.h"
#include "kernels/matrix_kernels.h"
#include "store/solvedata.h"

#include <cmath>
#include <random>
#include <vector>

namespace lcp::test {

// Fills a store with NaN, which shows where a kernel has written.
inline void fillNaN(LineMatrix& A) {
  for (Complex& z : A.elements) z = {std::nan(""), std::nan("")};
}

// Whether the n by n corner, and nothing else, holds numbers.
inline bool onlyCornerSet(const LineMatrix& A, int n) {
  bool only = true;
  for (int k = 0; k < LDMAT * LDMAT; ++k) {
    const int i = 1 + k % LDMAT, j = 1 + k / LDMAT;
    only = only && (std::isfinite(A(i, j).real() + A(i, j).imag()) == (i <= n && j <= n));
  }
  return only;
}

// The largest element of A B - I.
inline double distanceFromInverse(CConstView A, CConstView B, int n) {
  const Dense unit = identity(static_cast<std::size_t>(n));
  return distance(product(corner(A, n), corner(B, n)), unit);
}

// Elements with normally distributed parts.
inline void fillRandom(CView A, int n, int m, std::mt19937& random) {
  std::normal_distribution<double> part;
  for (int j = 1; j <= m; ++j) {
    for (int i = 1; i <= n; ++i) {
      const double re = part(random);
      A(i, j) = {re, part(random)};
    }
  }
}

struct Wire {
  double x; // m
  double h; // height, m
};

// n wires of towers 40 m apart: flat three-phase levels at increasing heights, all different.
inline std::vector<Wire> towers(int n) {
  std::vector<Wire> wires;
  for (int i = 0; i < n; ++i) {
    const int tower = i / 12, level = i % 12 / 3, phase = i % 3;
    wires.push_back({40.0 * tower + 7.3 * phase + 0.11 * i, 14.0 + 6.1 * level + 0.37 * phase});
  }
  return wires;
}

// A = Yn Zn at a frequency over ground of 100 ohm m: Maxwell's potential coefficients, images at
// the complex depth, and a resistance of 0.05 ohm/km in each wire of radius 1.5 cm.
inline void lineProduct(CView A, double f, const std::vector<Wire>& wires) {
  static LineMatrix Pn, Zn;
  const int n = static_cast<int>(wires.size());
  const double w = TWOPI * f, radius = 0.015;
  const Complex depth = std::sqrt(100.0 / Complex(0.0, w * MU0));
  for (int i = 1; i <= n; ++i) {
    for (int j = 1; j <= n; ++j) {
      const Wire a = wires[static_cast<std::size_t>(i - 1)];
      const Wire b = wires[static_cast<std::size_t>(j - 1)];
      const double d = i == j ? radius : std::hypot(a.x - b.x, a.h - b.h);
      const Complex up = a.h + b.h + 2.0 * depth;
      Pn(i, j) = std::log(std::hypot(a.x - b.x, a.h + b.h) / d);
      Zn(i, j) = std::log(std::sqrt(up * up + (a.x - b.x) * (a.x - b.x)) / d);
    }
    Zn(i, i) += 0.05e-3 / Complex(0.0, w * L0);
  }
  INVCJD(Pn, Pn, n);
  CMATMUL(A, Pn, Zn, n);
}

} // namespace lcp::test
