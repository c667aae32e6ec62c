// Pipe blocks of the cable matrices: space inside the pipe, wall as a conductor, both insulators.
#pragma once

#include "cable/cable_store.h"

namespace lcp {

// All functions take the pipe and its cables from the run store, which must have a pipe, and write
// to matrices that are zero over all conductors; w is the angular frequency, rad/s, above 0.
// Nothing is checked: a pipe whose radii, resistivity, permeability or permittivity are not
// positive, or a cable that touches the wall, gives values that are not finite.

// Series impedance, divided by j w L0, of the loops between the inner cables and the inner surface
// of the pipe. Writes nothing without an inner cable.
void PIPEZ(double w, const CableNumbering& N, CView B);

// Potential coefficients of the inner insulator, whose inverse is Y / (j w C0). Writes nothing
// without an inner cable.
void PIPEP(double w, const CableNumbering& N, CView P2);

// Series impedance, divided by j w L0, of the wall and the outer insulator.
void PIPECZ(double w, const CableNumbering& N, CView C);

// Potential coefficient of the outer insulator, for every pair of conductors of the pipe and inside
// it. Writes nothing without that insulator.
void PIPECP(double w, const CableNumbering& N, CView P3);

} // namespace lcp
