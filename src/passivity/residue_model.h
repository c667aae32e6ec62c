// The variables of the enforcement: eigenvalues of the residue matrices of H.
//
// Each residue matrix is FVEC diag(FEIG) FVECINV. The vectors stay, and small changes of chosen
// eigenvalues, those of the first delay group, are what the quadratic program finds.
#pragma once

#include "passivity/enforcement_store.h"

namespace lcp {

// Fills EIGFLAG from FRES: which eigenvalues are complex. Once an enforcement.
void RESCLASS();

// Fills FEIG, FVEC, FVECINV from FRES, at the start of a main iteration. A matrix of vectors that
// is singular ends the run with a message, exit status 1.
void decomposeResidues();

// Chooses the free eigenvalues of this main iteration, at most 100 and of each pole those of
// smallest magnitude, counts the variables and prints how many there are.
void RESMASK();

// FPERT from the decomposition and the changes x of the NVAR variables, each rounded to single
// precision. Every residue matrix is formed anew, also those without variables.
void RESAPPLY(const Table<double, MAXVARIABLES>& x);

} // namespace lcp
