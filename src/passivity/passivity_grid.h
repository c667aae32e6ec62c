// The frequencies at which a fitted model is looked at for passivity.
#pragma once

#include "base/table.h"
#include "store/capacities.h"

namespace lcp {

// Values of DIST.
constexpr int GRIDLOGARITHMIC = 1;
constexpr int GRIDLINEAR = 2;
constexpr int GRIDDECADES = 3; // linear within each decade

struct FrequencyList {
  int NGRID = 0;
  Table<double, MAXPASSGRID> f; // Hz, rising
};

// Fills FGRID with frequencies from FLOW to FHIGH, Hz. Logarithmic and linear: NINC points with
// both ends among them. Linear within each decade from FLOW: NINC is the total from which the
// points of a decade are worked out, one at least; the upper end of a decade, and so FHIGH, is no
// point of it. Any other DIST gives an empty grid.
//
// Bounds or a count without a grid (numbers that are not finite, falling bounds, a logarithm of 0
// or below, fewer than two points, more than the table holds) end the run with a message, exit
// status 1.
void PASSGRID(double FLOW, double FHIGH, int NINC, int DIST, FrequencyList& FGRID);

} // namespace lcp
