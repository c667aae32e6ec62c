#include "cable/coax_layers.h"

#include "base/constants.h"
#include "cable/cable_store.h"
#include "store/rundata.h"
#include "support/bessel_reference.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;

namespace {

// Cable 7, its layers with data of their own.
Cable& setCable(int layers, bool solid = false) {
  RUNDATA.resetInput();
  Cable& C = RUNDATA.cable.CB[7];
  C.CBNLAY = layers;
  C.CBSOLID = solid;
  C.CBRAD = {solid ? 0.0 : 0.006, 0.02, 0.035, 0.037, 0.042, 0.046, 0.05, 0.053, 0.058};
  C.CBRHO = {1.7e-8, 2.8e-8, 1.4e-7, 2.2e-7};
  C.CBMU = {1.0, 1.1, 1.2, 1.3, 3.0, 1.4, 2.0, 1.5};
  C.CBEPS = {2.3, 3.0, 4.0, 5.0};
  C.CBTAND = {0.4, 0.5, 0.6, 0.7};
  return C;
}

// I_n by its series; |z| up to 60 on the ray of 45 degrees.
Complex I(int n, Complex z) {
  const std::complex<long double> q(0.5 * z);
  std::complex<long double> term = n == 0 ? 1.0L : q, sum = term;
  for (int k = 1; k < 250; ++k) sum += term *= q * q / static_cast<long double>(k * (k + n));
  return Complex(sum);
}

Complex K(int n, Complex z) { return std::exp(-z) * test::scaledBesselK(n, z); }

// Impedances over j w L0 of tube k at its surfaces and between them; without a hole only outside.
struct Exact {
  Complex in, out, transfer;

  Exact(double w, const Cable& C, std::size_t k) {
    const double a = C.CBRAD[2 * k], b = C.CBRAD[2 * k + 1], rho = C.CBRHO[k];
    const Complex m = std::sqrt(Complex(0, w * MU0 * C.CBMU[2 * k] / rho)), ma = m * a, mb = m * b;
    const Complex z = rho * m / (TWOPI * b) / Complex(0, w * L0);
    out = z * I(0, mb) / I(1, mb);
    if (a == 0.0) return;
    const Complex det = I(1, mb) * K(1, ma) - I(1, ma) * K(1, mb);
    in = z * b / a * (I(0, ma) * K(1, mb) + K(0, ma) * I(1, mb)) / det;
    out = z * (I(0, mb) * K(1, ma) + K(0, mb) * I(1, ma)) / det;
    transfer = z / (ma * det);
  }
};

// The series block from loops, each of a conductor with the next one, the last with the surface of
// the cable. The current of a conductor runs in its loop and all further out.
Complex loopSum(double w, const Cable& C, std::size_t r, std::size_t c) {
  const auto n = static_cast<std::size_t>(C.conductors());
  Complex sum = 0;
  for (std::size_t k = r; k < n; ++k) {
    for (std::size_t l = c; l < n; ++l) {
      if (k == l + 1 || l == k + 1) sum -= Exact(w, C, std::max(k, l)).transfer;
      if (k != l) continue;
      sum += Exact(w, C, k).out + (k < n - 1 ? Exact(w, C, k + 1).in : 0.0);
      if (C.CBNLAY % 2 == 0 || k < n - 1) {
        sum += C.CBMU[2 * k + 1] * std::log(C.CBRAD[2 * k + 2] / C.CBRAD[2 * k + 1]);
      }
    }
  }
  return sum;
}

} // namespace

// The hyperbolic forms are worst where the wall is as thick as the depth of penetration: a solid
// core of 20 mm at 50 Hz, and a hollow one with a hole of 6 mm. The walls of the other tubes are a
// tenth of their radii and less.
TEST(CoaxLayers, SeriesBlockIsThatOfBesselFunctions) {
  static CableMatrix A;
  for (const bool solid : {false, true}) {
    for (const int layers : {1, 3, 6, 8}) {
      const Cable& C = setCable(layers, solid);
      for (const double w : {6e-3, 6.0, 314.0, 6e3, 6e4}) {
        A = {};
        CBLAYZ(w, 7, 30, A);
        for (int e = 0; e < 25; ++e) {
          const int r = e / 5, c = e % 5;
          const Complex exact =
              loopSum(w, C, static_cast<std::size_t>(r), static_cast<std::size_t>(c));
          const double limit = e > 0 ? 7e-4 : solid ? 0.0202 : 0.052;
          EXPECT_LE(std::abs(A(31 + r, 31 + c) - exact), limit * std::abs(exact)) << layers << w;
        }
      }
    }
  }
  Cable& C = setCable(1); // the DC resistance of strands
  C.CBSTRND = true;
  C.CBSTRAD = 0.002;
  C.CBNTOT = 61;
  CBLAYZ(1e-4, 7, 0, A);
  EXPECT_NEAR(-A(1, 1).imag() * 1e-4 * L0, 1.7e-8 / (PI * 0.002 * 0.002 * 61), 1e-12);
}

// Charge on conductor c alone: each insulator from there on carries it whole, those further in
// none.
TEST(CoaxLayers, PotentialBlockInvertsTheInsulators) {
  static CableMatrix P;
  for (int layers = 1; layers <= 8; ++layers) {
    const Cable& C = setCable(layers);
    P = {};
    CBLAYP(7, 20, P, 3.0);
    for (int e = 0; e < 16; ++e) {
      const auto k = static_cast<std::size_t>(e / 4), c = static_cast<std::size_t>(e % 4);
      const Complex V = P(21 + e / 4, 21 + e % 4) - P(22 + e / 4, 21 + e % 4);
      const Complex eps = C.CBEPS[k] * Complex(1, -C.CBTAND[k] / 3.0);
      const Complex Q = eps * V / std::log(C.CBRAD[2 * k + 2] / C.CBRAD[2 * k + 1]);
      const bool carries = k >= c && static_cast<int>(k) < layers / 2;
      EXPECT_LT(std::abs(Q - (carries ? 1.0 : 0.0)), 1e-13) << layers;
    }
  }
}
