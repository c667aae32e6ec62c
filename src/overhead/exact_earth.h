// Exact earth return of conductors above ground: Carson's integral, at any complex frequency.
//
//   E = 2 mu_r * integral over u from 0 to infinity of exp(-H u) cos(x u) / (s + mu_r u),
//   s = sqrt(u^2 + m^2),  1 / m the complex depth
//
// mu_r the relative permeability of the ground, which stands beside u as the boundary asks, not
// only ahead of the integral.
#pragma once

#include "base/matrix.h"

namespace lcp {

// A value, and an estimate of what it is off, both of the same dimension.
struct Estimated {
  Complex value;
  double error;
};

constexpr double EXACTLIMIT = 1e-9; // of a value: an exact integral that is further off is told
bool missesLimit(const Estimated& E);

// What the ground is at the complex frequency p, rad/s, Re p >= 0 (p = j w for the steady state),
// from the run store; 1 / m^2 and m, Re m > 0. By the constant soil without displacement currents,
// or by the frequency-dependent soil, whose powers of the frequency continue into the plane.
Complex exactReciprocalDepth(Complex p);
Complex complexAdmittivity(Complex p); // of the frequency-dependent soil, S/m

// 2 * integral of exp(-h u - y (s - m)) cos(x u) / (s + c u): h in the air, y in the ground, x
// beside, m; no number for Re c < 0. Dimensionless; exp(-y m) is left to the caller.
Estimated EARTHPATH(Complex m, Complex c, double h, double y, double x);

// 2 * integral of exp(-h u) cos(x u) / (s + k m).
Estimated EARTHPATHBESIDE(Complex m, Complex k, double h, double x);

// E of two conductors by the sum of their heights H > 0 and their horizontal distance x, m; x = 0
// for one by itself. The impedance is p L0 E on top of that over ideal ground, ohm/m.
Estimated EXACTCARSON(Complex p, double H, double x);

// All pairs of a line, each geometry once. At the first frequency of a solve, n conductors:
void PREPAREEXACT(int n);
// ... then at each frequency all values, and the one of a pair. Integrals further off than
// EXACTLIMIT are told on the error stream, once a solve.
void SOLVEEXACT(double w);
Complex EXACTTERM(int i, int j);

} // namespace lcp
