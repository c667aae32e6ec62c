// PI model: one long-line corrected pi circuit of the whole line at the steady-state frequency.
#pragma once

#include "store/solvedata.h"

namespace lcp {

// One shunt branch at each end of the line.
struct ShuntBranch {
  double g = 0; // conductance, S; only a positive one is a branch
  double c = 0; // capacitance, microfarad
};

// Corrects YMAT and ZMAT of the last step for length.
void correctPi(LineMatrix& YLC, LineMatrix& ZLC);

// Shunt data of half the line into PIW: element (i,j) the coupling admittance, (i,i) the row sum,
// that is the admittance to ground, S.
void formShuntData(LineMatrix& PIW, const LineMatrix& YLC);
ShuntBranch shuntBranch(Complex y);

// Series data of the whole line into PIW: resistance in ohm and inductance in henry, as the two
// parts of one number.
void formSeriesData(LineMatrix& PIW, const LineMatrix& ZLC);

} // namespace lcp
