// The frequency grid of a passivity check.
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

// Fills FGRID with frequencies from FLOW to FHIGH, Hz, descending if FHIGH is lower. Logarithmic
// and linear: NINC points including both ends, none for NINC below 1. Linear within each decade
// from FLOW: NINC is the total from which the points per decade are computed, at least one unless
// NINC is negative; the upper end of a decade, and so FHIGH, is not included. Any other DIST gives
// an empty grid.
//
// The run ends with a message and exit status 1 if there are more points than the table holds, or
// if the frequencies are undefined: bounds that are not finite, a logarithm of 0 or less, or a
// division by zero (one point in the first two cases, equal bounds in the third).
void PASSGRID(double FLOW, double FHIGH, int NINC, int DIST, FrequencyList& FGRID);

} // namespace lcp
