// Earth return of one body of a cable system and between two of them.
//
// All values are dimensionless: the impedance is j w L0 times the value. m is the reciprocal
// complex depth of the soil, 1/m, Re m > 0; w is the angular frequency, rad/s. A formula that does
// not exist for the kind of pair ends the run with exit status 1. Two bodies must not coincide.
// Distances from the surface and radii of 0, and in air negative ones, can give a value that is not
// finite.
#pragma once

#include "base/matrix.h"
#include "cable/body.h"

namespace lcp {

// The last KEXPONE value, which the pairs of one body share; initially that of 0.
struct LastKexpone {
  Complex argument = 0.0;
  Complex value = 1.0;
};

struct EarthValue {
  Complex Z; // impedance
  Complex P; // potential term; 0 except for aerial bodies with formula 2
};

// Buried bodies: formulas 0 (closed form), 2 (integrals) and 3 (series).
Complex EBSELF(int formula, const Body& b, Complex m, LastKexpone& kexpone);
Complex EBMUT(int formula, const Body& i, const Body& j, Complex m, LastKexpone& kexpone);

// Aerial bodies, including the logarithm of the geometry: formulas 0 (complex depth) and 2
// (integration with displacement currents, always over constant soil). Formula 2 takes 11 panels
// per multiple of the height in horizontal distance, at least 1000.
EarthValue EASELF(int formula, const Body& b, Complex m, double w);
EarthValue EAMUT(int formula, const Body& i, const Body& j, Complex m, double w);

// An aerial and a buried body: formulas 0 and 2, both in closed form.
Complex EMIX(int formula, const Body& i, const Body& j, Complex m);

} // namespace lcp
