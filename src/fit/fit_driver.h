// The phase-domain fit, from the sampled Yc and H to the record that the model file is written
// from.
#pragma once

namespace lcp {

// Fit Yc, and behind it H, of the solve store into FITMODEL, with the options of the run store, and
// print the fit tables.
void fitAdmittance();
void fitPropagation();

// Closes the tables. A negative delay of the fit ends the run with a message, exit status 1; one
// above 1 s is warned of.
void CHECKDELAYS();

} // namespace lcp
