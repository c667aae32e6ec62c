// Access to the overhead conductors of the run store, for any kind of system.
#pragma once

#include <string>

namespace lcp::companions {

// Role of conductor i: MAPMAIN, MAPELIMINATED, MAPKEPT, or the number of its main conductor.
int roleOfWire(int i);
bool isGroundWire(int i);
// Number of the main conductor of the bundle of i, or i itself.
int mainOfWire(int i);
int circuitOfWire(int i);
int transpositionOfWire(int i);

// Resistivity that gives the DC resistance with the metal's cross-section, ohm m.
double resistivityOfWire(int i);

// Name in messages: "the conductor at x = 0 m, y = 20 m".
std::string nameOfWire(int i);

} // namespace lcp::companions
