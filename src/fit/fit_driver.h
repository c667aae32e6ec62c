// The phase-domain fit, from the sampled Yc and H to the record that the model file is written
// from.
#pragma once

#include "fit/admittance_fit.h"
#include "fit/propagation_fit.h"

namespace lcp {

// Fit Yc, and after it H, of the solve store into FITMODEL, with the options of the run store, and
// print the fit tables.
void fitAdmittance();
void fitPropagation();

// Their steps: room for the model and the heading of the tables; what the options of the run store
// ask of the fits; the end of the table of Yc, where the model of Yc becomes symmetric.
void beginPhaseFit();
AdmittanceWish admittanceWish();
void endAdmittanceFit();
PropagationWish propagationWish();

// Closes the tables. A negative delay of the fit ends the run with a message, exit status 1; one
// above 1 s is warned of.
void CHECKDELAYS();

} // namespace lcp
