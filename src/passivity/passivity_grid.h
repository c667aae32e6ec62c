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
  Table<double, MAXPASSGRID> f; // Hz
};

// Fills FGRID with frequencies from FLOW to FHIGH, Hz, falling where FHIGH is the lower one.
// Logarithmic and linear: NINC points with both ends among them, none for NINC below 1. Linear
// within each decade from FLOW: NINC is the total from which the points of a decade are worked out,
// one at least unless NINC is negative; the upper end of a decade, and so FHIGH, is no point of it.
// Any other DIST gives an empty grid.
//
// What has no frequencies to lay (bounds that are not finite, a logarithm of 0 or below, steps by
// division by zero: one point of the first two, equal bounds of the third) and more points than the
// table holds end the run with a message, exit status 1.
void PASSGRID(double FLOW, double FHIGH, int NINC, int DIST, FrequencyList& FGRID);

} // namespace lcp
