// Exact earth return of conductors above ground: Carson's integral, at any complex frequency.
//
//   E = 2 mu_r * integral over u from 0 to infinity of exp(-H u) cos(x u) / (s + mu_r u),
//   s = sqrt(u^2 + m^2),  1 / m the complex depth
//
// mu_r is the relative permeability of the ground. The boundary condition at the surface puts it in
// the denominator too, not only in front of the integral.
#pragma once

#include "base/matrix.h"

namespace lcp {

// A value and an estimate of its absolute error.
struct Estimated {
  Complex value;
  double error;
};

constexpr double EXACTLIMIT = 1e-9; // relative error above which an exact integral is reported
bool missesLimit(const Estimated& E);

// Reciprocal complex depth m of the ground in the run store, 1/m, Re m > 0, at the complex
// frequency p, rad/s, Re p >= 0 (p = j w in the steady state). A constant soil has no displacement
// currents here. The powers of the frequency in the frequency-dependent soil extend to complex p.
Complex exactReciprocalDepth(Complex p);
Complex complexAdmittivity(Complex p); // of the frequency-dependent soil, S/m

// 2 * integral of exp(-h u - y (s - m)) cos(x u) / (s + c u), dimensionless, with the height h, the
// depth y and the horizontal distance x in m. NaN for Re c < 0. The factor exp(-y m) is left to the
// caller.
Estimated EARTHPATH(Complex m, Complex c, double h, double y, double x);

// 2 * integral of exp(-h u) cos(x u) / (s + k m).
Estimated EARTHPATHBESIDE(Complex m, Complex k, double h, double x);

// E of two conductors from the sum of their heights H > 0 and their horizontal distance x, m; x = 0
// for the self term. The earth adds the impedance p L0 E, ohm/m, to that over ideal ground.
Estimated EXACTCARSON(Complex p, double H, double x);

// All pairs of a line of n conductors; each distinct geometry is solved once. PREPAREEXACT runs at
// the first frequency of a solve, SOLVEEXACT at every frequency; EXACTTERM then returns the term of
// a pair. The first integral that misses EXACTLIMIT is reported on the error stream, one line per
// solve.
void PREPAREEXACT(int n);
void SOLVEEXACT(double w);
Complex EXACTTERM(int i, int j);

} // namespace lcp
