// The overhead conductors of the run store, whatever the kind of the system.
#pragma once

#include <string>

namespace lcp::companions {

// Role of conductor i: MAPMAIN, MAPELIMINATED, MAPKEPT, or the number of its main conductor.
int roleOfWire(int i);
bool isGroundWire(int i);
// The number of the bundle or single conductor that i belongs to.
int mainOfWire(int i);
int circuitOfWire(int i);
int transpositionOfWire(int i);

// Resistivity that the direct current resistance stands for over the metal's cross-section, ohm m.
double resistivityOfWire(int i);

// "the conductor at x = 0 m, y = 20 m"
std::string nameOfWire(int i);

} // namespace lcp::companions
