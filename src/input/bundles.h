// Geometry of bundles, and position lists.
#pragma once

#include "input/key_rows.h"

namespace lcp {

// Lines of position and offset lists: P, a number, and x and y from a fixed column.
constexpr int POSITIONCOLUMN = 5; // counted from 0
constexpr KeyRow POSITIONROW = itemsKey("P", NORULE).at(POSITIONCOLUMN).taking(2).in("m");

// A displacement, m.
struct Offset {
  double dx = 0;
  double dy = 0;
};

// Position of the k-th of s sub-conductors of a regular bundle relative to its centre, s from 2 to
// 15. Neighbours are one spacing apart.
Offset regularOffset(int k, int s, double spacing);

// Opens a bundle of s sub-conductors for the conductors of the open circuit. The companion entries
// follow the main conductors, one round of conductors per sub-conductor, and start at the positions
// of their main conductors.
void openBundle(int s);

// Moves the k-th sub-conductor of every conductor of the open circuit.
void moveSubConductors(int k, Offset offset);

// Places all sub-conductors of the open circuit in a regular bundle.
void spreadBundle(double spacing);

// Reads a position list that starts with the current line: x and y of the open group's conductors
// in order, one per line.
void readPositions();

// Ends the run through the common error exit if a bundle has more sub-conductors than are allowed.
void checkSubConductorCount(int s);

} // namespace lcp
