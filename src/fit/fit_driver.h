// The phase-domain fit, from the sampled Yc and H to the record for the model file.
#pragma once

#include "fit/admittance_fit.h"
#include "fit/propagation_fit.h"

namespace lcp {

// Fit Yc and then H of the solve store into FITMODEL, with the options of the run store, and print
// the fit tables.
void fitAdmittance();
void fitPropagation();

// Their steps: beginPhaseFit maps the model and prints the heading; the wishes come from the
// options of the run store; endAdmittanceFit makes the model of Yc symmetric and ends its table.
void beginPhaseFit();
AdmittanceWish admittanceWish();
void endAdmittanceFit();
PropagationWish propagationWish();

// Closes the tables. A negative delay ends the run with a message and exit status 1; a delay above
// 1 s gives a warning.
void CHECKDELAYS();

} // namespace lcp
