// Exact earth return of the bodies of a cable system, at any complex frequency.
//
// p is the complex frequency, rad/s, Re p >= 0 and not both parts 0 (p = j w for the steady state).
// Values are dimensionless: the impedance is p L0 times the value, ohm/m. The soil is that of the
// run store, with its frequency dependence and its permeability.
#pragma once

#include "cable/body.h"
#include "overhead/exact_earth.h"

namespace lcp {

// Two bodies, or one by itself.
struct BodyPair {
  double x; // horizontal distance, not negative; of a body by itself its radius, m
  double d; // distance of the centres, of a body by itself its radius, m
  double H; // sum of the distances from the surface, m
  double r; // radius of the first, m
  bool self;
};
BodyPair pairOf(const Body& b);
BodyPair pairOf(const Body& i, const Body& j);

// Buried bodies, above 0 deep (Pollaczek), over a K1(a) for the radius of the first.
Estimated EXACTBURIED(Complex p, const BodyPair& g);

// A body h above ground and one y below, x beside.
Estimated EXACTMIXED(Complex p, double h, double y, double x);

// Aerial bodies, the logarithm of the geometry included, with displacement currents in the soil and
// waves that travel as in the air; and the potential term.
struct ExactAerial {
  Estimated Z, P;
};
ExactAerial EXACTAERIAL(Complex p, const BodyPair& g);

} // namespace lcp
