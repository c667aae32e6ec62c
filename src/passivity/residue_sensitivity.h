// Sensitivities to the variables of the enforcement, linearised around the current residues.
#pragma once

#include "passivity/enforcement_store.h"

namespace lcp {

// Sensitivity S of H at frequency f, Hz: 2 NC^2 rows, NVAR columns. A column holds the derivative
// of H with respect to a variable, element by element in column order, each with its real part
// followed by its imaginary part.
void RESSENS(double f, RView S);

// Eigenvalues of the passivity conditions at frequency f, Hz, in S, and their derivatives D, 2 NC
// rows by NVAR columns: first NC for ends driven in phase, then NC for ends driven in opposition. A
// singular I + H or I - H ends the run with a message and exit status 1.
void EIGSENS(double f, RView D, NodalReals& lambda);

} // namespace lcp
