// PI model: one long-line corrected pi circuit for the whole line at the steady-state frequency.
#pragma once

#include "store/solvedata.h"

namespace lcp {

// The shunt branch at each end of the line.
struct ShuntBranch {
  double g = 0; // conductance, S; used only if positive
  double c = 0; // capacitance, microfarad
};

// Corrects YMAT and ZMAT of the last step for the line length.
void correctPi(LineMatrix& YLC, LineMatrix& ZLC);

// Writes the shunt admittance of half the line to PIW, S: element (i,j) is the coupling admittance,
// (i,i) the row sum, that is the admittance to ground.
void formShuntData(LineMatrix& PIW, const LineMatrix& YLC);
ShuntBranch shuntBranch(Complex y);

// Writes the series data of the whole line to PIW: resistance in ohm as real part, inductance in
// henry as imaginary part.
void formSeriesData(LineMatrix& PIW, const LineMatrix& ZLC);

} // namespace lcp
