// The functions of the model in the enforcement store, and the nodal admittance of the line.
#pragma once

#include "passivity/enforcement_store.h"

namespace lcp {

// e^(-s tau) / (s - p) of each pole of H, the coefficient of its residue matrix.
void poleFactors(Complex s, Table<Complex, MAXORDER>& factor);

// H at s from the residue matrices RES.
void propagationAt(const ResidueList& RES, Complex s, CView H);

// Characteristic admittance at s, S; its constant term rounded to single precision on request.
void characteristicAt(Complex s, bool singleConstant, CView Yc);

// Blocks of the nodal admittance [Y11 Y12; Y12 Y11] of both ends at frequency f, Hz, in S. A
// singular I - H^2 ends the run with the message of the inversion and exit status 1.
void PASSYN(double f, CView Y11, CView Y12, Residues which);

} // namespace lcp
