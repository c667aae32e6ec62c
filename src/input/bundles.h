// Geometry of bundles and position lists.
#pragma once

#include "input/key_rows.h"

namespace lcp {

// Lines of position and offset lists: P, a number, and x and y from a fixed column on.
constexpr int POSITIONCOLUMN = 5; // counted from 0
constexpr KeyRow POSITIONROW = itemsKey("P", NORULE).at(POSITIONCOLUMN).taking(2).in("m");

// A displacement, m.
struct Offset {
  double dx = 0;
  double dy = 0;
};

// The k-th of s sub-conductors of a regular bundle, s from 2 to 15, seen from its centre.
// Neighbours are one spacing apart.
Offset regularOffset(int k, int s, double spacing);

// Opens the bundle of s sub-conductors of the open circuit: the companions of its conductors, laid
// out companion by companion behind them, start at the positions of their main conductors.
void openBundle(int s);

// Moves the k-th sub-conductor of every conductor of the open circuit.
void moveSubConductors(int k, Offset offset);

// Spreads all sub-conductors of the open circuit over a regular bundle.
void spreadBundle(double spacing);

// Takes a position list, whose first line is the current one: x and y of the open group's
// conductors in order, one a line.
void readPositions();

// Message and common error exit for a bundle with more sub-conductors than are allowed.
void checkSubConductorCount(int s);

} // namespace lcp
