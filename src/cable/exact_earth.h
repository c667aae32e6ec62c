// Exact earth return of the bodies of a cable system, at any complex frequency.
//
// p is the complex frequency, rad/s, Re p >= 0 and not both parts 0 (p = j w for the steady state).
// Values are dimensionless: the impedance is p L0 times the value, ohm/m. The soil is that of the
// run store, with its frequency dependence and its permeability.
#pragma once

#include "cable/body.h"
#include "overhead/exact_earth.h"

namespace lcp {

// Geometry of two bodies, or of one with itself.
struct BodyPair {
  double x; // horizontal distance, not negative; for a self term the radius, m
  double d; // distance of the centres, for a self term the radius, m
  double H; // sum of the distances from the surface, m
  double r; // radius of the first, m
  bool self;
};
BodyPair pairOf(const Body& b);
BodyPair pairOf(const Body& i, const Body& j);

// Buried bodies (Pollaczek), depths above 0; the radius of the first enters as 1 / (a K1(a)).
Estimated EXACTBURIED(Complex p, const BodyPair& g);

// A body at the height h and one at the depth y, a horizontal distance x apart.
Estimated EXACTMIXED(Complex p, double h, double y, double x);

// Impedance of aerial bodies, including the logarithm of the geometry, and the potential term. With
// displacement currents in the soil, for waves that travel at the speed of light.
struct ExactAerial {
  Estimated Z, P;
};
ExactAerial EXACTAERIAL(Complex p, const BodyPair& g);

} // namespace lcp
