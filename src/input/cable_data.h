// Data of cables that follow from what was read, made behind the last line.
#pragma once

namespace lcp {

// Loss tangents become tan(delta) times the angular frequency they were given at, or 0 when the
// dielectric loss method is not 1; where the cables of a pipe are identical, the first lends the
// others its layers.
void deriveCableData();

// Makes each physical conductor a bare aerial cable behind the cables, and moves circuit,
// transposition and role of the conductors behind those of the cables' own conductors. NC becomes
// the conductors of all. A table that would overflow takes its message, exit status 1.
void convertOverheadConductors();

} // namespace lcp
