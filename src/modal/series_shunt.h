// Shunt data of the MFDTD model: conductance and capacitance, independent of frequency.
#pragma once

#include "store/solvedata.h"

namespace lcp {

struct SeriesShunt {
  RealMatrix G; // conductance, S/m
  RealMatrix C; // capacitance, F/m
};

// Computes the shunt data from YSTORE of one low frequency step. A capacitance that is not finite
// ends the run with a message and exit status 1.
void formSeriesShunt(SeriesShunt& shunt);

} // namespace lcp
