// The blocks of the layers of a cable and of a pipe.
#include "cable/pipe_blocks.h"

#include "base/constants.h"
#include "cable/cable_store.h"
#include "cable/coax_layers.h"
#include "cable/numbering.h"
#include "store/rundata.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;

namespace {

CableNumbering& N = CABLE.numbering;
const Complex U[] = {0.0, 0.9, std::polar(0.89, 0.4)}, UU = U[1] * U[2];

// A cable of one conductor, and a pipe with cables of two. Their positions U and radii 0.2 are in
// units of the inner radius of the pipe.
void setPipe(double mu) {
  CableTable& T = RUNDATA.cable = {};
  T.NPIPE = 1;
  T.pipe = {0, 0, 0, 0, 1, 0, 0.1, 0.104, 0.11, 2e-7, mu, 2, 1.3, 3, 4, 1.1, 5, 0, false};
  T.CB[++T.NCABLE].CBNLAY = 1;
  for (const Complex u : U) {
    Cable& C = T.CB[++T.NCABLE];
    C.CBPIPE = 1;
    C.CBNLAY = 4;
    C.CBRAD[4] = 0.02;
    C.CBPR = std::abs(u) * 0.1;
    C.CBPTH = std::arg(u);
  }
  numberConductors(N);
}

const CableMatrix& blockOf(void (*block)(double, const CableNumbering&, CView), double w) {
  CABLE.ZT = {};
  block(w, N, CABLE.ZT);
  return CABLE.ZT;
}

// Two conductors at U[1] and U[2] in a perfect wall; `lacking` terms at the end of the series are
// left out.
double imageOfPair(int lacking) {
  double image = std::log(std::abs(1.0 - UU) / std::abs(U[1] - U[2]));
  for (int n = lacking; n < 400; ++n) image += std::real(std::pow(UU, n)) / n;
  return image;
}

// Cable 7, with different data in each layer.
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

} // namespace

// With g = -r f'/f for the field f = K_n(m r) in the wall, and B_r and H_th continuous at r = a, a
// harmonic c^n / n of the flux is reflected by the factor (n mu - g) / (n mu + g), 1 more than for
// a perfect wall.
TEST(PipeBlocks, ImpedanceMeetsTheFieldOfTheWall) {
  const struct {
    double mu, size;    // |m a|
    Complex self, pair; // 49 terms by ball arithmetic, without the surface of the wall
  } cases[] = {
      {1,
       0.03,
       {-0.49850762245553348, -0.0013676188390635891},
       {-1.0182655799342519, -0.0012293350366167982}},
      {300,
       0.03,
       {1.1514681597631531, -1.8126169524482006e-05},
       {-0.12627412863960469, -1.6293527116384793e-05}},
      {1,
       3,
       {-1.1065875974131116, -0.33727256190752231},
       {-1.525762010368505, -0.23145716505925443}},
      {300,
       30,
       {1.0051931465163924, -0.13694618743690676},
       {-0.24206051755305272, -0.10502424719149336}},
  };
  for (const auto& c : cases) {
    setPipe(c.mu);
    const CableMatrix& Z = blockOf(PIPEZ, c.size * c.size * 2e-7 / (MU0 * c.mu * 0.01));
    const double limit = 1e-13 + 1e-15 * std::abs(Z(2, 2));
    EXPECT_LT(std::abs(Z(4, 4) - Z(2, 2) - c.self), limit) << c.mu << ' ' << c.size;
    EXPECT_LT(std::abs(Z(7, 4) - Z(2, 2) - c.pair), limit) << c.mu << ' ' << c.size;
  }
}

// No field enters a wall without resistance: the rest of its 49 terms is the image.
TEST(PipeBlocks, PotentialAndPerfectWallOfImages) {
  setPipe(1.0);
  RUNDATA.cable.pipe.PIPERHO = 1e-40;
  const CableMatrix& M = blockOf(PIPEZ, 1e6);
  EXPECT_LT(std::abs(M(7, 4) - 1.3 * imageOfPair(50)), 1e-12);
  EXPECT_LT(std::abs(M(4, 4) - 1.3 * std::log(0.19 / 0.2)), 1e-12);
  blockOf(PIPEP, 200.0);
  const Complex eps = 2.0 * Complex(1.0, -3.0 / 200.0);
  EXPECT_LT(std::abs(M(7, 4) * eps - imageOfPair(51)), 1e-14);
  EXPECT_LT(std::abs(M(5, 4) * eps - std::log(0.19 / 0.2)), 1e-15);
  const Complex outer = std::log(0.11 / 0.104) / Complex(4.0, -0.1);
  EXPECT_LT(std::abs(blockOf(PIPECP, 200.0)(5, 2) / outer - 1.0), 1e-15);
}

TEST(CoaxLayers, DcResistanceOfStrands) {
  static CableMatrix A;
  Cable& C = setCable(1);
  C.CBSTRND = true;
  C.CBSTRAD = 0.002;
  C.CBNTOT = 61;
  CBLAYZ(1e-4, 7, 0, A);
  EXPECT_NEAR(-A(1, 1).imag() * 1e-4 * L0, 1.7e-8 / (PI * 0.002 * 0.002 * 61), 1e-12);
}

// Charge on conductor c only: each insulator from there outwards carries all of it, those inside
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
