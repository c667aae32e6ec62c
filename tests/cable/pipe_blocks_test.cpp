#include "cable/pipe_blocks.h"

#include "base/constants.h"
#include "cable/numbering.h"
#include "store/rundata.h"
#include "support/bessel_reference.h"

#include <gtest/gtest.h>

using namespace lcp;

namespace {

CableNumbering& N = CABLE.numbering;
const Complex U[] = {0.0, 0.9, std::polar(0.89, 0.4)}, UU = U[1] * U[2];

// A cable of one conductor, and a pipe with cables of two: U and 0.2, of their positions and radii,
// are in units of the inner radius of the pipe.
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

// Two conductors at U[1] and U[2] in a perfect wall; a series that stops early lacks its end.
double imageOfPair(int lacking) {
  double image = std::log(std::abs(1.0 - UU) / std::abs(U[1] - U[2]));
  for (int n = lacking; n < 400; ++n) image += std::real(std::pow(UU, n)) / n;
  return image;
}

} // namespace

// With g = -r f'/f of the field f = K_n(m r) in the wall, B_r and H_th continuous at r = a, a
// harmonic c^n / n of the flux comes back (n mu - g) / (n mu + g) times, by 1 more than from a
// perfect wall.
TEST(PipeBlocks, ImpedanceMeetsTheFieldOfTheWall) {
  for (const auto& [mu, size] : {std::pair(1.0, 0.03), {300.0, 0.03}, {1.0, 3.0}, {300.0, 30.0}}) {
    setPipe(mu);
    const CableMatrix& Z = blockOf(PIPEZ, size * size * 2e-7 / (MU0 * mu * 0.01));
    const Complex x = std::polar(size, PI / 4);
    Complex self = Z(2, 2) + 1.3 * std::log(0.19);
    Complex pair = Z(2, 2) + 1.3 * std::log(0.2 / std::abs(U[1] - U[2]));
    for (int n = 1; n <= 49; ++n) {
      const Complex sides = test::scaledK(n - 1, x) + test::scaledK(n + 1, x);
      const Complex g = 0.5 * x * sides / test::scaledK(n, x);
      const Complex more = (n * mu - g) / (n * mu + g) + 1.0;
      self += std::pow(0.81, n) * more / double(n);
      pair += std::pow(UU, n).real() * (more - 1.3) / double(n);
    }
    EXPECT_LT(std::abs(Z(4, 4) - self), 1e-13 + 1e-15 * std::abs(self)) << mu << ' ' << size;
    EXPECT_LT(std::abs(Z(7, 4) - pair), 1e-13 + 1e-15 * std::abs(self)) << mu << ' ' << size;
  }
}

// A wall without resistance lets no field in: what is left of its 49 terms is the image.
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

// The surfaces of the wall: coth^2 - 1 / sinh^2 = 1, and the DC resistance at low frequency.
TEST(PipeBlocks, WallAsATube) {
  setPipe(20.0);
  const double k = 2e-7 / (TWOPI * 0.204);
  for (const double w : {0.01, 10.0, 1e3, 1e4}) {
    const Complex L(0.0, w * L0);
    const Complex in = (blockOf(PIPEZ, w)(2, 3) + 1.3 * std::log(0.2)) * L;
    const CableMatrix& C = blockOf(PIPECZ, w);
    const Complex out = (C(8, 8) - 1.1 * std::log(0.11 / 0.104)) * L;
    const Complex zm = (C(8, 8) - C(8, 3)) * L;
    const Complex coth2 = (in + k / 0.1) * (out - k / 0.104) * 0.0104;
    const Complex one = coth2 - std::pow(0.102 * zm, 2) - 20 * 2e-7 / TWOPI * L;
    EXPECT_LT(std::abs(one), 1e-13 * std::abs(coth2)) << w;
    EXPECT_LT(std::abs((C(8, 8) - C(2, 5)) * L - 2.0 * zm), 1e-12 * std::abs(zm)) << w;
    const double fromDC = std::abs((in + out + zm) * 0.002 / k - 3.0);
    EXPECT_EQ(fromDC < 1e-4, w < 1.0) << w;
  }
}

// Every conductor inside is written, alike within a cable, none outside; the list of cables counts.
TEST(PipeBlocks, RowsOfTheInnerConductorsAndThePipe) {
  setPipe(1.0);
  for (const auto block : {PIPEZ, PIPEP, PIPECZ, PIPECP}) {
    for (N.ninner = 3; N.ninner >= 0; N.ninner -= 3) {
      const CableMatrix& M = blockOf(block, 300.0);
      const int first = N.ninner > 0 ? 2 : 8;
      const int last = block == PIPECZ || block == PIPECP ? 8 : 7;
      for (int e = 0; e < 81; ++e) {
        const int i = 1 + e / 9, j = 1 + e % 9;
        EXPECT_EQ(M(i, j), M(j, i));
        EXPECT_EQ(M(i, j), M(i > 1 && i < 8 ? i / 2 * 2 : i, j));
        EXPECT_EQ(M(i, j) != 0.0, std::min(i, j) >= first && std::max(i, j) <= last);
      }
    }
  }
}
