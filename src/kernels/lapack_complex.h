// LAPACK in complex double arithmetic, behind views and fixed work stores.
#pragma once

#include "base/matrix.h"

namespace lcp {

// A = Q H Q^H, H upper Hessenberg, Q unitary; n up to MAXINV. H overwrites A, and below its
// subdiagonal stands what is not part of it.
void ZGEHRD(CView A, CView Q, int n);

} // namespace lcp
