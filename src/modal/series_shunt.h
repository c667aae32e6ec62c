// Shunt data of the MFDTD model, which has a series impedance over frequency and a constant shunt.
#pragma once

#include "store/solvedata.h"

namespace lcp {

struct SeriesShunt {
  RealMatrix G; // conductance, S/m
  RealMatrix C; // capacitance, F/m
};

// From YSTORE of one low frequency step. A capacitance that is not a finite number ends the run
// with a message, exit status 1.
void formSeriesShunt(SeriesShunt& shunt);

} // namespace lcp
