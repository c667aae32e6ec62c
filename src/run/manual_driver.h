// A line whose data were entered by hand: its matrices, its Bergeron model file and its report.
#pragma once

#include "base/matrix.h"

namespace lcp {

constexpr int MANUALFILES = 0;    // writes the model file and the report
constexpr int MANUALMATRICES = 1; // writes nothing

// Fills Y and Z per metre, S/m and ohm/m, in the NC by NC corner: with MANUALFILES at the
// steady-state frequency, cleaned for display, and with MANUALMATRICES of the entered sequences at
// the frequency f, Hz. Another model than the Bergeron model with MANUALFILES, data that give no
// modes, and a model file that cannot be opened end the run with a message, exit status 1; without
// a report the run goes on.
void MANLINE(CView Y, CView Z, double f, int mode);

// One length step: files, and the component where it is wanted.
void runManualLine();

} // namespace lcp
