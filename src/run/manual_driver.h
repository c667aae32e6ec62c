// A line whose data were entered by hand: its matrices, its Bergeron model file and its report.
#pragma once

#include "base/matrix.h"

namespace lcp {

constexpr int MANUALFILES = 0;    // writes the model file and the report
constexpr int MANUALMATRICES = 1; // writes nothing

// Fills Y and Z per metre, S/m and ohm/m, NC by NC: with MANUALFILES at the steady-state frequency
// and cleaned for display, with MANUALMATRICES at frequency f, Hz. The run ends with a message and
// exit status 1 for a model other than Bergeron (MANUALFILES only), for data without valid modes,
// and if the model file cannot be opened; if the report cannot be opened, the run continues.
void MANLINE(CView Y, CView Z, double f, int mode);

// One length step: files, and the component if selected.
void runManualLine();

} // namespace lcp
