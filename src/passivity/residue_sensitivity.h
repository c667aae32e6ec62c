// Sensitivities to the variables of the enforcement, linearised around the present residues.
#pragma once

#include "passivity/enforcement_store.h"

namespace lcp {

// Sensitivity S of H at the frequency f, Hz: 2 NC^2 rows, NVAR columns. A column holds the
// derivative of H with respect to a variable, element by element in column order, real part above
// imaginary part.
void RESSENS(double f, RView S);

// The eigenvalues of the passivity conditions at the frequency f, Hz, and their derivatives
// D, 2 NC rows by NVAR columns: first the NC of the ends driven alike, then those of the ends
// driven against each other, S. A singular I + H or I - H ends the run with a message, exit
// status 1.
void EIGSENS(double f, RView D, NodalReals& lambda);

} // namespace lcp
