#include "cable/coax_layers.h"

#include "cable/cable_store.h"
#include "store/rundata.h"
#include "support/bessel_reference.h"

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

// The series block from loops, each of a conductor with the next one, the last with the surface of
// the cable. The current of a conductor runs in its loop and all further out.
Complex loopSum(double w, const Cable& C, std::size_t r, std::size_t c) {
  const auto n = static_cast<std::size_t>(C.conductors());
  const auto tube = [&](std::size_t k) {
    return test::tubeSurfaces(w, C.CBRAD[2 * k], C.CBRAD[2 * k + 1], C.CBRHO[k], C.CBMU[2 * k]);
  };
  Complex sum = 0;
  for (std::size_t k = r; k < n; ++k) {
    if (k > c) sum -= tube(k).transfer;
    if (k + 1 >= c && k + 1 < n) sum -= tube(k + 1).transfer;
    if (k < c) continue;
    sum += tube(k).out + (k + 1 < n ? tube(k + 1).in : 0.0);
    const double radii = C.CBRAD[2 * k + 2] / C.CBRAD[2 * k + 1];
    if (C.CBNLAY % 2 == 0 || k + 1 < n)
      sum += Complex(0, w * L0 * C.CBMU[2 * k + 1]) * std::log(radii);
  }
  return sum / Complex(0, w * L0);
}

} // namespace

// The hyperbolic forms are worst where the wall is as thick as the depth of penetration: a solid
// core of 20 mm at 50 Hz, and a hollow one with a hole of 6 mm. The walls of the other tubes are a
// tenth of their radii and less.
TEST(CoaxLayers, SeriesBlockIsThatOfBesselFunctions) {
  static CableMatrix A;
  for (int n = 0; n < 40; ++n) {
    const int layers[] = {1, 3, 6, 8}, many = layers[n / 2 % 4];
    const bool solid = n % 2 == 0;
    const Cable& C = setCable(many, solid);
    const double ws[] = {6e-3, 6.0, 314.0, 6e3, 6e4}, w = ws[n / 8];
    A = {};
    CBLAYZ(w, 7, 30, A);
    for (int e = 0; e < 25; ++e) {
      const int r = e / 5, c = e % 5;
      const Complex exact = loopSum(w, C, std::size_t(r), std::size_t(c));
      const double limit = e > 0 ? 7e-4 : solid ? 0.0202 : 0.052;
      EXPECT_LE(std::abs(A(31 + r, 31 + c) - exact), limit * std::abs(exact)) << many << ' ' << w;
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
