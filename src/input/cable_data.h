// Cable data derived from the input, after its last line is read.
#pragma once

namespace lcp {

// Multiplies the loss tangents by the angular frequency they are given at, or sets them to 0 if the
// dielectric loss method is not 1. If the cables of a pipe are identical, copies the layers of the
// first one to the others.
void deriveCableData();

// Appends each physical conductor to the cables as a bare aerial cable, and moves circuit,
// transposition and role of the conductors after the cables' own conductors. NC becomes
// the total number of conductors. A table that would overflow ends the run with a message and exit
// status 1.
void convertOverheadConductors();

} // namespace lcp
