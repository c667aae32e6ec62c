// The variables of the enforcement: eigenvalues of the residue matrices of H.
//
// Each residue matrix is FVEC diag(FEIG) FVECINV. The vectors are fixed; the quadratic program
// finds small changes of selected eigenvalues, those of the first delay group.
#pragma once

#include "passivity/enforcement_store.h"

namespace lcp {

// Sets EIGFLAG from FRES: which eigenvalues are complex. Called once per enforcement.
void RESCLASS();

// Computes FEIG, FVEC and FVECINV from FRES, at the start of a main iteration. A singular matrix of
// vectors ends the run with a message and exit status 1.
void decomposeResidues();

// Selects the free eigenvalues of this main iteration, at most 100 and for each pole those of
// smallest magnitude, counts the variables and prints their number.
void RESMASK();

// Computes FPERT from the decomposition and the changes x of the NVAR variables, each rounded to
// single precision. All residue matrices are formed anew, including those without variables.
void RESAPPLY(const Table<double, MAXVARIABLES>& x);

} // namespace lcp
