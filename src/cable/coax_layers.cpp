// Layers of a coaxial cable: conductors k = 1, 2, .., n from the core outwards, each with an
// insulator around it; the last insulator may be missing. A layer has inner radius a and outer
// radius b, in m.
//
//   m = sqrt(j w mu0 mu_r / rho)   reciprocal complex skin depth of a metal layer, 1/m
//   E = (b - a) m
//
// Surface impedances of a tube in ohm/m (hyperbolic approximation of the Bessel function solution),
// at the inner surface, at the outer surface, and between them:
//
//   z_in  = rho m / (2 pi a) coth E - rho / (2 pi a (a + b))
//   z_out = rho m / (2 pi b) coth E + rho / (2 pi b (a + b))
//   z_m   = rho m / (pi (a + b)) / sinh E
//
// All three equal the DC resistance at zero frequency. The argument of the hyperbolic sine is
// limited to Re E = 30, so that z_m of a thick wall is small but not 0.
//
//   i_k = mu_r log(b / a)                          insulator k, divided by j w L0
//   p_k = log(b / a) / eps_r / (1 - j T / w)       potential; T = w tan delta at the frequency of
//                                                  the loss tangent: a constant conductance
//
// With T_k the impedance of conductor k whose current returns outside the cable:
//
//   T_k     = z_out,k + i_k + z_in,k+1 + T_k+1 - 2 z_m,k+1,   T_n = z_out,n + i_n
//   Z(k, k) = T_k
//   Z(l, k) = T_k - z_m,k    l < k: for the current of a conductor further in
//   P(l, k) = p_k + .. + p_n   l <= k
#include "cable/coax_layers.h"

#include "base/constants.h"
#include "overhead/internal_impedance.h"
#include "store/rundata.h"

#include <cmath>

namespace lcp {

namespace {

// Surface impedances of a metal layer, divided by j w L0. The inner surface of a core carries no
// current.
struct Surface {
  Complex in;
  Complex out;
  Complex transfer;
};

// Index of the layer of conductor k (1 for the core) in radii and permeabilities.
std::size_t layerOf(int k) { return static_cast<std::size_t>(2 * k - 1); }

double resistivity(const Cable& C, int k) { return C.CBRHO[static_cast<std::size_t>(k - 1)]; }

// Impedance at the outer surface of the core, ohm/m.
Complex coreImpedance(double w, const Cable& C) {
  const double b = C.CBRAD[RADCORE];
  const double rho = resistivity(C, 1);
  const double mur = C.CBMU[0];
  if (C.CBSOLID) return solidImpedance(w, b, rho, mur);
  if (!C.CBSTRND) return tubeImpedance(w, C.CBRAD[RADCOREINNER], b, rho, mur);
  const Strands strands{C.CBSTRAD, C.CBNOUT, C.CBNTOT};
  return strandedImpedance(w, b, strands, rho / (PI * C.CBSTRAD * C.CBSTRAD * C.CBNTOT), mur);
}

Surface surfaceOf(double w, const Cable& C, int k) {
  const Complex normalise(0.0, -TWOPI / (w * MU0));
  if (k == 1) return {0.0, coreImpedance(w, C) * normalise, 0.0};
  const std::size_t layer = layerOf(k);
  const double a = C.CBRAD[layer - 1];
  const double b = C.CBRAD[layer];
  const double mur = C.CBMU[layer - 1];
  const double rho = resistivity(C, k);
  return {tubeInnerImpedance(w, a, b, rho, mur) * normalise,
          tubeImpedance(w, a, b, rho, mur) * normalise,
          tubeTransferImpedance(w, a, b, rho, mur) * normalise};
}

// log(b / a) of the insulator around conductor k.
double insulatorLogarithm(const Cable& C, int k) {
  const std::size_t layer = layerOf(k);
  return std::log(C.CBRAD[layer + 1] / C.CBRAD[layer]);
}

double insulatorImpedance(const Cable& C, int k) {
  return C.CBNLAY >= 2 * k ? C.CBMU[layerOf(k)] * insulatorLogarithm(C, k) : 0.0;
}

Complex insulatorPotential(const Cable& C, int k, double w) {
  const auto index = static_cast<std::size_t>(k - 1);
  return insulatorLogarithm(C, k) / C.CBEPS[index] / Complex(1.0, -C.CBTAND[index] / w);
}

// Sets element (k, k) and, symmetrically, those of k with the conductors further in.
void setRow(CView M, int off, int k, Complex own, Complex further) {
  M(off + k, off + k) = own;
  for (int l = 1; l < k; ++l) M(off + l, off + k) = M(off + k, off + l) = further;
}

} // namespace

void CBLAYZ(double w, int c, int off, CView A) {
  const Cable& C = RUNDATA.cable.CB[c];
  Surface outer{}; // the next conductor outwards
  Complex T = 0.0;
  for (int k = C.conductors(); k >= 1; --k) {
    const Surface own = surfaceOf(w, C, k);
    T = own.out + insulatorImpedance(C, k) + outer.in + T - 2.0 * outer.transfer;
    setRow(A, off, k, T, T - own.transfer);
    outer = own;
  }
}

void CBLAYP(int c, int off, CView P, double w) {
  const Cable& C = RUNDATA.cable.CB[c];
  Complex sum = 0.0;
  for (int k = C.CBNLAY / 2; k >= 1; --k) {
    sum += insulatorPotential(C, k, w);
    setRow(P, off, k, sum, sum);
  }
}

} // namespace lcp
