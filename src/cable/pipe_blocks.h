// What a pipe adds to the matrices of a cable system: the space inside it with the inner surface of
// its wall, the wall as a conductor, and both insulators.
#pragma once

#include "cable/cable_store.h"

namespace lcp {

// All take the pipe and its cables from the run store and write into matrices whose corner of all
// conductors is cleared; w is the angular frequency, rad/s, above 0. Call them for a system with a
// pipe. Nothing is checked: a pipe without radii, resistivity, permeability or permittivity above
// 0, or a cable that stands in its wall, gives values that are no finite numbers.

// Series impedance over j w L0 of the loops between the inner cables and the inner surface of the
// pipe. Nothing is written without an inner cable.
void PIPEZ(double w, const CableNumbering& N, CView B);

// Potential coefficients of the inner insulator, their inverse Y over j w C0. Nothing is written
// without an inner cable.
void PIPEP(double w, const CableNumbering& N, CView P2);

// Series impedance over j w L0 of the wall and the outer insulator.
void PIPECZ(double w, const CableNumbering& N, CView C);

// Potential coefficient of the outer insulator, for every pair of conductors of the pipe and within
// it. Nothing is written without that insulator.
void PIPECP(double w, const CableNumbering& N, CView P3);

} // namespace lcp
