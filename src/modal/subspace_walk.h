// Steps of the grid, and the report's frequency, with modes followed as invariant subspaces.
#pragma once

namespace lcp {

// Solves step k of the grid and stores it. From the second step on the modes are those of the step
// before, of the constant transform step those of KCT; the way is halved where it is not clear
// which mode is which. The last step also chooses PIVOT0, the rows by which vectors are turned.
void subspaceStep(int k);

// EIG, TI and TIINV of PMAT in SOLVEDATA.first at the frequency f, Hz, in the order of the model:
// that of the grid step next to f, and turned like it. Of an ideally transposed line that is the
// order of idealTransformation; a model without modes has the order of startSubspaces.
void subspaceReport(double f);

} // namespace lcp
