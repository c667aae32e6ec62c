// A pipe has inner radius a, outer radius b, resistivity rho and relative permeability mu; inner
// cable i has radius r_i, distance d_i and angle th_i from the pipe's centre. Lengths are in m,
// impedances divided by j w L0.
//
//   m = sqrt(j w mu0 mu / rho)   reciprocal complex skin depth of the wall, 1/m
//   E = (b - a) m
//
// Surface impedances of the wall as a tube, ohm/m; at zero frequency all equal its DC resistance:
//
//   z_n   = rho m / (2 pi a) coth E - rho / (2 pi a (a + b))   inner surface
//   z_out = rho m / (2 pi b) coth E + rho / (2 pi b (a + b))   outer surface
//   z_m   = rho m / (pi (a + b)) / sinh E                      between the surfaces
//
// Inside, the field of an eccentric cable is an angular series. With u = d_i d_j / a^2 exp(j (th_i
// - th_j)), the distance D of the two cables and x = a m, a wall that is assumed to extend outwards
// without limit responds to harmonic n with
//
//   q_n = n (1 + mu) + x K_(n-1)(x) / K_n(x)
//
//   B(i, i) = z_n + mu_i log(a / r_i (1 - (d_i / a)^2)) + 2 mu sum u^n / q_n
//   B(i, j) = z_n + mu_i (log(a / D) - sum Re u^n / n) + 2 mu sum Re u^n / q_n
//
// where mu_i is the permeability of the inner insulator and n runs from 1 to 49. The first sum is
// the image of cable j in a wall that no field enters, the second corrects for the field that does.
// The correction tends to (mu - 1) / (mu + 1) of a static image at low frequency and vanishes at
// high frequency. The potential coefficients inside are the same logarithms divided by the relative
// permittivity, with 50 terms.
//
// The current of an inner conductor returns on the inner surface, is coupled through the wall by
// z_m in both directions, and returns outside the pipe:
//
//   Zp = mu_o log(PIPERO / b) + z_out
//   C(pipe, pipe) = Zp,   C(pipe, c) = Zp - z_m,   C(c, c') = Zp - 2 z_m
#include "cable/pipe_blocks.h"

#include "base/constants.h"
#include "kernels/bessel_k.h"
#include "overhead/internal_impedance.h"
#include "store/rundata.h"

#include <array>
#include <cmath>

namespace lcp {

namespace {

constexpr int IMPEDANCETERMS = 49;
constexpr int POTENTIALTERMS = 50;

using Admittances = std::array<Complex, IMPEDANCETERMS>; // 1 / q_n at index n - 1

Complex normalise(double w) { return {0.0, -TWOPI / (w * MU0)}; }

Complex skinDepthInverse(double w, const PipeRecord& P) {
  return std::sqrt(Complex(0.0, w * MU0 * P.PIPEMU / P.PIPERHO));
}

void fillAdmittances(double w, const PipeRecord& P, Admittances& Q) {
  const Complex x = P.PIPERI * skinDepthInverse(w, P);
  KSeries KSER;
  ZBESK(x, KSER);
  for (int n = 1; n <= IMPEDANCETERMS; ++n) {
    Q[static_cast<std::size_t>(n - 1)] = 1.0 / (n * (1.0 + P.PIPEMU) + x * KRATIO(KSER, n));
  }
}

// Sum of Re u^n / q_n.
Complex wallSum(Complex u, const Admittances& Q) {
  Complex power = 1.0;
  Complex S = 0.0;
  for (const Complex q : Q) {
    power *= u;
    S += power.real() * q;
  }
  return S;
}

// Sum of Re u^n / n, which tends to -log |1 - u|.
double imageSum(Complex u, int terms) {
  Complex power = 1.0;
  double S = 0.0;
  for (int n = 1; n <= terms; ++n) {
    power *= u;
    S += power.real() / n;
  }
  return S;
}

Complex pairPosition(const PipeRecord& P, const Cable& I, const Cable& J) {
  const double a = P.PIPERI;
  const double th = std::fabs(I.CBPTH - J.CBPTH);
  return I.CBPR * J.CBPR / (a * a) * Complex(std::cos(th), std::sin(th));
}

double selfLogarithm(const PipeRecord& P, const Cable& I) {
  const double ratio = I.CBPR / P.PIPERI;
  return std::log(P.PIPERI / I.radius() * (1.0 - ratio * ratio));
}

double pairLogarithm(const PipeRecord& P, const Cable& I, const Cable& J, int terms) {
  const double di = I.CBPR;
  const double dj = J.CBPR;
  const double D2 = di * di + dj * dj - 2.0 * di * dj * std::cos(I.CBPTH - J.CBPTH);
  return std::log(P.PIPERI / std::sqrt(D2)) - imageSum(pairPosition(P, I, J), terms);
}

// Complex relative permittivity whose loss is a constant conductance; tand is tan delta times the
// angular frequency at which it is given.
Complex permittivity(double w, double eps, double tand) { return eps * Complex(1.0, -tand / w); }

// Sets the block of cables i and j and its mirror image.
void setBlock(const CableNumbering& N, CView M, int i, int j, Complex value) {
  for (int k = N.first(i); k <= N.last(i); ++k) {
    for (int l = N.first(j); l <= N.last(j); ++l) M(k, l) = M(l, k) = value;
  }
}

// Sets the values of the pipe itself, of the pipe and an inner conductor, and of two inner
// conductors.
void setPipe(const CableNumbering& N, CView M, Complex own, Complex crossed, Complex inside) {
  const int p = N.pipeRow;
  M(p, p) = own;
  for (int k = 1; k <= N.ninner; ++k) {
    const int i = N.inner[k];
    for (int c = N.first(i); c <= N.last(i); ++c) M(p, c) = M(c, p) = crossed;
    for (int l = 1; l <= k; ++l) setBlock(N, M, i, N.inner[l], inside);
  }
}

} // namespace

void PIPEZ(double w, const CableNumbering& N, CView B) {
  if (N.ninner == 0) return;
  const CableTable& T = RUNDATA.cable;
  const PipeRecord& P = T.pipe;
  Admittances Q;
  fillAdmittances(w, P, Q);
  const Complex zn = tubeInnerImpedance(w, P.PIPERI, P.PIPERC, P.PIPERHO, P.PIPEMU) * normalise(w);
  for (int k = 1; k <= N.ninner; ++k) {
    const int i = N.inner[k];
    const Cable& I = T.CB[i];
    const Complex own = 2.0 * P.PIPEMU * wallSum(pairPosition(P, I, I), Q);
    setBlock(N, B, i, i, zn + P.PIPEMUI * selfLogarithm(P, I) + own);
    for (int l = 1; l < k; ++l) {
      const int j = N.inner[l];
      const Cable& J = T.CB[j];
      const Complex wall = 2.0 * P.PIPEMU * wallSum(pairPosition(P, I, J), Q);
      setBlock(N, B, i, j, zn + P.PIPEMUI * pairLogarithm(P, I, J, IMPEDANCETERMS) + wall);
    }
  }
}

void PIPEP(double w, const CableNumbering& N, CView P2) {
  const CableTable& T = RUNDATA.cable;
  const PipeRecord& P = T.pipe;
  const Complex eps = permittivity(w, P.PIPEEPSI, P.PIPETANI);
  for (int k = 1; k <= N.ninner; ++k) {
    const int i = N.inner[k];
    setBlock(N, P2, i, i, selfLogarithm(P, T.CB[i]) / eps);
    for (int l = 1; l < k; ++l) {
      const int j = N.inner[l];
      setBlock(N, P2, i, j, pairLogarithm(P, T.CB[i], T.CB[j], POTENTIALTERMS) / eps);
    }
  }
}

void PIPECZ(double w, const CableNumbering& N, CView C) {
  const PipeRecord& P = RUNDATA.cable.pipe;
  const double ins = P.PIPEOUTL == 1 ? P.PIPEMUO * std::log(P.PIPERO / P.PIPERC) : 0.0;
  const Complex zout = tubeImpedance(w, P.PIPERI, P.PIPERC, P.PIPERHO, P.PIPEMU);
  const Complex Zp = ins + zout * normalise(w);
  const Complex zm =
      tubeTransferImpedance(w, P.PIPERI, P.PIPERC, P.PIPERHO, P.PIPEMU) * normalise(w);
  setPipe(N, C, Zp, Zp - zm, Zp - 2.0 * zm);
}

void PIPECP(double w, const CableNumbering& N, CView P3) {
  const PipeRecord& P = RUNDATA.cable.pipe;
  if (P.PIPEOUTL != 1) return;
  const Complex p = std::log(P.PIPERO / P.PIPERC) / permittivity(w, P.PIPEEPSO, P.PIPETANO);
  setPipe(N, P3, p, p, p);
}

} // namespace lcp
