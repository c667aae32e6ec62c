// Earth return of one body of a cable system, and between two of them.
//
// All values are dimensionless: the impedance is j w L0 times the value. m is the reciprocal
// complex depth of the soil, 1/m, Re m > 0; w the angular frequency, rad/s. A formula without a
// meaning for the kind of pair ends the run, exit status 1. Two bodies do not coincide. Distances
// from the surface and radii of 0, and in the air below 0, can leave a value that is not finite.
#pragma once

#include "base/matrix.h"
#include "cable/body.h"

namespace lcp {

// KEXPONE of the argument asked for last, which the pairs of one body share; at first that of 0.
struct LastKexpone {
  Complex argument = 0.0;
  Complex value = 1.0;
};

struct EarthValue {
  Complex Z; // impedance
  Complex P; // potential term, 0 but for aerial bodies by integration
};

// Buried bodies: the formulas 0 (closed form), 2 (integrals) and 3 (series).
Complex EBSELF(int formula, const Body& b, Complex m, LastKexpone& kexpone);
Complex EBMUT(int formula, const Body& i, const Body& j, Complex m, LastKexpone& kexpone);

// Aerial bodies, the logarithm of the geometry included: the formulas 0 (complex depth) and 2
// (integration with displacement currents, over the constant soil whatever the run's is). Formula 2
// takes 11 panels for each multiple of the height of a pair that lies beside it, 1000 at least.
EarthValue EASELF(int formula, const Body& b, Complex m, double w);
EarthValue EAMUT(int formula, const Body& i, const Body& j, Complex m, double w);

// An aerial body and a buried one: the formulas 0 and 2, both closed.
Complex EMIX(int formula, const Body& i, const Body& j, Complex m);

} // namespace lcp
