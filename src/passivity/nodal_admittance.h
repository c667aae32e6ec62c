// The functions of the model in the enforcement store and the nodal admittance of the line.
#pragma once

#include "passivity/enforcement_store.h"

namespace lcp {

// e^(-s tau) / (s - p) of each pole of H, the factor of its residue matrix.
void poleFactors(Complex s, Table<Complex, MAXORDER>& factor);

// H of so many residue matrices at s.
void propagationAt(const ResidueList& RES, Complex s, CView H);

// Characteristic admittance at s, S; its constant term held in single precision on request.
void characteristicAt(Complex s, bool singleConstant, CView Yc);

// The blocks of the nodal admittance [Y11 Y12; Y12 Y11] of both ends at the frequency f, Hz, S.
// A singular I - H^2 ends the run with the message of the inversion, exit status 1.
void PASSYN(double f, CView Y11, CView Y12, Residues which);

} // namespace lcp
